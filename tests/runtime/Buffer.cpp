#include <velmara/Buffer.h>
#include <velmara/Exception.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace Velmara {
namespace {

std::string _text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

void _append(Buffer& buffer, std::string const& text)
{
    buffer.append(reinterpret_cast<unsigned char const*>(text.data()), static_cast<unsigned int>(text.size()));
}

Buffer _buffer(std::string const& text)
{
    return Buffer(text.data(), static_cast<unsigned int>(text.size()), true);
}

TEST(Buffer, IsEmptyAtFirst)
{
    Buffer const buffer;
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(0u, buffer.length());
    EXPECT_EQ(0u, buffer.size());
}

TEST(Buffer, OfAnEmptyStringIsValid)
{
    EXPECT_TRUE(Buffer("", 0, true).isEmpty());
}

TEST(Buffer, WithASizeHasThatCapacityAndNoBytes)
{
    Buffer const buffer(2048, 0);
    EXPECT_EQ(2048u, buffer.size());
    EXPECT_EQ(0u, buffer.length());
}

TEST(Buffer, NegativeSizesCountAsZero)
{
    Buffer buffer(-5, -1);
    EXPECT_EQ(0u, buffer.size());
    _append(buffer, "abc");
    EXPECT_EQ("abc", _text(buffer));
}

TEST(Buffer, TheSecondNumberIsTheStepOfGrowthAndLimitsNothing)
{
    Buffer buffer(512, 4096);
    _append(buffer, std::string(513, 'a'));
    EXPECT_EQ(512u + 4096u, buffer.size());
    _append(buffer, std::string(10000, 'b'));
    EXPECT_EQ(10513u, buffer.length());
}

TEST(Buffer, GrowsByDoublingWithoutAStep)
{
    Buffer buffer(100, 0);
    _append(buffer, std::string(101, 'a'));
    EXPECT_EQ(200u, buffer.size());
}

TEST(Buffer, LengthOnlyTruncatesAndKeepsTheRoom)
{
    Buffer buffer = _buffer("abcdef");
    unsigned int const size = buffer.size();
    buffer.length(3);
    EXPECT_EQ("abc", _text(buffer));
    buffer.length(5);
    EXPECT_EQ("abc", _text(buffer));
    buffer.length(0);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(size, buffer.size());
}

TEST(Buffer, SettingTheSizeCutsALongerLength)
{
    Buffer buffer = _buffer("abcdef");
    buffer.size(4);
    EXPECT_EQ("abcd", _text(buffer));
    EXPECT_EQ(4u, buffer.size());
    buffer.size(100);
    EXPECT_EQ("abcd", _text(buffer));
    EXPECT_EQ(100u, buffer.size());
}

TEST(Buffer, PastMaxSizeWhatFitsIsKept)
{
    Buffer buffer;
    buffer.maxSize(5);
    _append(buffer, "abc");
    _append(buffer, "defg");
    buffer.append(static_cast<unsigned char>('h'));
    EXPECT_EQ("abcde", _text(buffer));
}

TEST(Buffer, MaxSizeAppliesToSingleBytesWithinTheCapacity)
{
    Buffer buffer(100, 0);
    buffer.maxSize(2);
    for (char c : std::string("abc")) buffer.append(static_cast<unsigned char>(c));
    EXPECT_EQ("ab", _text(buffer));
}

TEST(Buffer, MaxSizeLeavesWhatIsThere)
{
    Buffer buffer = _buffer("abcdef");
    buffer.maxSize(3);
    _append(buffer, "g");
    EXPECT_EQ("abcdef", _text(buffer));
}

TEST(Buffer, MaxSizeZeroIsNoLimit)
{
    Buffer buffer;
    buffer.maxSize(2);
    buffer.maxSize(0);
    _append(buffer, "abcdef");
    EXPECT_EQ("abcdef", _text(buffer));
}

TEST(Buffer, ACopyOwnsItsBytes)
{
    char foreign[] = "abc";
    Buffer const original(foreign, 3, false);
    Buffer copy(original);
    foreign[0] = 'x';
    EXPECT_EQ("xbc", _text(original));
    EXPECT_EQ("abc", _text(copy));
    Buffer assigned;
    assigned = copy;
    copy.at(0, 'y');
    EXPECT_EQ("abc", _text(assigned));
}

TEST(Buffer, ForeignBytesAreChangedInPlaceAndNeverOutgrown)
{
    char foreign[] = "abcdef";
    Buffer buffer(foreign, 4, false);
    buffer.at(0, 'X');
    buffer.length(2);
    _append(buffer, "1234");
    EXPECT_EQ("Xb12", _text(buffer));
    EXPECT_STREQ("Xb12ef", foreign);
    buffer.size(100);
    EXPECT_EQ(4u, buffer.size());
}

TEST(Buffer, ForeignBytesMoveToTheFrontToMakeRoom)
{
    char foreign[] = "abcdef";
    Buffer buffer(foreign, 6, false);
    buffer.shiftLeft(4);
    _append(buffer, "12345");
    EXPECT_EQ("ef1234", _text(buffer));
    EXPECT_STREQ("ef1234", foreign);
}

TEST(Buffer, ForeignBytesBehindASmallerCapacityAreStillRoom)
{
    char foreign[] = "abcdef";
    Buffer buffer(foreign, 6, false);
    buffer.size(3);
    EXPECT_EQ("abc", _text(buffer));
    _append(buffer, "wxyz");
    EXPECT_EQ("abcwxy", _text(buffer));
    EXPECT_EQ(6u, buffer.size());
}

TEST(Buffer, ForeignBytesMoveThoughTheyOverlap)
{
    char foreign[] = "abcdef";
    Buffer buffer(foreign, 6, false);
    buffer.shiftLeft(1);
    _append(buffer, "xy");
    EXPECT_EQ("bcdefx", _text(buffer));
    EXPECT_STREQ("bcdefx", foreign);
}

TEST(Buffer, AssignedToItselfItStaysAsItIs)
{
    Buffer buffer = _buffer("abc");
    Buffer const& same = buffer;
    buffer = same;
    EXPECT_EQ("abc", _text(buffer));
}

TEST(Buffer, AtPastTheLengthReadsZeroAndWritesNothing)
{
    Buffer buffer(10, 0);
    _append(buffer, "ab");
    buffer.at(2, 'x');
    buffer.at(1, 'y');
    EXPECT_EQ('y', buffer.at(1));
    EXPECT_EQ(0, buffer.at(2));
    EXPECT_EQ(0, buffer.at(1000));
    EXPECT_EQ(2u, buffer.length());
}

TEST(Buffer, AppendsBytesBuffersAndItself)
{
    Buffer buffer;
    buffer.append(static_cast<unsigned char>('a'));
    unsigned char bytes[] = {'b', 'c'};
    buffer.append(bytes, 2);
    buffer.append(_buffer("de"));
    buffer.append(buffer);
    EXPECT_EQ("abcdeabcde", _text(buffer));
}

TEST(Buffer, AppendsItselfWhileItGrows)
{
    Buffer buffer(4, 0);
    _append(buffer, "abcd");
    for (int i = 0; i < 10; ++i) buffer.append(buffer.data(), buffer.length());
    EXPECT_EQ(4096u, buffer.length());
    EXPECT_EQ("abcdabcd", _text(buffer).substr(4088));
}

TEST(Buffer, FillCoversTheCapacityAndKeepsTheLength)
{
    Buffer buffer(8, 0);
    _append(buffer, "abcd");
    buffer.shiftLeft(2);
    buffer.fill('z');
    EXPECT_EQ("zz", _text(buffer));
    EXPECT_EQ(8u, buffer.size());
    for (unsigned int i = 0; i < buffer.size(); ++i) EXPECT_EQ('z', buffer.data()[i]);
    Buffer whole = _buffer("abcd");
    whole.fill('y');
    EXPECT_EQ("yyyy", _text(whole));
    Buffer none;
    none.fill('x');
    EXPECT_EQ(0u, none.size());
}

TEST(Buffer, TheCapacityIsThereAlsoWhereItGrewBackPastTheRoomItOnceHad)
{
    Buffer buffer(100, 0);
    buffer.size(60);
    for (int i = 0; i < 61; ++i) buffer.append('a');
    ASSERT_EQ(120u, buffer.size());
    buffer.fill('z');
    EXPECT_EQ(std::string(120, 'z'), std::string(reinterpret_cast<char const*>(buffer.data()), buffer.size()));
}

TEST(Buffer, TheCapacityIsThereAgainBehindDroppedBytesOnceItIsSet)
{
    Buffer buffer(6, 0);
    buffer.append(reinterpret_cast<unsigned char const*>("abcdef"), 6u);
    buffer.shiftLeft(2);
    buffer.size(buffer.size());
    std::memset(buffer.data() + buffer.length(), 'z', buffer.size() - buffer.length());
    EXPECT_EQ("cdefzz", std::string(reinterpret_cast<char const*>(buffer.data()), buffer.size()));
}

TEST(Buffer, ShiftLeftDropsFromTheFrontAndKeepsTheCapacity)
{
    Buffer buffer(10, 0);
    _append(buffer, "abcdef");
    buffer.shiftLeft(2);
    EXPECT_EQ("cdef", _text(buffer));
    EXPECT_EQ(10u, buffer.size());
    buffer.shiftLeft(100);
    EXPECT_TRUE(buffer.isEmpty());
    EXPECT_EQ(10u, buffer.size());
}

TEST(Buffer, AsAQueueItKeepsOrderAndCapacity)
{
    Buffer queue(16, 0);
    unsigned int in = 0, out = 0;
    for (int round = 0; round < 5000; ++round) {
        while (queue.length() < 16) queue.append(static_cast<unsigned char>(in++ % 251));
        unsigned int const n = static_cast<unsigned int>(round % 7);
        for (unsigned int i = 0; i < n; ++i) ASSERT_EQ(out++ % 251, queue.at(i));
        queue.shiftLeft(n);
    }
    EXPECT_EQ(16u, queue.size());
}

struct FindRow {
    char const* text;
    int from;
    int colon, space, other;
};

TEST(Buffer, FindsFromAPosition)
{
    FindRow const rows[] = {
        {"a: b", 0, 1, 2, 0},      {"a: b", 2, -1, 2, 3},    {"a: b", 3, -1, -1, 3},
        {"a: b", 4, -1, -1, -1},   {"a: b", 99, -1, -1, -1}, {"", 0, -1, -1, -1},
        {"\t\r\n ", 0, -1, 0, -1}, {"\v\f:", 0, 2, -1, 0},   {":", -3, 0, -1, 0},
    };
    for (FindRow const& row : rows) {
        Buffer const buffer = _buffer(row.text);
        EXPECT_EQ(row.colon, buffer.find(':', row.from)) << row.text << " from " << row.from;
        EXPECT_EQ(row.space, buffer.findWhiteSpace(row.from)) << row.text << " from " << row.from;
        EXPECT_EQ(row.other, buffer.findNonWhiteSpace(row.from)) << row.text << " from " << row.from;
    }
}

struct Base64Row {
    char const* encoded;
    char const* decoded;
    bool throws;
};

TEST(Buffer, DecodesBase64)
{
    Base64Row const rows[] = {
        {"QUJD", "ABC", false},
        {"QQ==", "A", false},
        {"QUI=", "AB", false},
        {"", "", false},
        {" Q\tU\r\nJ\nD ", "ABC", false},
        {"QQ==QUJD", "A", false}, // decoding ends at padding
        {"QUJDQUJDQUJDQUJDQUJD", "ABCABCABCABCABC", false},
        {"QUJD*UJD", "ABC", true},
        {"QUJDQ*JD", "ABC", true},
        {"QUJDQU", "ABC", true},
        {"QUJDQ", "ABC", true},
        {"QQ=", "", true},
        {"QQ=A", "A", false}, // the length is a multiple of 4, and decoding has ended
        {"QQ=*", "", true},
        {"QQ= =", "A", false}, // white space within the padding is skipped as well
        {"====", "", false},
        {"Q===", "", false},
    };
    for (Base64Row const& row : rows) {
        Buffer out = _buffer("old");
        bool threw = false;
        try {
            _buffer(row.encoded).decodeBase64(out);
        } catch (BufferException const& e) {
            threw = true;
            EXPECT_EQ(5, e.code());
        }
        EXPECT_EQ(row.throws, threw) << row.encoded;
        EXPECT_EQ(row.decoded, _text(out)) << row.encoded;
    }
}

TEST(Buffer, DecodesBase64OntoItselfAndWithinLimits)
{
    Buffer self = _buffer("QUJDREVG");
    self.decodeBase64(self);
    EXPECT_EQ("ABCDEF", _text(self));
    Buffer limited;
    limited.maxSize(4);
    _buffer("QUJDREVG").decodeBase64(limited);
    EXPECT_EQ("ABCD", _text(limited));
    limited.maxSize(10);
    EXPECT_THROW(_buffer("QUJD*").decodeBase64(limited), BufferException);
    EXPECT_EQ("ABC", _text(limited)); // what was decoded so far
}

TEST(Buffer, DecodesBase64IntoForeignBytesAsFarAsTheyReach)
{
    char foreign[] = "abcd";
    Buffer out(foreign, 4, false);
    _buffer("QUJDREVG").decodeBase64(out);
    EXPECT_EQ("ABCD", _text(out));
    EXPECT_STREQ("ABCD", foreign);
}

TEST(Buffer, EncodesBase64OnOneLine)
{
    EXPECT_EQ("", Buffer().toBase64String());
    EXPECT_EQ("QQ==", _buffer("A").toBase64String());
    EXPECT_EQ("QUI=", _buffer("AB").toBase64String());
    EXPECT_EQ("QUJD", _buffer("ABC").toBase64String());
    EXPECT_EQ("/+/+", Buffer("\xFF\xEF\xFE", 3, true).toBase64String());
    EXPECT_EQ(std::string(400, 'Q').size(), _buffer(std::string(300, 'x')).toBase64String().size());
}

TEST(Buffer, Base64OfEveryByteComesBack)
{
    for (unsigned int n = 0; n < 260; ++n) {
        std::string bytes;
        for (unsigned int i = 0; i < n; ++i) bytes += static_cast<char>(i * 7 + n);
        Buffer out;
        _buffer(_buffer(bytes).toBase64String()).decodeBase64(out);
        EXPECT_EQ(bytes, _text(out)) << n;
    }
}

TEST(Buffer, TheBase64AlphabetHas64CharactersAndThePadding)
{
    std::string const valid = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(valid.find(static_cast<char>(c)) != std::string::npos,
                  Buffer::isValidBase64Char(static_cast<unsigned char>(c)))
            << c;
}

} // namespace
} // namespace Velmara
