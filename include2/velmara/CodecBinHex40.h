#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Undoes BinHex 4.0 (RFC 1741) on the way to another sink and gives the data fork; name, resource
/// fork and checksums are dropped and no checksum is compared. It only decodes; BinHex40Out encodes.
///
/// The notice line is optional. It has to come whole within the first write, as `readline` gives it,
/// and decoding goes on with the next write. Behind it writes may be cut anywhere. Anything but white
/// space ahead of the ":" ends decoding for good; a byte outside the alphabet ends it after what was
/// decoded so far.
///
/// The fork is delivered in pieces of some 8 KB, the last of them at the closing ":" or at `end`.
/// `end` stops here: it is not passed on to the downstream, because a message goes on behind one file.
class VELMARA_EXPORT CodecBinHex40 : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    CodecBinHex40();
    explicit CodecBinHex40(MediaOut const& downstream);
};

} // namespace Velmara
