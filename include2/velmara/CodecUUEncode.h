#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Undoes uuencoding on the way to another sink. It only decodes; UUEncodeOut encodes.
///
/// Each write has to be one line with its line end, as `readline` gives it; nothing is carried over.
/// What stands before a "begin " line and after the end is dropped, mode and file name too. A stream
/// without such a line gives nothing.
///
/// Limits: a line that begins with "end" in any case ends the body, also a line of 37 bytes whose
/// first two happen to be written "ND". A group of four characters that touches the end of the write
/// is left out; a line end behind it spares it.
class VELMARA_EXPORT CodecUUEncode : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    CodecUUEncode();
    explicit CodecUUEncode(MediaOut const& downstream);
};

} // namespace Velmara
