#include <velmara/image_walkers.h>

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <climits>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "hash/ImagePieces.h"
#include "hash/PlainImageWalkers.h"
#include "support/Rule.h"

namespace {

using Walker = int (*)(unsigned char const*, int, image_data_callback, void*);
using Pieces = std::vector<std::string>;

// Keeps what it is given and asks for more until it has been given `wanted` pieces.
struct Collector {
    size_t wanted;
    Pieces pieces;
};

int collect(unsigned char const* bytes, int count, void* context)
{
    Collector& collector = *static_cast<Collector*>(context);
    collector.pieces.emplace_back(reinterpret_cast<char const*>(bytes), static_cast<size_t>(count));
    return collector.pieces.size() < collector.wanted;
}

struct Walk {
    int code;
    Pieces pieces;
};

// The image stands at the end of a block of its own, where a sanitizer sees a read behind it.
Walk walk(Walker walker, std::string const& bytes, size_t wanted = SIZE_MAX)
{
    std::unique_ptr<unsigned char[]> block(new unsigned char[bytes.size()]);
    std::memcpy(block.get(), bytes.data(), bytes.size());
    Collector collector = {wanted, {}};
    int const code = walker(block.get(), static_cast<int>(bytes.size()), collect, &collector);
    return {code, collector.pieces};
}

std::string operator""_b(char const* text, size_t n)
{
    return std::string(text, n);
}

struct Row {
    char const* rule;
    std::string image;
    int code;
    Pieces pieces;
};

void check(Walker walker, Row const& row)
{
    Walk const result = walk(walker, row.image);
    EXPECT_EQ(row.code, result.code);
    EXPECT_EQ(row.pieces, result.pieces);
}

TEST(ImageWalkers, NegativeSizesAndNoDataAreNoImage)
{
    Collector collector = {SIZE_MAX, {}};
    for (Walker walker : {process_jpg, process_gif, process_png})
        for (int size : {0, -1, INT_MIN}) EXPECT_EQ(-1, walker(nullptr, size, collect, &collector));
    EXPECT_TRUE(collector.pieces.empty());
}

class Jpg : public testing::TestWithParam<Row> {};

TEST_P(Jpg, WalksAsExpected)
{
    check(process_jpg, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, Jpg,
    testing::Values(
        Row{"OneByteIsNone", "\xff", -1, {}}, Row{"OtherHeadIsNone", "\xff\xd9..", -1, {}},
        Row{"HeadAloneGivesNothing", "\xff\xd8", 0, {}},
        Row{"AllBehindTheFirstScanHeaderIsOnePiece",
            "\xff\xd8\xff\xda\0\4abscan\xff\xd9\xff\xda\0\2"_b,
            0,
            {"scan\xff\xd9\xff\xda\0\2"_b}},
        Row{"SegmentsAheadOfTheScanAreSteppedOver",
            "\xff\xd8\xff\xe0\0\4ab\xff\xdb\0\2\xff\xda\0\3xscan"_b,
            0,
            {"scan"}},
        Row{"EndAheadOfAScanGivesNothing", "\xff\xd8\xff\xe0\0\4ab"_b, 0, {}},
        Row{"ScanThatHoldsNothingIsAPieceOfNoBytes", "\xff\xd8\xff\xda\0\2"_b, 0, {""}},
        Row{"FillBytesAndLoneMarkersAreSteppedOver",
            "\xff\xd8\xff\xff\x01\xd0\xd1\xd2\xd3\xd4\xd5\xd6\xd7\xff\xda\0\2scan"_b,
            0,
            {"scan"}},
        Row{"FillBytesAloneGiveNothing", "\xff\xd8\xff\xff\xff", 0, {}},
        Row{"MarkerNeedsNoFillByteAhead", "\xff\xd8\xda\0\2scan"_b, 0, {"scan"}},
        Row{"OtherJunkIsReadAsAMarkerWithALength", "\xff\xd8\x02\0\3x\xff\xda\0\2scan"_b, 0, {"scan"}},
        Row{"RestartMarkerD8IsNotSteppedOver", "\xff\xd8\xd8\0\2\xda\0\2scan"_b, 0, {"scan"}},
        Row{"MarkerCF", "\xff\xd8\xcf\0\2\xda\0\2scan"_b, 0, {"scan"}},
        Row{"EndOfImageCountsAsASegment", "\xff\xd8\xff\xd9", -3, {}},
        Row{"LengthCutShort", "\xff\xd8\xff\xe0\0"_b, -3, {}},
        Row{"LengthThatReachesPastTheEnd", "\xff\xd8\xff\xe0\0\3"_b, -4, {}},
        Row{"LengthThatReachesToTheEnd", "\xff\xd8\xff\xe0\0\2"_b, 0, {}},
        Row{"LongestLength", "\xff\xd8\xff\xe0\xff\xff.", -4, {}},
        Row{"LengthIsBigEndian", "\xff\xd8\xe0\1\0"_b + std::string(254, 'x') + "\xda\0\2scan"_b, 0, {"scan"}},
        Row{"LengthZeroStepsOverTheMarkerAlone", "\xff\xd8\xe0\0\0\3y\xda\0\2scan"_b, 0, {"scan"}},
        Row{"LengthOneLeavesItsLastByteToBeReadAgain", "\xff\xd8\xe0\0\1\xda\0\2scan"_b, 0, {"scan"}}),
    Velmara::ruleName);

TEST(Jpg, SucceedsWhateverTheCallbackReturns)
{
    EXPECT_EQ(0, walk(process_jpg, "\xff\xd8\xff\xda\0\2scan"_b, 1).code);
    EXPECT_EQ(Pieces{"scan"}, walk(process_jpg, "\xff\xd8\xff\xda\0\2scan"_b, 1).pieces);
}

// A screen with the packed byte, and a global table of that many bytes.
std::string screen(char packed, size_t tableBytes = 0)
{
    return std::string("GIF89awwhh") + packed + "bp" + std::string(tableBytes, 't');
}

std::string const image = ",xxyywwhh\0c"_b;     // without a local table; sub-blocks follow
std::string const imageLocal = ",xxyywwhh\x80"; // the local table follows, then the code size
std::string const one = "\3abc\0"_b;

class Gif : public testing::TestWithParam<Row> {};

TEST_P(Gif, WalksAsExpected)
{
    check(process_gif, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, Gif,
    testing::Values(
        Row{"FiveBytesAreNone", "GIF89", -1, {}}, Row{"OtherVersionIsNone", "GIF88awwhh.bp;", -1, {}},
        Row{"OlderVersion", "GIF87awwhh\0bp"_b + image + one, 0, {"abc"}}, Row{"HeadAlone", "GIF89a", -2, {}},
        Row{"ScreenCutShort", "GIF89awwhh\0b"_b, -2, {}}, Row{"ScreenAlone", screen('\0'), -4, {}},
        Row{"GlobalTableCutShort", screen('\x80', 5), -3, {}}, Row{"GlobalTableAlone", screen('\x80', 6), -4, {}},
        Row{"SubBlocksComeOneByOne", screen('\0') + image + "\1a\2bc\0"_b, 0, {"a", "bc"}},
        Row{"ImagesAreJoined", screen('\0') + image + one + image + "\1d\0"_b, 0, {"abc", "d"}},
        Row{"ImageWithoutData", screen('\0') + image + "\0"_b, 0, {}},
        Row{"ImageDescriptorCutShort", screen('\0') + ",xxyywwhh", -4, {}},
        Row{"CodeSizeMissing", screen('\0') + ",xxyywwhh\0"_b, -6, {}},
        Row{"SubBlocksMissing", screen('\0') + image, -7, {}},
        Row{"SubBlockEndMissing", screen('\0') + image + "\3abc", -7, {"abc"}},
        Row{"SubBlockCutShortGivesWhatIsThere", screen('\0') + image + "\4abc", -8, {"abc"}},
        Row{"SubBlockOfNothingButItsLengthIsAPieceOfNoBytes", screen('\0') + image + "\4", -8, {""}},
        Row{"LocalTableHasThreeBytesWithoutAGlobalOne", screen('\0') + imageLocal + "tttc" + one, 0, {"abc"}},
        Row{"LocalTableCutShort", screen('\0') + imageLocal + "tt", -5, {}},
        Row{"LocalTableAlone", screen('\0') + imageLocal + "ttt", -6, {}},
        Row{"PackedSizeCountsForNothingWithoutTheTable", screen('\7') + imageLocal + "tttc" + one, 0, {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf6",
            screen('\x80', 6) + imageLocal + std::string(384, 't') + "c" + one,
            0,
            {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf12",
            screen('\x81', 12) + imageLocal + std::string(24576, 't') + "c" + one,
            0,
            {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf24IsTooLarge",
            screen('\x82', 24) + imageLocal + std::string(400000, 't') + "c" + one,
            -5,
            {}},
        Row{"LocalTableBehindAGlobalOneOf48",
            screen('\x83', 48) + imageLocal + std::string(393216, 't') + "c" + one,
            0,
            {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf96", screen('\x84', 96) + imageLocal + "ttttttc" + one, 0, {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf192", screen('\x85', 192) + imageLocal + "ttttttc" + one, 0, {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf384", screen('\x86', 384) + imageLocal + "ttttttc" + one, 0, {"abc"}},
        Row{"LocalTableBehindAGlobalOneOf768", screen('\xf7', 768) + imageLocal + "ttttttc" + one, 0, {"abc"}},
        Row{"LocalTablesOwnSizeCountsForNothing", screen('\0') + ",xxyywwhh\x87tttc" + one, 0, {"abc"}},
        Row{"ExtensionIsSteppedOver", screen('\0') + "!e\2xy\1z\0"_b + image + one, 0, {"abc"}},
        Row{"ExtensionWithoutData", screen('\0') + "!e\0"_b + image + one, 0, {"abc"}},
        Row{"ExtensionAlone", screen('\0') + "!e\2xy\0"_b, 0, {}},
        Row{"ExtensionCutShort", screen('\0') + "!e", -9, {}},
        Row{"ExtensionBlockCutShort", screen('\0') + "!e\2x", -11, {}},
        Row{"ExtensionEndMissing", screen('\0') + "!e\2xy", -10, {}},
        Row{"WalkGoesOnBehindTheTrailer",
            screen('\0') + ";" + image + one + ";;" + image + one + ";",
            0,
            {"abc", "abc"}},
        Row{"TrailerAlone", screen('\0') + ";", 0, {}},
        Row{"OtherBlockFails", screen('\0') + image + one + "x", -9, {"abc"}}),
    Velmara::ruleName);

TEST(Gif, CallbackEndsTheWalkWithSuccess)
{
    std::string const broken = screen('\0') + image + "\1a\2bc\3d";
    EXPECT_EQ(-8, walk(process_gif, broken).code);
    EXPECT_EQ(0, walk(process_gif, broken, 2).code);
    EXPECT_EQ((Pieces{"a", "bc"}), walk(process_gif, broken, 2).pieces);
    EXPECT_EQ(0, walk(process_gif, broken, 3).code) << "the callback is asked ahead of the length";
}

std::string const pngHead = "\x89PNG\r\n\x1a\n";

std::string chunk(std::string const& type, std::string const& data)
{
    return "\0\0\0"_b + static_cast<char>(data.size()) + type + data + "crc.";
}

class Png : public testing::TestWithParam<Row> {};

TEST_P(Png, WalksAsExpected)
{
    check(process_png, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, Png,
    testing::Values(
        Row{"SevenBytesAreNone", pngHead.substr(0, 7), -1, {}},
        Row{"OtherHeadIsNone", "\x89PNG\n\n\x1a\n" + chunk("IDAT", "a"), -1, {}}, Row{"HeadAlone", pngHead, -2, {}},
        Row{"ChunkHeadCutShort", pngHead + "\0\0\0\0IDA"_b, -2, {}},
        Row{"DataChunksComeInOrder",
            pngHead + chunk("IHDR", "h") + chunk("IDAT", "ab") + chunk("tEXt", "t") + chunk("IDAT", "c") +
                chunk("IEND", ""),
            0,
            {"ab", "c"}},
        Row{"WithoutDataGivesNothing", pngHead + chunk("IHDR", "h") + chunk("IEND", ""), 0, {}},
        Row{"EndChunkIsNotNeeded", pngHead + chunk("IDAT", "ab"), 0, {"ab"}},
        Row{"WalkGoesOnBehindTheEndChunk", pngHead + chunk("IEND", "") + chunk("IDAT", "ab"), 0, {"ab"}},
        Row{"TypeIsComparedExactly", pngHead + chunk("idat", "ab") + chunk("IDAt", "ab"), 0, {}},
        Row{"EmptyDataChunkIsAPieceOfNoBytes", pngHead + chunk("IDAT", "") + chunk("IDAT", "a"), 0, {"", "a"}},
        Row{"CutDataChunkGivesWhatIsThereAndFails",
            pngHead + chunk("IDAT", "ab") + "\0\0\0\x9IDATabc"_b,
            -3,
            {"ab", "abc"}},
        Row{"DataChunkOfNothingButItsHead", pngHead + "\0\0\0\x9IDAT"_b, -3, {""}},
        Row{"ChecksumMissing", pngHead + "\0\0\0\2IDATab"_b, -3, {"ab"}},
        Row{"ChecksumCutShort", pngHead + "\0\0\0\2IDATabcrc"_b, -3, {"ab"}},
        Row{"JunkBehindTheLastChunk", pngHead + chunk("IDAT", "ab") + "x", -2, {"ab"}},
        Row{"LargestLength", pngHead + "\x7f\xff\xff\xffIDATab"_b, -3, {"ab"}},
        Row{"LargestLengthOfAnotherChunk", pngHead + "\x7f\xff\xff\xfftEXtab"_b, -3, {}},
        Row{"LengthWhoseStepWouldWrap", pngHead + "\x7f\xff\xff\xf4IDATab"_b, -3, {"ab"}},
        Row{"NegativeLengthFailsAheadOfItsData", pngHead + "\x80\0\0\0IDATab"_b, -3, {}},
        Row{"MostNegativeLength", pngHead + "\xff\xff\xff\xffIDATab"_b, -3, {}}),
    Velmara::ruleName);

TEST(Png, CallbackEndsTheWalkWithSuccess)
{
    std::string const broken = pngHead + chunk("IDAT", "ab") + "\0\0\0\x9IDATabc"_b;
    EXPECT_EQ(0, walk(process_png, broken, 1).code);
    EXPECT_EQ(Pieces{"ab"}, walk(process_png, broken, 1).pieces);
    EXPECT_EQ(0, walk(process_png, broken, 2).code) << "the callback is asked ahead of the length";
}

// An image of the largest size that a walker can be given. Only the pages that are touched exist.
class LargestImage : public testing::Test {
protected:
    static constexpr size_t size = INT_MAX;

    void SetUp() override
    {
        m_data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        ASSERT_NE(MAP_FAILED, m_data);
    }
    void TearDown() override { munmap(m_data, size); }

    // The sizes of the pieces; the bytes are not copied.
    std::vector<int> sizes(Walker walker, std::string const& head, int expectedCode)
    {
        std::memcpy(m_data, head.data(), head.size());
        std::vector<int> counts;
        auto const note = [](unsigned char const*, int count, void* context) {
            static_cast<std::vector<int>*>(context)->push_back(count);
            return 1;
        };
        EXPECT_EQ(expectedCode, walker(static_cast<unsigned char*>(m_data), INT_MAX, note, &counts));
        return counts;
    }

private:
    void* m_data = nullptr;
};

TEST_F(LargestImage, JpgHandsOverAllBehindTheScanHeader)
{
    EXPECT_EQ(std::vector<int>{INT_MAX - 6}, sizes(process_jpg, "\xff\xd8\xff\xda\0\2"_b, 0));
}

TEST_F(LargestImage, PngChunkMayReachExactlyToTheEnd)
{
    // 8 bytes of signature, 12 of the chunk beside its data.
    EXPECT_EQ(std::vector<int>{INT_MAX - 20}, sizes(process_png, pngHead + "\x7f\xff\xff\xebIDAT", 0));
    EXPECT_EQ(std::vector<int>{INT_MAX - 19}, sizes(process_png, pngHead + "\x7f\xff\xff\xecIDAT", -3));
    EXPECT_EQ(std::vector<int>{INT_MAX - 16}, sizes(process_png, pngHead + "\x7f\xff\xff\xffIDAT", -3));
}

TEST_F(LargestImage, GifLocalTableOf100MegabytesIsSteppedOver)
{
    EXPECT_EQ(std::vector<int>(), sizes(process_gif, screen('\x82', 24) + imageLocal, -9))
        << "an image of no data, then a byte of 0";
}

struct Kind {
    Walker walker;
    int (*plain)(std::string, plainwalk::Take const&);
    std::string (*make)(std::string);
};

// Some pieces are refused, so that walks end in the middle too.
TEST(ImageWalkers, AgreeWithThePlainReadingOnGeneratedImages)
{
    Kind const kinds[] = {{process_jpg, plainwalk::jpg, imagepieces::jpg},
                          {process_gif, plainwalk::gif, imagepieces::gif},
                          {process_png, plainwalk::png, imagepieces::png}};
    std::mt19937 random(20240229);
    for (int i = 0; i < 50000; ++i) {
        std::string picks(random() % 200, '\0');
        for (char& pick : picks) pick = static_cast<char>(random());
        size_t const wanted = random() % 4 == 0 ? random() % 5 : SIZE_MAX;
        for (Kind const& kind : kinds) {
            std::string const made = imagepieces::cut(kind.make(picks), random());
            Pieces expected;
            int const code = kind.plain(made, [&](std::string const& piece) {
                expected.push_back(piece);
                return expected.size() < wanted;
            });
            Walk const result = walk(kind.walker, made, wanted);
            ASSERT_EQ(code, result.code) << testing::PrintToString(made);
            ASSERT_EQ(expected, result.pieces) << testing::PrintToString(made);
        }
    }
}

} // namespace
