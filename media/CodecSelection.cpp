// One row for each encoding that has a codec, and one for BinHex, which is known by the type of the
// entity. The encoding wins where both apply: a BinHex file sent as Base64 is decoded as Base64 only.
#include <velmara/Base64MediaOut.h>
#include <velmara/CodecBase64.h>
#include <velmara/CodecBinHex40.h>
#include <velmara/CodecQuotedPrintable.h>
#include <velmara/CodecUUEncode.h>
#include <velmara/DecodeMediaIn.h>

namespace Velmara {

namespace {

struct Codec {
    MediaOutDecorator (*decoder)();
    MediaOut (*encoder)(MediaOut const& out);
};

template <class Decoder> MediaOutDecorator _decoder()
{
    return Decoder();
}

template <class Encoder> MediaOut _encoder(MediaOut const& out)
{
    return Encoder(out);
}

struct CodecOfEncoding {
    ContentEncoding::EncodingType encoding;
    Codec codec;
};

constexpr CodecOfEncoding _codecs[] = {
    {ContentEncoding::EncodingBase64, {_decoder<CodecBase64>, _encoder<Base64MediaOut>}},
    {ContentEncoding::EncodingQuotedPrintable, {_decoder<CodecQuotedPrintable>, _encoder<QuotedPrintableOut>}},
    {ContentEncoding::EncodingUUEncode, {_decoder<CodecUUEncode>, _encoder<UUEncodeOut>}},
};
constexpr Codec _binHex = {_decoder<CodecBinHex40>, _encoder<BinHex40Out>};

bool _isBinHex(ContentType const* type)
{
    return type && !type->isNull() && type->mediatype() == ContentType::MediaTypeApplication &&
           type->subtype() == ContentType::SubTypeMacBinhex40;
}

/// Null if the entity has no codec.
Codec const* _find(ContentEncoding::EncodingType encoding, ContentType const* type)
{
    for (CodecOfEncoding const& row : _codecs)
        if (row.encoding == encoding) return &row.codec;
    return _isBinHex(type) ? &_binHex : nullptr;
}

ContentEncoding::EncodingType _numberOf(ContentEncoding const& encoding)
{
    return encoding.isNull() ? ContentEncoding::EncodingUnknown : encoding.encoding();
}

} // namespace

bool have_encoder(ContentEncoding::EncodingType encoding, ContentType const* type)
{
    return _find(encoding, type) != nullptr;
}

bool have_encoder(ContentEncoding const& encoding, ContentType const* type)
{
    return have_encoder(_numberOf(encoding), type);
}

MediaOutDecorator get_decodec(MediaOut const& out, ContentEncoding::EncodingType encoding, ContentType const* type)
{
    Codec const* const codec = _find(encoding, type);
    if (!codec) return MediaOutDecorator();
    MediaOutDecorator decoder = codec->decoder();
    decoder.attach(out);
    return decoder;
}

MediaOutDecorator get_decodec(MediaOut const& out, ContentEncoding const& encoding, ContentType const* type)
{
    return get_decodec(out, _numberOf(encoding), type);
}

MediaOut get_decoder(MediaOut const& out, ContentEncoding::EncodingType encoding, ContentType const* type)
{
    MediaOutDecorator const decoder = get_decodec(out, encoding, type);
    return decoder.isNull() ? out : MediaOut(decoder);
}

MediaOut get_decoder(MediaOut const& out, ContentEncoding const& encoding, ContentType const* type)
{
    return get_decoder(out, _numberOf(encoding), type);
}

MediaOut get_encoder(MediaOut const& out, ContentEncoding::EncodingType encoding, ContentType const* type)
{
    Codec const* const codec = _find(encoding, type);
    return codec ? codec->encoder(out) : out;
}

MediaOut get_encoder(MediaOut const& out, ContentEncoding const& encoding, ContentType const* type)
{
    return get_encoder(out, _numberOf(encoding), type);
}

MediaIn get_decoded(MediaIn const& in, ContentEncoding::EncodingType encoding, ContentType const* type)
{
    Codec const* const codec = _find(encoding, type);
    return codec ? MediaIn(new DecodeMediaIn(in, codec->decoder()), false) : in;
}

MediaIn get_decoded(MediaIn const& in, ContentEncoding const& encoding, ContentType const* type)
{
    return get_decoded(in, _numberOf(encoding), type);
}

} // namespace Velmara
