#include "scan/LineOutput.h"

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace VelmaraCommand {
namespace {

char const settings[] = R"({"shard":"0/1","paths":["a"]})";

/// What the failure tells, or "" if there is none.
template <class Work> std::string refusal(Work const& work)
{
    try {
        work();
    } catch (FileFailure const& failure) {
        return failure.what();
    }
    return "";
}

TEST(LineOutput, TakesItsNameOnlyWhenItIsFinished)
{
    TemporaryFolder folder;
    LineOutput output(folder.at("o"), settings, false);
    output.write("one\n");
    output.flush();
    EXPECT_FALSE(folder.has("o"));
    EXPECT_EQ("one\n", folder.read("o.part"));
    output.write("two\n");
    output.finish();
    EXPECT_EQ("one\ntwo\n", folder.read("o"));
    EXPECT_FALSE(folder.has("o.part"));
    EXPECT_FALSE(folder.has("o.part.json"));
}

TEST(LineOutput, BeginsAnewUnlessToldToGoOn)
{
    TemporaryFolder folder;
    folder.put("o.part", "old\n");
    LineOutput output(folder.at("o"), settings, false);
    EXPECT_EQ("", output.lastLine());
    output.finish();
    EXPECT_EQ("", folder.read("o"));
}

TEST(LineOutput, GoesOnBehindTheLastWholeLine)
{
    TemporaryFolder folder;
    folder.put("o.part", "one\n" + std::string(100000, 'x') + "\nthr");
    folder.put("o.part.json", std::string(settings) + "\n");
    LineOutput output(folder.at("o"), settings, true);
    EXPECT_EQ(std::string(100000, 'x') + "\n", output.lastLine());
    output.write("three\n");
    output.finish();
    EXPECT_EQ("one\n" + std::string(100000, 'x') + "\nthree\n", folder.read("o"));
}

TEST(LineOutput, BeginsWhereNoLineIsWhole)
{
    TemporaryFolder folder;
    folder.put("o.part", "on");
    folder.put("o.part.json", std::string(settings) + "\n");
    LineOutput output(folder.at("o"), settings, true);
    EXPECT_EQ("", output.lastLine());
    output.write("one\n");
    output.finish();
    EXPECT_EQ("one\n", folder.read("o"));
}

TEST(LineOutput, ResumesNothingIntoANewFile)
{
    TemporaryFolder folder;
    LineOutput output(folder.at("o"), settings, true);
    EXPECT_EQ("", output.lastLine());
    EXPECT_EQ(std::string(settings) + "\n", folder.read("o.part.json"));
}

TEST(LineOutput, RefusesToGoOnWithOtherSettings)
{
    TemporaryFolder folder;
    folder.put("o.part", "one\n");
    folder.put("o.part.json", "{\"shard\":\"1/2\",\"paths\":[\"a\"]}\n");
    EXPECT_EQ("was begun by a scan with other settings (these differ: shard); give those again, or begin anew without "
              "--resume",
              refusal([&] { LineOutput(folder.at("o"), settings, true); }));
    EXPECT_EQ("one\n", folder.read("o.part"));
}

TEST(LineOutput, RefusesToGoOnWhereNobodyKnowsHowItWasBegun)
{
    TemporaryFolder folder;
    folder.put("o.part", "one\n");
    EXPECT_EQ("was begun by a scan with other settings (it cannot be read); give those again, or begin anew without "
              "--resume",
              refusal([&] { LineOutput(folder.at("o"), settings, true); }));
}

TEST(LineOutput, RefusesAFileThatAnotherScanIsWriting)
{
    TemporaryFolder folder;
    LineOutput const first(folder.at("o"), settings, false);
    EXPECT_EQ("is being written by another scan", refusal([&] { LineOutput(folder.at("o"), settings, true); }));
}

TEST(LineOutput, FollowsALinkToItsFile)
{
    TemporaryFolder folder;
    folder.put("real", "old\n");
    ASSERT_EQ(0, ::symlink("real", folder.at("link").c_str()));
    LineOutput output(folder.at("link"), settings, false);
    output.write("new\n");
    output.finish();
    EXPECT_EQ("new\n", folder.read("real"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.at("link")));
}

TEST(LineOutput, WritesToADeviceItself)
{
    LineOutput output("/dev/full", settings, false);
    output.write("one\n");
    EXPECT_EQ("No space left on device", refusal([&] { output.finish(); }));
    EXPECT_EQ("is no file, so there is nothing to resume", refusal([] { LineOutput("/dev/full", settings, true); }));
}

TEST(LineOutput, TakesBackWhatDidNotFitOfALine)
{
    TemporaryFolder folder;
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    LineOutput output(folder.at("o"), settings, false);
    output.write("one\n");
    output.flush();
    output.write("two\nthree\nfour\n");
    rlimit const small{15, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    std::string const reason = refusal([&] { output.finish(); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ("File too large", reason);
    EXPECT_EQ("one\ntwo\nthree\n", folder.read("o.part"));
    EXPECT_FALSE(folder.has("o"));
}

TEST(LineOutput, TellsWhichFileCannotBeWritten)
{
    EXPECT_EQ("No such file or directory", refusal([] { LineOutput("/nowhere/o", settings, false); }));
}

} // namespace
} // namespace VelmaraCommand
