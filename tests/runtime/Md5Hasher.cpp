#include <velmara/Md5Hasher.h>

#include <gtest/gtest.h>

namespace Velmara {
namespace {

void update(Md5Hasher& hasher, std::string const& text)
{
    hasher.update(reinterpret_cast<unsigned char const*>(text.data()), static_cast<unsigned int>(text.size()));
}

std::string hexOf(std::string const& text)
{
    Md5Hasher hasher;
    update(hasher, text);
    hasher.finalize();
    return hasher.digestAsHexString();
}

struct Row {
    char const *text, *hex;
};

// The test suite of RFC 1321.
TEST(Md5Hasher, GivesTheDigestsOfTheStandard)
{
    for (Row const& row : {
             Row{"", "d41d8cd98f00b204e9800998ecf8427e"},
             Row{"a", "0cc175b9c0f1b6a831c399e269772661"},
             Row{"abc", "900150983cd24fb0d6963f7d28e17f72"},
             Row{"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
             Row{"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
             Row{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
             Row{"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
                 "57edf4a22be3c955ac49da2e2107b67a"},
         })
        EXPECT_EQ(row.hex, hexOf(row.text)) << row.text;
}

TEST(Md5Hasher, CutsBetweenUpdatesDoNotMatter)
{
    std::string const text(150, 'x');
    for (size_t cut = 0; cut <= text.size(); ++cut) {
        Md5Hasher hasher;
        update(hasher, text.substr(0, cut));
        update(hasher, text.substr(cut));
        hasher.finalize();
        ASSERT_EQ(hexOf(text), hasher.digestAsHexString()) << cut;
    }
}

TEST(Md5Hasher, TheDigestIsSixteenBytesInTheOrderOfTheDigits)
{
    Md5Hasher hasher;
    hasher.finalize();
    EXPECT_EQ(std::string("\xd4\x1d\x8c\xd9\x8f\x00\xb2\x04\xe9\x80\x09\x98\xec\xf8\x42\x7e", 16), hasher.digest());
}

TEST(Md5Hasher, ThereIsNoDigestBeforeFinalize)
{
    Md5Hasher hasher;
    update(hasher, "abc");
    EXPECT_EQ("", hasher.digest());
    EXPECT_EQ("", hasher.digestAsHexString());
}

TEST(Md5Hasher, FinalizeTwiceIsFinalizeOnce)
{
    Md5Hasher hasher;
    update(hasher, "abc");
    hasher.finalize();
    hasher.finalize();
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", hasher.digestAsHexString());
}

TEST(Md5Hasher, AnUpdateBehindFinalizeBeginsANewDigest)
{
    Md5Hasher hasher;
    update(hasher, "first");
    hasher.finalize();
    update(hasher, "abc");
    EXPECT_EQ("", hasher.digest());
    hasher.finalize();
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", hasher.digestAsHexString());
}

TEST(Md5Hasher, ACopyGoesOnByItself)
{
    Md5Hasher hasher;
    update(hasher, "ab");
    Md5Hasher copy(hasher);
    update(hasher, "c");
    hasher.finalize();
    copy.finalize();
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", hasher.digestAsHexString());
    EXPECT_EQ(hexOf("ab"), copy.digestAsHexString());
    copy = hasher;
    EXPECT_EQ(hasher.digest(), copy.digest());
}

TEST(Md5Hasher, NullIsFineForNoBytes)
{
    Md5Hasher hasher;
    hasher.update(nullptr, 0);
    hasher.finalize();
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", hasher.digestAsHexString());
}

} // namespace
} // namespace Velmara
