#pragma once

#include <velmara/MediaOut.h>

/// The encoders: sinks that put bytes into a transfer encoding on their way to another sink. The
/// decoders of this library give back exactly what was written, every byte value and cut included.
///
/// Each write downstream is one line with CR LF. `end` writes what is still held, finishes the
/// encoded text and is passed on; bytes written behind it begin a new text. Copies share the state.
namespace Velmara {

/// Base64 (RFC 2045) in lines of 76 characters. Undone by CodecBase64.
class VELMARA_EXPORT Base64MediaOut : public MediaOutDecorator {
public:
    /// The end of the text is written by `end`, which is passed on.
    explicit Base64MediaOut(MediaOut const& downstream);
};

/// Quoted-Printable (RFC 2045) in lines of at most 76 characters. Undone by CodecQuotedPrintable.
///
/// CR and LF are written as "=0D" and "=0A", so line ends come back as they were, whatever the
/// transport makes of the line ends of the message; behind "=0A" stands a soft break, so that text
/// stays readable line by line. The encoded text ends without a line end, which would come back as
/// content.
class VELMARA_EXPORT QuotedPrintableOut : public MediaOutDecorator {
public:
    /// The end of the text is written by `end`, which is passed on.
    explicit QuotedPrintableOut(MediaOut const& downstream);
};

/// Uuencoded text, 45 bytes a line, with a begin and an end line. Undone by CodecUUEncode, which has
/// to be given the lines one by one.
class VELMARA_EXPORT UUEncodeOut : public MediaOutDecorator {
public:
    /// The end line is written by `end`, which is passed on.
    explicit UUEncodeOut(MediaOut const& downstream);
};

/// BinHex 4.0 (RFC 1741): notice line, a file named "data" of unknown type without a resource fork,
/// runs shortened, checksums set. Undone by CodecBinHex40, for which the notice line has to be a
/// write of its own.
///
/// Limits: the length of the file stands ahead of it, so all bytes are held until `end`.
class VELMARA_EXPORT BinHex40Out : public MediaOutDecorator {
public:
    /// Everything is written by `end`, which is passed on.
    explicit BinHex40Out(MediaOut const& downstream);
};

} // namespace Velmara
