#include <velmara/Velmara.h>

#include <gtest/gtest.h>

#include <random>

#include "support/Collected.h"

namespace Velmara {
namespace {

using std::string;

template <class Encoder> string _encoded(Pieces const& writes)
{
    return through<Encoder>(writes, true);
}

TEST(Encoders, WriteTextThatOthersRead)
{
    EXPECT_EQ("TWFueSBoYW5kcw==\r\n", _encoded<Base64MediaOut>({"Many hands"}));
    EXPECT_EQ("caf=C3=A9 =3D ~!=7F", _encoded<QuotedPrintableOut>({"caf\xc3\xa9 = ~!\x7f"}));
    EXPECT_EQ("begin 644 data\r\n#0V%T\r\n`\r\nend\r\n", _encoded<UUEncodeOut>({"Cat"}));
    // The checksums of header and fork are those that Python's binascii.crc_hqx gives.
    EXPECT_EQ("(This file must be converted with BinHex 4.0)\r\n:\"'4KG'%!2j!)!*!&!`#3\"#(B3f&d3[8!!!:\r\n",
              _encoded<BinHex40Out>({"Cat"}));
}

TEST(Encoders, WriteOneLineAWriteOfTheLengthThatMailAllows)
{
    string const text(1000, '\xee');
    auto const longest = [](string const& encoded) {
        size_t most = 0;
        for (string const& line : lines(encoded)) {
            EXPECT_EQ("\r\n", line.substr(line.size() - 2));
            most = std::max(most, line.size() - 2);
        }
        return most;
    };
    EXPECT_EQ(76u, longest(_encoded<Base64MediaOut>({text})));
    EXPECT_EQ(76u, longest(_encoded<QuotedPrintableOut>({text}) + "\r\n")); // 25 escapes and the soft break
    EXPECT_EQ(76u, longest(_encoded<QuotedPrintableOut>({string(1000, 'x')}) + "\r\n"));
    EXPECT_EQ(61u, longest(_encoded<UUEncodeOut>({text})));
    EXPECT_EQ(64u, longest(_encoded<BinHex40Out>({"abcdefghijklmnopqrstuvwxyz0123456789abcdefghijklmnopqrstuvwxyz"})));

    Collected out;
    Base64MediaOut encoder(out.media());
    encoder.write(bytes(text));
    EXPECT_EQ(17, out.writes());
}

TEST(Encoders, QuotedPrintableKeepsEveryLineEndAndNoBlankAtAnEnd)
{
    EXPECT_EQ("a=0D=0A=\r\nb", _encoded<QuotedPrintableOut>({"a\r\nb"}));
    EXPECT_EQ("a=0A=\r\n=0D=0A", _encoded<QuotedPrintableOut>({"a\n\r\n"}));
    EXPECT_EQ("a b=20", _encoded<QuotedPrintableOut>({"a b "}));
    EXPECT_EQ("a =09", _encoded<QuotedPrintableOut>({"a \t"}));
    EXPECT_EQ("a =0A=\r\nb", _encoded<QuotedPrintableOut>({"a ", "\nb"}));
}

TEST(Encoders, AnEmptyTextHasNoLinesAnEmptyFileHasItsFrame)
{
    EXPECT_EQ("", _encoded<Base64MediaOut>({}));
    EXPECT_EQ("", _encoded<QuotedPrintableOut>({}));
    EXPECT_EQ("begin 644 data\r\n`\r\nend\r\n", _encoded<UUEncodeOut>({}));
    EXPECT_EQ("", through<CodecBinHex40>(lines(_encoded<BinHex40Out>({})), true));
}

template <class Encoder> void _endsOnce()
{
    Collected out;
    Encoder encoder(out.media());
    encoder.write(bytes("Cat"));
    encoder.end();
    EXPECT_EQ(1, out.ends());
    EXPECT_NE("", out.take());
    encoder.end();
    EXPECT_EQ(2, out.ends());
    EXPECT_EQ("", out.take());
}

TEST(Encoders, ASecondEndIsPassedOnAndAddsNothing)
{
    _endsOnce<Base64MediaOut>();
    _endsOnce<QuotedPrintableOut>();
    _endsOnce<UUEncodeOut>();
    _endsOnce<BinHex40Out>();
}

TEST(Encoders, AUULineNeverLooksLikeTheEndLine)
{
    // 37 bytes would be counted by "E", and these two are written as "ND".
    string const text = "\xba\x40" + string(35, 'x');
    EXPECT_EQ(text, through<CodecUUEncode>(lines(_encoded<UUEncodeOut>({text}))));
    // Chained, each line has to be a write of its own.
    Collected out;
    UUEncodeOut encoder{CodecUUEncode(out.media())};
    encoder.write(bytes(text));
    encoder.end();
    EXPECT_EQ(text, out.take());
}

/// A random text of which a share is one byte, so that runs and escapes come up.
string _text(std::mt19937& random, size_t length, unsigned char favourite)
{
    string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char>(random() % 3 == 0 ? random() % 256 : favourite);
    return text;
}

Pieces _cutAnywhere(std::mt19937& random, string const& text)
{
    Pieces pieces;
    for (size_t at = 0; at < text.size();) {
        size_t const n = 1 + random() % 40;
        pieces.push_back(text.substr(at, n));
        at += n;
    }
    return pieces;
}

template <class Encoder, class Decoder> void _comesBack(Pieces const& writes, string const& text)
{
    ASSERT_EQ(text, through<Decoder>(lines(_encoded<Encoder>(writes)), true)) << testing::PrintToString(text);
}

void _allComeBack(std::mt19937& random, string const& text)
{
    Pieces const writes = _cutAnywhere(random, text);
    _comesBack<Base64MediaOut, CodecBase64>(writes, text);
    _comesBack<QuotedPrintableOut, CodecQuotedPrintable>(writes, text);
    _comesBack<UUEncodeOut, CodecUUEncode>(writes, text);
    _comesBack<BinHex40Out, CodecBinHex40>(writes, text);
    string const base64 = _encoded<Base64MediaOut>(writes), quoted = _encoded<QuotedPrintableOut>(writes);
    ASSERT_EQ(text, through<CodecBase64>(_cutAnywhere(random, base64)));
    ASSERT_EQ(text, through<CodecQuotedPrintable>(_cutAnywhere(random, quoted)));
}

TEST(Encoders, EveryByteAtEveryLengthComesBack)
{
    std::mt19937 random(1);
    for (unsigned byte = 0; byte < 256; ++byte) {
        _allComeBack(random, string(1 + byte % 5, static_cast<char>(byte)));
        _allComeBack(random, _text(random, 90, static_cast<unsigned char>(byte)));
    }
    for (size_t length = 0; length <= 300; ++length) {
        _allComeBack(random, _text(random, length, static_cast<unsigned char>(random() % 256)));
        _allComeBack(random, string(length, '\x90'));
        _allComeBack(random, string(length, "\0 \r\n=."[length % 6]));
    }
}

TEST(Encoders, ALongFileComesBack)
{
    std::mt19937 random(2);
    string const text = _text(random, 100000, 0x90);
    _allComeBack(random, text);
}

} // namespace
} // namespace Velmara
