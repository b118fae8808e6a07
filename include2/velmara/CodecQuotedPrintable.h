#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Undoes Quoted-Printable (RFC 2045) on the way to another sink. It only decodes;
/// QuotedPrintableOut encodes.
///
/// "=" and two hexadecimal digits of either case are a byte, "=" CR LF is a soft line break. "=" LF is
/// one only as the last two bytes of a write, so feed it lines as `readline` gives them. Everything
/// else, also "=" in front of blanks, stays as it is: input is never refused.
///
/// A write that ends within an escape keeps its "=" and the byte behind it for the next one. If the
/// two prove to be no escape, they are delivered with that next write and once more with each further
/// one, until a write holds something to decode. Signatures of bodies cover what arrives, so this
/// repetition is part of the contract. An escape cut by the end of the stream is lost.
///
/// Exceptions of the downstream arrive as MediaException (code 4) with the original as their cause;
/// a MediaException passes as it is.
class VELMARA_EXPORT CodecQuotedPrintable : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    CodecQuotedPrintable();
    explicit CodecQuotedPrintable(MediaOut const& downstream);
};

} // namespace Velmara
