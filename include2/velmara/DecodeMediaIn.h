#pragma once

#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>

namespace Velmara {

/// A push decoder read as a stream: lines of the source go through the decoder, and what comes out is
/// given in blocks or lines, forward and once.
///
/// It has no position: `peek` and `tell` give 0 and `setpos` does nothing. `write` alone starts at the
/// beginning of the source again, whatever has been read, with the decoder as it is by then; it alone
/// ends the decoder, so what a decoder holds back until its end never comes by `read` or `readline`.
/// Nobody else may read the source meanwhile. Exceptions of source and decoder pass through.
///
/// Limits: a line of decoded text is given whole, however long it is and whatever the capacity of the
/// buffer. A block read gives what was asked for, in memory of that size.
class VELMARA_EXPORT DecodeMediaIn : public MediaInImpl {
public:
    /// Keeps both handles and attaches the decoder to a buffer of its own.
    DecodeMediaIn(MediaIn const& source, MediaOutDecorator const& decoder);
    ~DecodeMediaIn() override;

    using MediaInImpl::read;
    using MediaInImpl::tell;

    bool atEnd() const override;
    int peek() const override;
    void readline(Buffer& line) override;
    /// Not built on `readline` as in the base: a body may be a single line.
    int read(Buffer& block, uint_t n) override;
    int read(uchar_t* bytes, uint_t n) override;
    void setpos(unsigned long position) override;
    void write(MediaOut& out) override;
    /// Always 0.
    virtual unsigned long tell();

private:
    class Decoded;

    bool decodeLine();
    uint_t decodeUpTo(uint_t n);
    void passOn(MediaOut& out);

    MediaIn m_source;
    MediaOutDecorator m_decoder;
    Decoded* m_decoded; // what the decoder is attached to, and owned by m_decodedMedia
    MediaOut m_decodedMedia;
    Buffer m_pending; // decoded bytes for later reads
    Buffer m_line;    // of the source
};

/// The choice of a codec for an entity, by its transfer encoding and its type. Encodings 3, 4 and 7
/// have one; apart from these, an "application/mac-binhex40" is BinHex whatever its encoding says.
/// A null encoding counts as encoding 0; the type may be null, as pointer and as handle.
///
/// True if there is a codec.
VELMARA_EXPORT bool have_encoder(ContentEncoding const& encoding, ContentType const* type);
VELMARA_EXPORT bool have_encoder(ContentEncoding::EncodingType encoding, ContentType const* type);

/// The decoder, attached to `out`; a null decorator if there is none.
VELMARA_EXPORT MediaOutDecorator get_decodec(MediaOut const& out, ContentEncoding const& encoding,
                                             ContentType const* type);
VELMARA_EXPORT MediaOutDecorator get_decodec(MediaOut const& out, ContentEncoding::EncodingType encoding,
                                             ContentType const* type);

/// The decoder on `out`, or `out` itself if there is none.
VELMARA_EXPORT MediaOut get_decoder(MediaOut const& out, ContentEncoding const& encoding, ContentType const* type);
VELMARA_EXPORT MediaOut get_decoder(MediaOut const& out, ContentEncoding::EncodingType encoding,
                                    ContentType const* type);

/// The encoder on `out`, or `out` itself if there is none.
VELMARA_EXPORT MediaOut get_encoder(MediaOut const& out, ContentEncoding const& encoding, ContentType const* type);
VELMARA_EXPORT MediaOut get_encoder(MediaOut const& out, ContentEncoding::EncodingType encoding,
                                    ContentType const* type);

/// A DecodeMediaIn over `in`, or `in` itself if there is no codec.
VELMARA_EXPORT MediaIn get_decoded(MediaIn const& in, ContentEncoding const& encoding, ContentType const* type);
VELMARA_EXPORT MediaIn get_decoded(MediaIn const& in, ContentEncoding::EncodingType encoding, ContentType const* type);

} // namespace Velmara
