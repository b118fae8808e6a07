#include "scan/MessageSource.h"

#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace VelmaraCommand {
namespace {

char const from[] = "From a@b.example Fri Jul  8 12:08:34 2011\n";

std::string bytesOf(FoundMessage& message)
{
    message.bytes.open(1024);
    std::string bytes;
    message.bytes.media().read(bytes);
    return bytes;
}

struct Sources {
    TemporaryFolder folder;
    ScanContext context;
    std::string complaints;

    Sources()
    {
        context.complain = [this](Severity severity, std::string const& place, std::string const& reason) {
            complaints += (severity == Severity::Unreadable ? "unreadable " : "left out ") +
                          place.substr(folder.at("").size()) + ": " + reason + "\n";
        };
    }
    /// "NAME@OFFSET+LENGTH=BYTES" for each message, behind one another.
    std::string found(std::string const& path, bool keep = true)
    {
        std::unique_ptr<MessageSource> const source = messagesOfPath(context, path);
        std::string all;
        for (FoundMessage message; source->next(message, keep); message = FoundMessage()) {
            all += placeOf(message.file, message.entry).substr(folder.at("").size()) + "@" +
                   std::to_string(message.offset) + "+" + std::to_string(message.length);
            all += message.failure.empty() ? "=" + bytesOf(message) + ";" : "!" + message.failure + ";";
        }
        return all;
    }
};

TEST(MessageSource, GivesTheMessagesOfAnMboxWithTheirPlaces)
{
    Sources sources;
    std::string const path = sources.folder.put("a", from + std::string("x\n\n") + from + "yy\n");
    EXPECT_EQ("a@42+2=x\n;a@87+3=yy\n;", sources.found(path));
    EXPECT_EQ("a@42+2=;a@87+3=;", sources.found(path, false));
}

TEST(MessageSource, TakesAnyOtherFileForOneMessage)
{
    Sources sources;
    EXPECT_EQ("a@0+6=A: 1\n\n;", sources.found(sources.folder.put("a", "A: 1\n\n")));
    EXPECT_EQ("b@0+0=;", sources.found(sources.folder.put("b", "")));
    EXPECT_EQ("", sources.complaints);
}

TEST(MessageSource, KnowsAnMboxWithoutItsBeginningByItsName)
{
    Sources sources;
    std::string const cut = std::string("x\n\n") + from + "y\n";
    EXPECT_EQ("a@0+47=" + cut + ";", sources.found(sources.folder.put("a", cut)));
    EXPECT_EQ("a.mbox@0+2=x\n;a.mbox@45+2=y\n;", sources.found(sources.folder.put("a.mbox", cut)));
    EXPECT_EQ("left out a.mbox: begins in the middle of an mbox; what stands in front of its first \"From \" line is "
              "taken for a message\n",
              sources.complaints);
    sources.context.mbox = true;
    EXPECT_EQ("a@0+2=x\n;a@45+2=y\n;", sources.found(sources.folder.at("a")));
}

TEST(MessageSource, ReadsWhatIsTooLargeForMemoryFromItsFileAgain)
{
    Sources sources;
    sources.context.collect.largestInMemory = 100;
    std::string const large = "L: " + std::string(200000, 'x') + "\n";
    std::string const path = sources.folder.put("a", from + std::string("x\n\n") + from + large);
    EXPECT_EQ("a@42+2=x\n;a@87+200004=" + large + ";", sources.found(path));
    EXPECT_EQ("b@0+200004=" + large + ";", sources.found(sources.folder.put("b", large)));
}

TEST(MessageSource, KeepsNoMoreThanIsAskedForButTellsTheWholeLength)
{
    Sources sources;
    sources.context.collect.most = 4;
    EXPECT_EQ("a@42+10=0123;", sources.found(sources.folder.put("a", from + std::string("012345678\n"))));
}

TEST(MessageSource, OpensTheMessagesOfAMaildirLater)
{
    Sources sources;
    sources.folder.put("d/cur/1", from + std::string("x\n"));
    sources.folder.put("d/new/2", "y\n");
    EXPECT_EQ("d/cur/1@0+0=" + std::string(from) + "x\n;d/new/2@0+0=y\n;", sources.found(sources.folder.at("d")));
}

TEST(Content, IsKnownByTheFirstBytes)
{
    EXPECT_EQ(Content::Mbox, contentOf(from));
    EXPECT_EQ(Content::Message, contentOf("From: a@b.example\n"));
    EXPECT_EQ(Content::Message, contentOf("From here\n"));
    EXPECT_EQ(Content::Message, contentOf(""));
    EXPECT_EQ(Content::Message, contentOf("PK"));
    EXPECT_EQ(Content::Archive, contentOf("PK\3\4"));
    EXPECT_EQ(Content::Archive, contentOf("\x1F\x8B"));
    EXPECT_EQ(Content::Archive, contentOf("BZh91AY&SY"));
    EXPECT_EQ(Content::Message, contentOf("BZh9: a header\n"));
}

TEST(Content, OfATarHasTheRightSum)
{
    std::string head(512, '\0');
    head.replace(0, 1, "a");
    head.replace(257, 5, "ustar");
    EXPECT_EQ(Content::Message, contentOf(head));
    head.replace(148, 6, "001620"); // 97 + (117 + 115 + 116 + 97 + 114) + 8 blanks of 32 = 912
    EXPECT_EQ(Content::Archive, contentOf(head));
    head[1] = 'a';
    EXPECT_EQ(Content::Message, contentOf(head));
}

} // namespace
} // namespace VelmaraCommand
