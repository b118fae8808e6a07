#include "scan/DirectoryWalk.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace VelmaraCommand {
namespace {

/// The names of the files, with "!" behind those of a Maildir and "(reason)" for what is left out.
std::string walked(TemporaryFolder const& folder, std::string const& name = "d", std::size_t namesKept = 65536)
{
    std::string all;
    auto const add = [&](std::string const& path, std::string const& more) {
        all += (all.empty() ? "" : " ") + path.substr(std::min(path.size(), folder.at(name).size() + 1)) + more;
    };
    DirectoryWalk walk(
        folder.at(name),
        [&](std::string const& path, std::string const& reason, bool) { add(path, "(" + reason + ")"); }, namesKept);
    for (DirectoryWalk::Found found; walk.next(found);) add(found.path, found.isMessage ? "!" : "");
    return all;
}

TEST(DirectoryWalk, GoesInTheByteOrderOfNames)
{
    TemporaryFolder folder;
    for (char const* name : {"d/b", "d/a", "d/B", "d/c/z", "d/c/y", "d/\xC3\xA4", "d/cc"}) folder.put(name, "");
    EXPECT_EQ("B a b c/y c/z cc \xC3\xA4", walked(folder));
}

TEST(DirectoryWalk, ReadsALargeDirectoryAgainForTheNextNames)
{
    TemporaryFolder folder;
    std::string all;
    for (int i = 100; i < 150; ++i) {
        folder.put("d/" + std::to_string(i), "");
        all += (i == 100 ? "" : " ") + std::to_string(i);
    }
    for (std::size_t kept : {1u, 2u, 7u, 25u, 49u, 50u, 51u}) EXPECT_EQ(all, walked(folder, "d", kept)) << kept;
}

TEST(DirectoryWalk, GivesAFileThatIsNamedItself)
{
    TemporaryFolder folder;
    folder.put("d", "");
    EXPECT_EQ("", walked(folder));
    DirectoryWalk walk(folder.at("d"), [](auto&&...) { ADD_FAILURE(); });
    DirectoryWalk::Found found;
    ASSERT_TRUE(walk.next(found));
    EXPECT_EQ(folder.at("d"), found.path);
    EXPECT_FALSE(found.isMessage);
    EXPECT_FALSE(walk.next(found));
}

TEST(DirectoryWalk, TakesOfAMaildirOnlyWhatHasBeenDelivered)
{
    TemporaryFolder folder;
    for (char const* name : {"d/cur/2", "d/new/1", "d/tmp/3", "d/index", "d/.Sent/cur/4", "d/.Sent/new/5",
                             "d/.Sent/maildirfolder", "d/plain/6"})
        folder.put(name, "");
    EXPECT_EQ(".Sent/cur/4! .Sent/new/5! cur/2! new/1! plain/6", walked(folder));
}

TEST(DirectoryWalk, FollowsLinksButEntersADirectoryOnce)
{
    TemporaryFolder folder;
    folder.put("d/a/x", "");
    folder.put("e/y", "");
    ASSERT_EQ(0, ::symlink("../../e", folder.at("d/a/e").c_str()));
    ASSERT_EQ(0, ::symlink("..", folder.at("d/a/up").c_str()));
    ASSERT_EQ(0, ::symlink("a/x", folder.at("d/x").c_str()));
    ASSERT_EQ(0, ::symlink("self", folder.at("d/self").c_str()));
    EXPECT_EQ("a/e/y a/up(leads to a directory that has been scanned, in a loop of links or twice) a/x "
              "self(is a loop of links) x",
              walked(folder));
}

TEST(DirectoryWalk, LeavesFifosUnopened)
{
    TemporaryFolder folder;
    folder.put("d/x", "");
    ASSERT_EQ(0, ::mkfifo(folder.at("d/fifo").c_str(), 0600));
    EXPECT_EQ("fifo(is a FIFO; it was not opened) x", walked(folder));
}

TEST(DirectoryWalk, TellsOfWhatIsNotThere)
{
    TemporaryFolder folder;
    EXPECT_EQ("(No such file or directory)", walked(folder));
}

} // namespace
} // namespace VelmaraCommand
