#pragma once

#include <velmara/MediaIn.h>

namespace Velmara {

/// A stream read with one kind of line end. Bytes within lines, lone CRs too, stay as they are; a CR
/// at the very end of a line counts as its line end, and a last line without one gets one.
///
/// Block reads see the same text as line reads. They keep bytes of fetched lines, which a `readline`
/// after them skips; `atEnd` and `peek` tell of the source alone, so `atEnd` may be true while such
/// bytes are left. The source is read from where it stands; copies of its handle share its position.
///
/// Limits: a piece of a line that is longer than the buffer counts as a line, so it gets a line end
/// of its own. Block reads begin with pieces of 1024 bytes.
class VELMARA_EXPORT CRLFConvertor : public MediaIn, public NonCopyable {
public:
    /// Any value but 0 works as ToLF.
    enum CRLFConverType : int { ToCRLF = 0, ToLF = 1 };

    /// A null handle.
    CRLFConvertor();
    CRLFConvertor(MediaIn const& source, CRLFConverType type);
};

} // namespace Velmara
