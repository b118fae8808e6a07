#include <velmara/Hasher.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <velmara/Exception.h>
#include <velmara/HasherImpl.h>
#include <velmara/Md5Hasher.h>

namespace Velmara {
namespace {

std::string operator""_b(char const* text, size_t n)
{
    return std::string(text, n);
}

std::string md5(std::string const& bytes)
{
    Md5Hasher hasher;
    hasher.update(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    hasher.finalize();
    return hasher.digestAsHexString();
}

Buffer buffer(std::string const& bytes)
{
    return Buffer(bytes.data(), static_cast<unsigned int>(bytes.size()), true);
}

void process(Hasher& hasher, std::string const& bytes, unsigned int sourceLength = 0)
{
    hasher.process(buffer(bytes), sourceLength);
}

// Images whose pixel data is known.
std::string jpg(std::string const& scan)
{
    return "\xff\xd8\xff\xe0\0\4ab\xff\xda\0\2"_b + scan;
}

std::string gif(std::string data)
{
    std::string image = "GIF89awwhh\0bp,xxyywwhh\0c"_b;
    for (; !data.empty(); data.erase(0, 255)) {
        std::string const block = data.substr(0, 255);
        image += static_cast<char>(block.size()) + block;
    }
    return image + "\0;"_b;
}

std::string pngChunk(std::string const& data)
{
    return "\0\0"_b + static_cast<char>(data.size() / 256) + static_cast<char>(data.size() % 256) + "IDAT" + data +
           "crc.";
}

std::string png(std::string const& data)
{
    return "\x89PNG\r\n\x1a\n" + pngChunk(data);
}

std::string pixels(size_t n)
{
    return std::string(n, 'p');
}

TEST(Hasher, NullHandleReportsNothing)
{
    Hasher const null;
    EXPECT_TRUE(null.isNull());
    EXPECT_EQ(Hasher::DataNone, null.dataType());
    EXPECT_EQ(0u, null.dataSourceLength());
    EXPECT_FALSE(null.isValid());
    EXPECT_FALSE(null.isMoreDataRequired());
    EXPECT_EQ(0u, null.processedDataLength());
    EXPECT_EQ(0u, null.hashedDataLength());
}

template <class Work> Exception refusal(Work const& work)
{
    try {
        work();
    } catch (Exception const& refused) {
        return refused;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Exception("", 0, nullptr, 0);
}

TEST(Hasher, NullHandleRefusesEachOperationAtAPlaceOfItsOwn)
{
    Hasher null;
    Buffer const nothing;
    std::vector<Exception> const refusals = {
        refusal([&] { null.dataType(Hasher::DataText); }),
        refusal([&] { null.dataSourceLength(1); }),
        refusal([&] { null.process(nothing, 0); }),
        refusal([&] { null.process(std::string()); }),
        refusal([&] { static_cast<void>(null.digest()); }),
        refusal([&] { static_cast<void>(null.digestAsHexString()); }),
    };
    char const* const messages[] = {"Hasher::process", "Hasher::process", "Hasher::process",
                                    "Hasher::process", "Hasher",          "Hasher"};
    unsigned int line = 0;
    for (size_t i = 0; i < refusals.size(); ++i) {
        EXPECT_EQ(messages[i], refusals[i].message()) << i;
        EXPECT_EQ(1, refusals[i].code()) << i;
        EXPECT_EQ("Hasher", refusals[i].fileName()) << i;
        EXPECT_LT(line, refusals[i].lineNumber()) << i;
        line = refusals[i].lineNumber();
    }
}

TEST(Hasher, HolderOfNullIsNullAndCannotBeCopiedButAssigned)
{
    Hasher const null(nullptr, false);
    EXPECT_TRUE(null.isNull());
    EXPECT_EQ(Hasher::DataNone, null.dataType());
    EXPECT_EQ(4, refusal([&] { Hasher copy(null); }).code());
    Hasher other = BinaryHasher();
    other = null;
    EXPECT_TRUE(other.isNull());
}

TEST(Hasher, CopiesShareTheHasher)
{
    BinaryHasher original;
    Hasher copy(original), assigned;
    assigned = original;
    process(original, pixels(1024));
    EXPECT_TRUE(copy.isValid());
    EXPECT_EQ(original.digest(), assigned.digest());
    EXPECT_TRUE(Hasher(Hasher()).isNull());
}

TEST(Hasher, FreshOneKnowsItsTypeAndNothingElse)
{
    TextHasher const hasher(Hasher::DataText);
    EXPECT_FALSE(hasher.isNull());
    EXPECT_EQ(Hasher::DataText, hasher.dataType());
    EXPECT_EQ(0u, hasher.dataSourceLength());
    EXPECT_FALSE(hasher.isValid());
    EXPECT_FALSE(hasher.isMoreDataRequired());
    EXPECT_EQ(0u, hasher.processedDataLength());
    EXPECT_EQ(0u, hasher.hashedDataLength());
    EXPECT_EQ("", hasher.digest());
    EXPECT_EQ("", hasher.digestAsHexString());
}

TEST(Hasher, StoresTheTypeItIsGiven)
{
    EXPECT_EQ(Hasher::DataHtml, TextHasher(Hasher::DataHtml).dataType());
    EXPECT_EQ(Hasher::DataBinary, TextHasher(Hasher::DataBinary).dataType());
    EXPECT_EQ(Hasher::DataGif, ImageHasher(Hasher::DataGif).dataType());
    EXPECT_EQ(Hasher::DataNone, ImageHasher(Hasher::DataNone).dataType());
    EXPECT_EQ(Hasher::DataBinary, BinaryHasher().dataType());
}

TEST(Hasher, NumbersOfTypesAreFixed)
{
    EXPECT_EQ(0, Hasher::DataNone);
    EXPECT_EQ(1, Hasher::DataHtml);
    EXPECT_EQ(2, Hasher::DataText);
    EXPECT_EQ(3, Hasher::DataPng);
    EXPECT_EQ(4, Hasher::DataGif);
    EXPECT_EQ(5, Hasher::DataJpeg);
    EXPECT_EQ(6, Hasher::DataBinary);
}

TEST(Hasher, MayProcessAtOnce)
{
    std::string const text(100, 'x');
    EXPECT_EQ(md5(text), TextHasher(Hasher::DataText, buffer(text)).digestAsHexString());
    EXPECT_EQ(md5(pixels(200)), ImageHasher(Hasher::DataPng, buffer(png(pixels(200)))).digestAsHexString());
    EXPECT_EQ(md5(pixels(2000)), BinaryHasher(buffer(pixels(2000))).digestAsHexString());
    EXPECT_EQ(0u, BinaryHasher(buffer(pixels(2000))).dataSourceLength());
}

TEST(Hasher, SourceLengthIsStoredUnlessItIsZero)
{
    BinaryHasher hasher;
    process(hasher, pixels(10), 500);
    EXPECT_EQ(500u, hasher.dataSourceLength());
    process(hasher, pixels(10), 0);
    EXPECT_EQ(500u, hasher.dataSourceLength());
    hasher.process(pixels(10));
    EXPECT_EQ(500u, hasher.dataSourceLength());
    hasher.dataSourceLength(7);
    EXPECT_EQ(7u, hasher.dataSourceLength());
}

TEST(Hasher, DigestIsTheHexStringsBytes)
{
    BinaryHasher hasher;
    process(hasher, std::string(1024, '\0'));
    EXPECT_EQ("0f343b0931126a20f133d67c2b018a3b", hasher.digestAsHexString());
    EXPECT_EQ("\x0f\x34\x3b\x09\x31\x12\x6a\x20\xf1\x33\xd6\x7c\x2b\x01\x8a\x3b", hasher.digest());
}

TEST(TextHasher, HashesTheExtractOfPlainText)
{
    TextHasher hasher(Hasher::DataText);
    hasher.process("Hello\nWorld\nSee www.a.example, <b>NOW</b>! " + std::string(100, 'x'));
    EXPECT_TRUE(hasher.isValid());
    std::string const extract = "seeb"
                                "now/b" +
                                std::string(100, 'x') +
                                "dlrow"
                                "olleh";
    EXPECT_EQ(md5(extract), hasher.digestAsHexString());
    EXPECT_EQ(extract.size(), hasher.hashedDataLength());
}

TEST(TextHasher, ReadsHtmlOnlyIfToldSo)
{
    std::string const page = "<b>" + std::string(100, 'x') + "</b>";
    EXPECT_EQ(md5(std::string(100, 'x')), TextHasher(Hasher::DataHtml, buffer(page)).digestAsHexString());
    EXPECT_EQ(md5("b/" + std::string(100, 'x') + "b"), TextHasher(Hasher::DataText, buffer(page)).digestAsHexString());
    EXPECT_EQ(md5("b/" + std::string(100, 'x') + "b"), TextHasher(Hasher::DataJpeg, buffer(page)).digestAsHexString());
}

TEST(TextHasher, HashesAtMost256Bytes)
{
    TextHasher hasher(Hasher::DataText);
    hasher.process("a\nb\n" + std::string(1000, 'x'));
    EXPECT_EQ("c7a139a2b8e92164276f778917ba10b9", hasher.digestAsHexString()) << "MD5 of 256 x";
    EXPECT_EQ(256u, hasher.hashedDataLength());
    EXPECT_EQ(1004u, hasher.processedDataLength());
}

TEST(TextHasher, ExtractBelow64BytesGivesNoDigest)
{
    TextHasher hasher(Hasher::DataText);
    hasher.process(std::string(63, 'x'));
    EXPECT_FALSE(hasher.isValid());
    EXPECT_EQ(0u, hasher.hashedDataLength());
    EXPECT_EQ("", hasher.digest());
    hasher.process(std::string(64, 'x'));
    EXPECT_TRUE(hasher.isValid());
}

TEST(TextHasher, AsksForMoreWhileTheExtractIsNotFullAndTheSourceIsLonger)
{
    TextHasher hasher(Hasher::DataText);
    process(hasher, "a\nb\n" + std::string(255, 'x'), 1000);
    EXPECT_TRUE(hasher.isValid());
    EXPECT_TRUE(hasher.isMoreDataRequired());
    process(hasher, "a\nb\n" + std::string(256, 'x'));
    EXPECT_FALSE(hasher.isMoreDataRequired()) << "full";
    process(hasher, std::string(10, 'x'));
    EXPECT_TRUE(hasher.isMoreDataRequired()) << "the flag is judged anew each time";
    process(hasher, std::string(10, 'x'), 10);
    EXPECT_FALSE(hasher.isMoreDataRequired()) << "there is no more";
}

TEST(TextHasher, AsksForNoMoreWhereTheSourceIsUnknown)
{
    TextHasher hasher(Hasher::DataText);
    hasher.process(std::string(10, 'x'));
    EXPECT_FALSE(hasher.isMoreDataRequired());
}

TEST(TextHasher, FillingDoesNotCountAsFull)
{
    TextHasher hasher(Hasher::DataText);
    process(hasher, std::string(128, 'x'), 1000);
    EXPECT_EQ(128u, hasher.hashedDataLength());
    EXPECT_TRUE(hasher.isMoreDataRequired());
}

TEST(TextHasher, HashedLengthStaysAtItsFirstValue)
{
    TextHasher hasher(Hasher::DataText);
    process(hasher, std::string(70, 'x'));
    process(hasher, "a\nb\n" + std::string(500, 'x'));
    EXPECT_EQ(70u, hasher.hashedDataLength());
    EXPECT_EQ("c7a139a2b8e92164276f778917ba10b9", hasher.digestAsHexString()) << "the digest follows";
}

TEST(TextHasher, GrowingPrefixesGiveTheDigestOfTheWhole)
{
    std::string const whole = "one\ntwo\n" + std::string(5000, ' ') + std::string(300, 'x') + "\nlast\n";
    TextHasher hasher(Hasher::DataText);
    size_t given = 1000;
    process(hasher, whole.substr(0, given), static_cast<unsigned int>(whole.size()));
    for (; hasher.isMoreDataRequired(); given += 1000) process(hasher, whole.substr(0, given + 1000));
    EXPECT_EQ(6000u, given) << "it stops as soon as the extract is full";
    EXPECT_EQ(TextHasher(Hasher::DataText, buffer(whole)).digest(), hasher.digest());
}

struct ImageRow {
    Hasher::DataType type;
    std::string image;
    Hasher::DataType becomes;
};

TEST(ImageHasher, TriesTheOtherKindsAndMayChangeItsType)
{
    ImageRow const rows[] = {
        {Hasher::DataJpeg, jpg(pixels(200)), Hasher::DataJpeg}, {Hasher::DataJpeg, gif(pixels(200)), Hasher::DataJpeg},
        {Hasher::DataJpeg, png(pixels(200)), Hasher::DataPng},  {Hasher::DataGif, gif(pixels(200)), Hasher::DataGif},
        {Hasher::DataGif, jpg(pixels(200)), Hasher::DataJpeg},  {Hasher::DataGif, png(pixels(200)), Hasher::DataPng},
        {Hasher::DataPng, png(pixels(200)), Hasher::DataPng},   {Hasher::DataPng, gif(pixels(200)), Hasher::DataGif},
        {Hasher::DataPng, jpg(pixels(200)), Hasher::DataJpeg},  {Hasher::DataText, jpg(pixels(200)), Hasher::DataText},
        {Hasher::DataText, gif(pixels(200)), Hasher::DataJpeg}, {Hasher::DataText, png(pixels(200)), Hasher::DataPng},
    };
    for (ImageRow const& row : rows) {
        ImageHasher const hasher(row.type, buffer(row.image));
        EXPECT_TRUE(hasher.isValid()) << row.type << " " << row.becomes;
        EXPECT_EQ(row.becomes, hasher.dataType()) << row.type;
        EXPECT_EQ(md5(pixels(200)), hasher.digestAsHexString()) << row.type << " " << row.becomes;
        EXPECT_EQ(200u, hasher.hashedDataLength()) << row.type << " " << row.becomes;
        EXPECT_EQ(row.image.size(), hasher.processedDataLength());
    }
}

TEST(ImageHasher, HashesTheFirst4096BytesOfAllPixelData)
{
    std::string const first4096(4096, '\0');
    EXPECT_EQ("620f0b67a91f7f74151bc5be745b7110",
              ImageHasher(Hasher::DataJpeg, buffer(jpg(first4096 + "more"))).digestAsHexString());
    EXPECT_EQ("620f0b67a91f7f74151bc5be745b7110",
              ImageHasher(Hasher::DataGif, buffer(gif(first4096 + "more"))).digestAsHexString());
    EXPECT_EQ("620f0b67a91f7f74151bc5be745b7110",
              ImageHasher(Hasher::DataPng, buffer(png(first4096 + "more"))).digestAsHexString());
}

TEST(ImageHasher, GathersPiecesUntil4096BytesAreHeld)
{
    ImageHasher const gifs(Hasher::DataGif, buffer(gif(pixels(10000))));
    EXPECT_EQ(17u * 255, gifs.hashedDataLength()) << "16 blocks of 255 bytes are too few";
    ImageHasher const pngs(Hasher::DataPng, buffer(png(pixels(4000)) + pngChunk(pixels(50)) + pngChunk(pixels(60)) +
                                                   pngChunk(pixels(70))));
    EXPECT_EQ(4110u, pngs.hashedDataLength());
    EXPECT_EQ(md5(pixels(4096)), pngs.digestAsHexString());
}

TEST(ImageHasher, ExactlyEnoughEndsTheWalk)
{
    ImageHasher const hasher(Hasher::DataPng, buffer(png(pixels(4096)) + "broken"));
    EXPECT_EQ(Hasher::DataPng, hasher.dataType());
    EXPECT_EQ(4096u, hasher.hashedDataLength());
}

TEST(ImageHasher, PieceOfNoBytesEndsTheWalkWithSuccess)
{
    ImageHasher const hasher(Hasher::DataPng, buffer(png(pixels(200)) + pngChunk("") + "broken"));
    EXPECT_EQ(Hasher::DataPng, hasher.dataType());
    EXPECT_EQ(md5(pixels(200)), hasher.digestAsHexString());
}

TEST(ImageHasher, Below128BytesOfPixelDataThereIsNoDigest)
{
    ImageHasher hasher(Hasher::DataPng);
    process(hasher, png(pixels(127)), 1000);
    EXPECT_FALSE(hasher.isValid());
    EXPECT_TRUE(hasher.isMoreDataRequired());
    EXPECT_EQ(127u, hasher.hashedDataLength());
    process(hasher, png(pixels(128)), 1000);
    EXPECT_TRUE(hasher.isValid());
    EXPECT_FALSE(hasher.isMoreDataRequired());
}

TEST(ImageHasher, AsksForNoMoreWhereThereIsNone)
{
    std::string const image = png(pixels(100));
    ImageHasher hasher(Hasher::DataPng);
    process(hasher, image);
    EXPECT_FALSE(hasher.isMoreDataRequired()) << "the source is unknown";
    process(hasher, image, static_cast<unsigned int>(image.size()));
    EXPECT_FALSE(hasher.isMoreDataRequired()) << "this was all";
    process(hasher, image, static_cast<unsigned int>(image.size() + 1));
    EXPECT_TRUE(hasher.isMoreDataRequired());
}

TEST(ImageHasher, ShortDataThatIsNoImageGivesNoDigest)
{
    ImageHasher hasher(Hasher::DataGif);
    process(hasher, pixels(100), 100);
    EXPECT_FALSE(hasher.isValid());
    EXPECT_FALSE(hasher.isMoreDataRequired());
    EXPECT_EQ(0u, hasher.hashedDataLength());
    EXPECT_EQ(Hasher::DataGif, hasher.dataType());
    process(hasher, pixels(100), 101);
    EXPECT_TRUE(hasher.isMoreDataRequired());
}

TEST(ImageHasher, DataOf1024BytesThatIsNoImageIsHashedAsBinary)
{
    ImageHasher hasher(Hasher::DataPng);
    process(hasher, pixels(1023), 5000);
    EXPECT_EQ(Hasher::DataPng, hasher.dataType());
    EXPECT_FALSE(hasher.isValid());
    process(hasher, pixels(1024), 5000);
    EXPECT_EQ(Hasher::DataBinary, hasher.dataType());
    EXPECT_TRUE(hasher.isValid());
    EXPECT_EQ(md5(pixels(1024)), hasher.digestAsHexString());
    EXPECT_TRUE(hasher.isMoreDataRequired()) << "binary data always wants the rest";
    process(hasher, pixels(5000), 5000);
    EXPECT_FALSE(hasher.isMoreDataRequired());
    EXPECT_EQ(md5(pixels(4096)), hasher.digestAsHexString());
    EXPECT_EQ(5000u, hasher.hashedDataLength());
}

// The third try of a GIF hasher is PNG, which gives its cut chunk and then fails.
TEST(ImageHasher, PixelDataOfAFailedLastTryIsHashedIfTheInputIsShort)
{
    std::string const cut = png(pixels(300)).substr(0, 8 + 8 + 200);
    ImageHasher const hasher(Hasher::DataGif, buffer(cut));
    EXPECT_TRUE(hasher.isValid());
    EXPECT_EQ(Hasher::DataGif, hasher.dataType());
    EXPECT_EQ(md5(pixels(200)), hasher.digestAsHexString());
}

TEST(ImageHasher, PixelDataOfAFailedEarlierTryIsForgotten)
{
    std::string const cut = png(pixels(300)).substr(0, 8 + 8 + 200);
    ImageHasher const hasher(Hasher::DataPng, buffer(cut));
    EXPECT_FALSE(hasher.isValid());
    EXPECT_EQ(0u, hasher.hashedDataLength());
}

TEST(ImageHasher, DigestOnceMadeStaysUntilTheNext)
{
    ImageHasher hasher(Hasher::DataPng, buffer(png(pixels(200))));
    hasher.process(png(pixels(10)));
    EXPECT_TRUE(hasher.isValid());
    EXPECT_EQ(md5(pixels(200)), hasher.digestAsHexString());
    EXPECT_EQ(10u, hasher.hashedDataLength());
}

TEST(ImageHasher, GrowingPrefixesTurnFromBinaryIntoTheImage)
{
    std::string const image =
        "\xff\xd8\xff\xe0\x10\0"_b + std::string(0x1000 - 2, '.') + "\xff\xda\0\2"_b + pixels(500);
    ImageHasher hasher(Hasher::DataJpeg);
    process(hasher, image.substr(0, 2048), static_cast<unsigned int>(image.size()));
    EXPECT_EQ(Hasher::DataBinary, hasher.dataType());
    EXPECT_TRUE(hasher.isMoreDataRequired());
    process(hasher, image);
    EXPECT_FALSE(hasher.isMoreDataRequired());
    EXPECT_EQ(md5(pixels(500)), hasher.digestAsHexString());
    EXPECT_EQ(Hasher::DataBinary, hasher.dataType()) << "its own try, now that for JPEG, changes no type";
}

TEST(ImageDataExtraction, AsksForMoreBelow4096Bytes)
{
    Buffer data;
    std::string const piece = pixels(4095);
    EXPECT_EQ(4095, imageDataExtraction(piece.data(), 4095, &data));
    EXPECT_EQ(0, imageDataExtraction(piece.data(), 0, &data));
    EXPECT_EQ(0, imageDataExtraction(piece.data(), 1, &data));
    EXPECT_EQ(0, imageDataExtraction(piece.data(), 100, &data));
    EXPECT_EQ(4196u, data.length());
}

TEST(BinaryHasher, Needs1024Bytes)
{
    BinaryHasher hasher;
    process(hasher, pixels(1023));
    EXPECT_FALSE(hasher.isValid());
    EXPECT_EQ(1023u, hasher.hashedDataLength());
    EXPECT_FALSE(hasher.isMoreDataRequired());
    process(hasher, pixels(1024));
    EXPECT_TRUE(hasher.isValid());
    EXPECT_EQ(1024u, hasher.hashedDataLength());
}

TEST(BinaryHasher, HashesAtMost4096BytesUnlessSetOtherwise)
{
    std::string const data = std::string(4096, '\0') + "more";
    EXPECT_EQ("620f0b67a91f7f74151bc5be745b7110", BinaryHasher(buffer(data)).digestAsHexString());
    EXPECT_EQ(4100u, BinaryHasher(buffer(data)).hashedDataLength());
    BinaryHasher standard(0), larger(4098), smaller(10);
    for (Hasher* hasher : std::initializer_list<Hasher*>{&standard, &larger, &smaller}) hasher->process(data);
    EXPECT_EQ("620f0b67a91f7f74151bc5be745b7110", standard.digestAsHexString());
    EXPECT_EQ(md5(data.substr(0, 4098)), larger.digestAsHexString());
    EXPECT_EQ(md5(data.substr(0, 10)), smaller.digestAsHexString());
}

TEST(BinaryHasher, AsksForMoreBelow1024BytesIfTheSourceIsLonger)
{
    BinaryHasher hasher;
    process(hasher, pixels(100), 100);
    EXPECT_FALSE(hasher.isMoreDataRequired());
    process(hasher, pixels(100), 101);
    EXPECT_TRUE(hasher.isMoreDataRequired());
}

TEST(BinaryHasher, OnceAskedGoesOnAsking)
{
    BinaryHasher hasher;
    process(hasher, pixels(100), 2000);
    process(hasher, pixels(2000));
    EXPECT_TRUE(hasher.isValid());
    EXPECT_TRUE(hasher.isMoreDataRequired());
    process(hasher, pixels(10), 10);
    EXPECT_TRUE(hasher.isMoreDataRequired());
}

TEST(BinaryHasher, FullExtractAsksForNothing)
{
    BinaryHasher hasher;
    process(hasher, pixels(1024), 100000);
    EXPECT_FALSE(hasher.isMoreDataRequired());
}

TEST(HasherImpl, TellTheMostBytesThatEnterTheDigest)
{
    EXPECT_EQ(256u, TextHasherHtml().maxlen());
    EXPECT_EQ(256u, TextHasherPlain().maxlen());
    EXPECT_EQ(4096u, ImageHasherImpl().maxlen());
    EXPECT_EQ(4096u, BinaryHasherImpl().maxlen());
    EXPECT_EQ(4096u, BinaryHasherImpl(0).maxlen());
    EXPECT_EQ(7u, BinaryHasherImpl(7).maxlen());
    EXPECT_EQ(4096u, BinaryHasherImpl().data.size());
}

TEST(HasherImpl, OwnKindsCanStandBehindAHandle)
{
    struct Whole : HasherImpl {
        unsigned int maxlen() const override { return 3; }
        void process(Buffer const& input) override
        {
            data = input;
            finish();
        }
    };
    Hasher hasher(new Whole, false);
    hasher.process("abcdef");
    EXPECT_TRUE(hasher.isValid());
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", hasher.digestAsHexString()) << "MD5 of abc";
    Hasher none(new Whole, false);
    none.process("");
    EXPECT_TRUE(none.isValid());
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", none.digestAsHexString()) << "MD5 of nothing";
    EXPECT_EQ(Hasher::DataNone, hasher.dataType());
}

} // namespace
} // namespace Velmara
