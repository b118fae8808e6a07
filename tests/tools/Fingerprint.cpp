#include "facts/Fingerprint.h"

#include <cstdio>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <unistd.h>

#include <velmara/Installation.h>
#include <velmara/Md5Hasher.h>

namespace VelmaraCommand {
namespace {

using testing::AnyOf;
using testing::MatchesRegex;

std::string _md5(std::string const& bytes)
{
    Velmara::Md5Hasher md5;
    md5.update(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    md5.finalize();
    return md5.digestAsHexString();
}

std::string _valueOf(std::string const& name)
{
    for (Component const& one : components())
        if (one.name == name) return one.value;
    return "no such component";
}

TEST(Fingerprint, ComponentsAreTheSameEverywhereInOneOrder)
{
    std::vector<std::string> names;
    for (Component const& one : components()) names.push_back(one.name);
    EXPECT_EQ((std::vector<std::string>{"library", "ICU", "libxml2", "type database", "magic file", "tags html.dict",
                                        "words xdict-ec-gb.idx", "words e2i.idx", "words Dico_result_38.xdxf.idx",
                                        "words xdict-ce-gb.idx", "words xdict-ce-big5.idx", "words jmdict-ja-en.idx",
                                        "words rus_eng_full.idx", "words KoreanEnglishDic.idx",
                                        "words Babylon_Hebrew_English.idx", "words ara-eng.index", "vectors"}),
              names);
}

TEST(Fingerprint, VersionsAreThoseOfTheInstallation)
{
    EXPECT_EQ(Velmara::Installation::version(), _valueOf("library"));
    EXPECT_EQ(Velmara::Installation::icuVersion(), _valueOf("ICU"));
    EXPECT_EQ(Velmara::Installation::libxml2Version(), _valueOf("libxml2"));
}

TEST(Fingerprint, FilesAreDigestsOrAbsent)
{
    EXPECT_EQ(digestOfFile(Velmara::Installation::typeDatabase()), _valueOf("type database"));
    EXPECT_EQ(digestOfFile(Velmara::Installation::wordDirectory() + "/e2i.idx"), _valueOf("words e2i.idx"));
    for (size_t i = 3; i < components().size(); ++i)
        EXPECT_THAT(components()[i].value, AnyOf("absent", MatchesRegex("[0-9a-f]{32}"))) << components()[i].name;
}

TEST(Fingerprint, IsTheDigestOfTheComponents)
{
    std::string lines;
    for (Component const& one : components()) lines += one.name + "\t" + one.value + "\n";
    EXPECT_EQ(_md5(lines), fingerprint());
}

TEST(Fingerprint, IsLookedUpOnceByAllThreads)
{
    std::string const* seen[2] = {};
    std::thread first([&] { seen[0] = &fingerprint(); }), second([&] { seen[1] = &fingerprint(); });
    first.join();
    second.join();
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(32u, seen[0]->size());
}

class DigestOfFile : public testing::Test {
protected:
    ~DigestOfFile() override { std::remove(path.c_str()); }

    std::string digestOf(std::string const& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
        return digestOfFile(path);
    }

    std::string const path = testing::TempDir() + "velmara-fingerprint-" + std::to_string(::getpid());
};

TEST_F(DigestOfFile, IsThatOfItsBytes)
{
    EXPECT_EQ("d41d8cd98f00b204e9800998ecf8427e", digestOf(""));
    EXPECT_EQ("900150983cd24fb0d6963f7d28e17f72", digestOf("abc"));
    // Blocks that the reading may cut at.
    for (size_t n : {65535u, 65536u, 65537u, 200000u})
        EXPECT_EQ(_md5(std::string(n, 'x')), digestOf(std::string(n, 'x')));
}

TEST_F(DigestOfFile, WhatIsNoRegularFileIsAbsent)
{
    EXPECT_EQ("absent", digestOfFile("/nowhere/at/all"));
    EXPECT_EQ("absent", digestOfFile("/"));
    EXPECT_EQ("absent", digestOfFile("/dev/zero"));
}

TEST_F(DigestOfFile, AFileThatCannotBeReadIsToldFromNone)
{
    EXPECT_EQ("unreadable", digestOfFile("/proc/self/mem")); // its first page is never mapped
}

} // namespace
} // namespace VelmaraCommand
