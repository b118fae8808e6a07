#include "facts/OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <velmara/Exception.h>

namespace VelmaraCommand {
namespace {

namespace fs = std::filesystem;

class OutputFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "output-file.XXXXXX").string();
        ASSERT_NE(nullptr, ::mkdtemp(name.data()));
        m_directory = name;
    }
    void TearDown() override { fs::remove_all(m_directory); }

    std::string at(char const* name) const { return (m_directory / name).string(); }
    size_t entries() const
    {
        return static_cast<size_t>(std::distance(fs::directory_iterator(m_directory), fs::directory_iterator()));
    }
    static std::string contentOf(std::string const& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static void put(std::string const& path, std::string const& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    fs::path m_directory;
};

TEST_F(OutputFileTest, IsThereOnlyWhenFinished)
{
    OutputFile file(at("a"));
    file.write("one ");
    file.write(std::string("t\0o", 3));
    EXPECT_FALSE(fs::exists(at("a")));
    file.finish();
    EXPECT_EQ(std::string("one t\0o", 7), contentOf(at("a")));
    EXPECT_EQ(1u, entries());
}

TEST_F(OutputFileTest, WhatIsNotFinishedLeavesNothingAndKeepsTheOld)
{
    put(at("a"), "old");
    {
        OutputFile(at("a")).write("new");
    }
    EXPECT_EQ("old", contentOf(at("a")));
    EXPECT_EQ(1u, entries());
}

TEST_F(OutputFileTest, ALinkKeepsPointingToTheFileThatIsReplaced)
{
    put(at("real"), "old");
    fs::create_symlink("real", at("link"));
    OutputFile file(at("link"));
    file.write("new");
    file.finish();
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_EQ("new", contentOf(at("real")));
}

TEST_F(OutputFileTest, APipeIsWrittenToDirectly)
{
    ASSERT_EQ(0, ::mkfifo(at("pipe").c_str(), 0600));
    std::fstream reader(at("pipe"), std::ios::in | std::ios::out); // both ways, so that opening does not wait
    OutputFile file(at("pipe"));
    file.write("line\n");
    file.finish();
    std::string line;
    std::getline(reader, line);
    EXPECT_EQ("line", line);
    EXPECT_TRUE(fs::is_fifo(at("pipe")));
}

TEST_F(OutputFileTest, TheModeOfAFileThatIsReplacedStays)
{
    put(at("a"), "old");
    ::chmod(at("a").c_str(), 0640);
    OutputFile file(at("a"));
    file.finish();
    struct stat there;
    ASSERT_EQ(0, ::stat(at("a").c_str(), &there));
    EXPECT_EQ(0640u, there.st_mode & 0777u);
}

TEST_F(OutputFileTest, FailuresNameThePathAndTheReason)
{
    auto const reasonOf = [](std::string const& path) {
        try {
            OutputFile file(path);
        } catch (Velmara::Exception const& failure) {
            return failure.stringParameter();
        }
        return std::string("nothing failed");
    };
    EXPECT_EQ(at("none/a") + ": No such file or directory", reasonOf(at("none/a")));
    EXPECT_EQ(m_directory.string() + ": Is a directory", reasonOf(m_directory.string()));
}

TEST_F(OutputFileTest, AFullDiskIsAFailure)
{
    OutputFile file("/dev/full");
    EXPECT_THROW(file.write("x"), Velmara::Exception);
}

} // namespace
} // namespace VelmaraCommand
