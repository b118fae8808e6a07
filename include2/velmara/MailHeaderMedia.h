#pragma once

#include <velmara/MediaIn.h>

/// Two views on a stored message, which together give all of it but one line. Both take a header
/// line to be one with a ":" behind its first byte and ahead of its first white space, whatever the
/// name holds, and a continuation line one that begins with white space, holds more than that and
/// follows a header line. A last line without any white space, line end included, is no header line.
///
/// Block reads see the same text as line reads; `atEnd` and `peek` tell of the source alone, as with
/// CRLFConvertor. The source must stand at the start of the message.
namespace Velmara {

/// The header block, up to the first other line. That line, usually the empty one, is dropped.
class VELMARA_EXPORT MailHeaderMedia : public MediaIn, public NonCopyable {
public:
    /// A null handle.
    MailHeaderMedia();
    explicit MailHeaderMedia(MediaIn const& source);
};

/// What follows the header block, beginning with the line that ended it, usually the empty one. A
/// source without a header block is given whole.
class VELMARA_EXPORT MailBodyMedia : public MediaIn, public NonCopyable {
public:
    /// A null handle.
    MailBodyMedia();
    explicit MailBodyMedia(MediaIn const& source);
};

} // namespace Velmara
