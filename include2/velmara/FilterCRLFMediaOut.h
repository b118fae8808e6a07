#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Removes every carriage return on the way to another sink, lone ones too: "a\r\r\nb" gives "a\nb".
///
/// Nothing is kept between writes, so cuts do not matter. Each run that a CR ends goes downstream as a
/// write of its own, also an empty one; a write without any CR is passed on as it is, uncopied.
class VELMARA_EXPORT FilterCRLFMediaOut : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    FilterCRLFMediaOut();
    explicit FilterCRLFMediaOut(MediaOut const& downstream);
};

/// Expands line feeds to CR LF on the way to another sink.
///
/// A line feed behind a CR is dropped, so CR LF comes out as CR alone: feed it text whose lines end in
/// LF. The byte before a line feed is looked for in the same write only; a CR and an LF that a cut
/// parts give CR CR LF. A write without any LF is passed on as it is, uncopied.
class VELMARA_EXPORT FilterLFCRLFMediaOut : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    FilterLFCRLFMediaOut();
    explicit FilterLFCRLFMediaOut(MediaOut const& downstream);
};

} // namespace Velmara
