#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include "support/Collected.h"

namespace Velmara {
namespace {

using std::string;

enum Codec { None, Base64, QuotedPrintable, UU, BinHex };

char const* const _binHexCat = ":!@%!9%9B9(4dH(3!N!8$!*!%DLe$BA4#p3!!:";

struct Sample {
    Codec codec;
    Pieces lines; // of "Cat"
};

Sample const _samples[] = {
    {Base64, {"Q2F0\n"}},
    {QuotedPrintable, {"=43=61=74"}},
    {UU, {"begin 644 a\n", "#0V%T\n"}},
    {BinHex, {_binHexCat}},
};

/// Tells the decoder that `make` gives for a sink by the sample that it decodes.
template <class Make> Codec _codecOf(Make make)
{
    for (Sample const& sample : _samples) {
        Collected collected;
        MediaOut out = collected.media();
        MediaOutDecorator decoder = make(out);
        if (decoder.isNull()) return None;
        for (string const& line : sample.lines) decoder.write(bytes(line));
        if (collected.take() == "Cat") return sample.codec;
    }
    ADD_FAILURE() << "a decoder for nothing";
    return None;
}

struct Row {
    char const* encoding; // "" for none
    char const* type;     // "" for none
    Codec codec;
};

Row const _rows[] = {
    {"", "", None},
    {"7bit", "text/plain", None},
    {"8bit", "text/plain", None},
    {"binary", "text/plain", None},
    {"x-yenc", "text/plain", None},
    {"foo", "", None},
    {"base64", "", Base64},
    {"BASE64", "text/plain", Base64},
    {"quoted-printable", "", QuotedPrintable},
    {"x-uuencode", "", UU},
    {"", "application/mac-binhex40", BinHex},
    {"7bit", "application/mac-binhex40", BinHex},
    {"foo", "application/mac-binhex40; name=a", BinHex},
    {"7bit", "text/mac-binhex40", None},
    {"7bit", "application/octet-stream", None},
    {"base64", "application/mac-binhex40", Base64},
    {"quoted-printable", "application/mac-binhex40", QuotedPrintable},
    {"x-uue", "application/mac-binhex40", UU},
};

TEST(CodecSelection, TheEncodingWinsAndBinHexIsKnownByItsType)
{
    for (Row const& row : _rows) {
        SCOPED_TRACE(string(row.encoding) + " " + row.type);
        ContentEncoding encoding{string(row.encoding)};
        ContentType type{string(row.type)};
        EXPECT_EQ(row.codec != None, have_encoder(encoding, &type));
        EXPECT_EQ(row.codec, _codecOf([&](MediaOut& out) { return get_decodec(out, encoding, &type); }));
    }
}

TEST(CodecSelection, TheTwoFormsAgree)
{
    for (Row const& row : _rows) {
        SCOPED_TRACE(string(row.encoding) + " " + row.type);
        ContentEncoding encoding{string(row.encoding)};
        auto const number = encoding.isNull() ? ContentEncoding::EncodingUnknown : encoding.encoding();
        ContentType type{string(row.type)};
        EXPECT_EQ(row.codec != None, have_encoder(number, &type));
        EXPECT_EQ(row.codec, _codecOf([&](MediaOut& out) { return get_decodec(out, number, &type); }));
        Collected collected;
        MediaOut out = collected.media();
        EXPECT_EQ(row.codec == None, get_decoder(out, number, &type).get() == out.get());
        EXPECT_EQ(row.codec == None, get_encoder(out, number, &type).get() == out.get());
        MediaIn in = BufferMediaIn(string("x"));
        EXPECT_EQ(row.codec == None, get_decoded(in, number, &type).get() == in.get());
    }
}

TEST(CodecSelection, NullsAreNoCodec)
{
    ContentEncoding encoding;
    ContentType type;
    Collected collected;
    MediaOut out = collected.media();
    MediaIn in = BufferMediaIn(string("x"));
    EXPECT_FALSE(have_encoder(encoding, nullptr));
    EXPECT_FALSE(have_encoder(encoding, &type));
    EXPECT_FALSE(have_encoder(ContentEncoding::EncodingUnknown, nullptr));
    EXPECT_TRUE(have_encoder(ContentEncoding::EncodingUUEncode, nullptr));
    EXPECT_TRUE(get_decodec(out, encoding, nullptr).isNull());
    EXPECT_EQ(out.get(), get_decoder(out, encoding, nullptr).get());
    EXPECT_EQ(out.get(), get_encoder(out, encoding, nullptr).get());
    EXPECT_EQ(in.get(), get_decoded(in, encoding, nullptr).get()) << "the very same stream";
}

TEST(CodecSelection, NothingGivenHasToBeAVariable)
{
    ContentType const type("text/plain");
    string decoded;
    get_decoded(BufferMediaIn(string("Q2F0")), ContentEncoding("base64"), &type).read(decoded);
    EXPECT_EQ("Cat", decoded);
    EXPECT_TRUE(have_encoder(ContentEncoding("base64"), &type));
    Collected collected;
    get_decoder(collected.media(), ContentEncoding("base64"), &type).write(bytes("Q2F0"));
    EXPECT_EQ("Cat", collected.take());
}

TEST(CodecSelection, EncodersAndDecodersArePairs)
{
    for (Row const& row : _rows) {
        SCOPED_TRACE(string(row.encoding) + " " + row.type);
        ContentEncoding encoding{string(row.encoding)};
        ContentType type{string(row.type)};
        string const text = "Cat = \x90\x90\xff\r\n";
        Collected encoded, decoded;
        MediaOut encodedOut = encoded.media(), decodedOut = decoded.media();
        MediaOut encoder = get_encoder(encodedOut, encoding, &type);
        encoder.write(bytes(text));
        encoder.end();
        string const between = encoded.take();
        EXPECT_EQ(row.codec == None, between == text);
        MediaOut decoder = get_decoder(decodedOut, encoding, &type);
        for (string const& line : lines(between)) decoder.write(bytes(line));
        EXPECT_EQ(text, decoded.take());
        MediaIn in = BufferMediaIn(between);
        string read;
        get_decoded(in, encoding, &type).read(read);
        EXPECT_EQ(text, read);
    }
}

TEST(CodecSelection, TheBase64DecoderIsStrict)
{
    Collected collected;
    MediaOut out = collected.media();
    get_decoder(out, ContentEncoding::EncodingBase64, nullptr).write(bytes("QU*JD"));
    EXPECT_EQ("QU*JD", collected.take());
}

TEST(CodecSelection, ABinHexEntityNeedsNoEncoding)
{
    ContentType type("application/mac-binhex40");
    ContentEncoding encoding;
    MediaIn in = BufferMediaIn(string(_binHexCat));
    string read;
    get_decoded(in, encoding, &type).read(read);
    EXPECT_EQ("Cat", read);
}

} // namespace
} // namespace Velmara
