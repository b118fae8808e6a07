#include "group/Groups.h"

#include <algorithm>
#include <random>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include "group/ScanLine.h"
#include "support/Rule.h"

namespace VelmaraCommand {
namespace {

using namespace std::string_literals;
using Velmara::ruleName;
using Strings = std::set<std::string>;

// ---- lines ------------------------------------------------------------------------------------

/// A file that only this process sees, positioned at its beginning.
class FileOf {
public:
    explicit FileOf(std::string const& bytes) : descriptor(::memfd_create("lines", MFD_CLOEXEC))
    {
        EXPECT_EQ(static_cast<ssize_t>(bytes.size()), ::write(descriptor, bytes.data(), bytes.size()));
        ::lseek(descriptor, 0, SEEK_SET);
    }
    FileOf(FileOf const&) = delete;
    FileOf& operator=(FileOf const&) = delete;
    ~FileOf() { ::close(descriptor); }
    int const descriptor;
};

struct Told {
    std::vector<ScanLine> lines;
    std::vector<std::string> complaints; // "NUMBER: REASON"
};

Told _told(std::string const& bytes, std::uint64_t limit = ScanLineReader::defaultLimit)
{
    FileOf const file(bytes);
    ScanLineReader reader(file.descriptor, limit);
    Told told;
    ScanLine line;
    std::string reason;
    for (;;) {
        ScanLineReader::Outcome const outcome = reader.next(line, reason);
        if (outcome == ScanLineReader::AtEnd) return told;
        if (outcome == ScanLineReader::Read)
            told.lines.push_back(line);
        else
            told.complaints.push_back(std::to_string(reader.number()) + ": " + reason);
    }
}

std::string const _head = R"({"schema":"velmara/1","fingerprint":"f")";

ScanLine _line(std::string const& fields)
{
    Told const told = _told(_head + (fields.empty() ? "" : "," + fields) + "}\n");
    EXPECT_EQ(std::vector<std::string>{}, told.complaints) << fields;
    return told.lines.size() == 1 ? told.lines[0] : ScanLine();
}

TEST(ScanLine, TellsWhatGroupingNeeds)
{
    ScanLine const line =
        _line(R"("source":{"file":"a","number":3},"subject":"Caf\u00e9","time":1700000000,)"
              R"("from":[{"address":"a@b.example","displayName":"A"},{"address":"c@d.example"}],"parts":[{"path":"1"},)"
              R"({"path":"1.1","signature":{"kind":"text","signature":"11"}},)"
              R"({"path":"1.2","signature":{"tagTokens":"77","signature":"22","kind":"html"},)"
              R"("html":{"links":[{"uri":"http://x.example/","host":"x.example"},{"uri":"mailto:"}]}},)"
              R"({"path":"1.3","signature":{"kind":"png","signature":"33"}},)"
              R"({"path":"1.4","signature":{"kind":"gif","signature":"44"}},)"
              R"({"path":"1.5","signature":{"kind":"jpeg","signature":"55"}},)"
              R"({"path":"1.6","signature":{"kind":"binary","signature":"66"}},)"
              R"({"path":"1.7","signature":{"kind":"text","signature":null,"reason":"short"}}])");
    EXPECT_EQ("velmara/1", line.schema);
    EXPECT_EQ("f", line.fingerprint);
    EXPECT_EQ("Café", line.subject);
    EXPECT_EQ(1700000000, line.time);
    EXPECT_EQ((Strings{"a@b.example", "c@d.example"}), line.senders);
    EXPECT_EQ((Strings{"11", "22"}), line.texts);
    EXPECT_EQ((Strings{"77"}), line.tags);
    EXPECT_EQ((Strings{"33", "44", "55"}), line.images);
    EXPECT_EQ((Strings{"x.example"}), line.hosts);
}

struct Stray {
    char const* rule;
    char const* fields;
};

class StrayFields : public testing::TestWithParam<Stray> {};

TEST_P(StrayFields, AreNotTakenForOthersOfTheirName)
{
    ScanLine const line = _line(GetParam().fields);
    EXPECT_EQ("", line.subject);
    EXPECT_EQ(std::nullopt, line.time);
    EXPECT_EQ(Strings{}, line.senders);
    EXPECT_EQ(Strings{}, line.texts);
    EXPECT_EQ(Strings{}, line.hosts);
}

INSTANTIATE_TEST_SUITE_P(
    Places, StrayFields,
    testing::Values(
        Stray{"InAnotherObject", R"("other":{"subject":"x","time":1,"from":[{"address":"a"}]})"},
        Stray{"DeeperThanTheirPlace", R"("parts":[{"html":{"html":{"links":[{"host":"x"}]}}}])"},
        Stray{"OfTheOtherAddresses", R"("to":[{"address":"a"}],"route":[{"from":"x","address":"b"}])"},
        Stray{"InAnImage", R"("parts":[{"html":{"images":[{"host":"x"}]}}])"},
        Stray{"OfAnotherType", R"("subject":1,"time":"1","from":{"address":false})"},
        Stray{"TimesOfNoCalendar", R"("time":253402300800)"}, Stray{"TimesBeforeAnyCalendar", R"("time":-62135596801)"},
        Stray{"TimesBeyondAnyNumber", R"("time":18446744073709551616)"}, Stray{"TimesWithAFraction", R"("time":1.5)"},
        Stray{"SignatureOfNoKind", R"("parts":[{"signature":{"signature":"11"}}])"},
        Stray{"KindOfThePartBefore", R"("parts":[{"signature":{"kind":"text"}},{"signature":{"signature":"11"}}])"}),
    ruleName);

struct Lines {
    char const* rule;
    std::string bytes;
    size_t read;
    std::vector<std::string> complaints;
};

class LinesOfAFile : public testing::TestWithParam<Lines> {};

TEST_P(LinesOfAFile, CostThemselvesAlone)
{
    Told const told = _told(GetParam().bytes);
    EXPECT_EQ(GetParam().read, told.lines.size());
    EXPECT_EQ(GetParam().complaints, told.complaints);
}

std::string const _good = _head + "}"s;
std::string const _notJson = "is no JSON, from byte ";
std::string const _notScan = "is no line of velmara scan: ";

INSTANTIATE_TEST_SUITE_P(
    Files, LinesOfAFile,
    testing::Values(
        Lines{"Empty", "", 0, {}}, Lines{"LastWithoutALineEnd", _good + "\n" + _good, 2, {}},
        Lines{"BlankOnesAreNone", "\n \t\n" + _good + "\r\n\r\n\n" + _good + "\n \n", 2, {}},
        Lines{"BrokenAmongGood", _good + "\n{\"a\":\n" + _good + "\n", 2, {"2: " + _notJson + "6 on"}},
        Lines{"CutOff", _good + "\n" + _good.substr(0, 9), 1, {"2: " + _notJson + "10 on"}},
        Lines{"MoreBehindTheObject",
              _good + "x\n" + _good + _good + "\n" + _good,
              1,
              {"1: " + _notJson + std::to_string(_good.size() + 1) + " on",
               "2: " + _notJson + std::to_string(_good.size() + 1) + " on"}},
        Lines{"BadUtf8", "{\"a\":\"\xFF\"}\n" + _good, 1, {"1: " + _notJson + "7 on"}},
        Lines{"NoObject",
              "17\n[" + _good + "]\n\"x\"\nnull\n" + _good,
              1,
              {"1: " + _notScan + "no JSON object", "2: " + _notScan + "no JSON object",
               "3: " + _notScan + "no JSON object", "4: " + _notScan + "no JSON object"}},
        Lines{"NotOfAScan",
              "{\"file\":\"a\"}\n{\"schema\":\"x\"}\n" + _good,
              1,
              {"1: " + _notScan + "\"schema\" or \"fingerprint\" is missing",
               "2: " + _notScan + "\"schema\" or \"fingerprint\" is missing"}},
        Lines{"NumbersCountBlankLines", "\n\nx\n\ny\n", 0, {"3: " + _notJson + "1 on", "5: " + _notJson + "1 on"}}),
    ruleName);

TEST(ScanLine, OfTenMegabytesIsReadLikeAnyOther)
{
    std::string const text(10u << 20, 'x');
    Told const told = _told(_head + R"(,"parts":[{"text":{"text":")" + text + R"("}}],"subject":"s"})" + "\n" + _good);
    EXPECT_EQ(std::vector<std::string>{}, told.complaints);
    ASSERT_EQ(2u, told.lines.size());
    EXPECT_EQ("s", told.lines[0].subject);
}

TEST(ScanLine, BeyondTheLimitIsPassedOver)
{
    std::string const whole = _good + std::string(100 - _good.size(), ' ');
    Told const told = _told(whole + "\n" + whole + " \n" + std::string(100000, 'x') + "\n" + _good, 100);
    EXPECT_EQ(2u, told.lines.size());
    EXPECT_EQ((std::vector<std::string>{"2: is longer than 100 bytes", "3: is longer than 100 bytes"}),
              told.complaints);
}

TEST(ScanLine, NestedWithoutMeasureIsReadWithoutAStack)
{
    std::string const deep(1000000, '[');
    EXPECT_EQ(1u, _told(_head + ",\"a\":" + deep + std::string(deep.size(), ']') + "}\n").lines.size());
}

TEST(ScanLine, FilesThatCannotBeReadThrow)
{
    ScanLineReader reader(-1);
    ScanLine line;
    std::string reason;
    EXPECT_THROW(reader.next(line, reason), std::system_error);
}

// ---- groups -----------------------------------------------------------------------------------

ScanLine _message(std::string const& sender, std::string const& subject, std::optional<std::int64_t> time)
{
    ScanLine line;
    if (!sender.empty()) line.senders = {sender};
    line.subject = subject;
    line.time = time;
    return line;
}

ScanLine _withText(std::string const& text, std::string const& sender = "a@b.example", std::string const& subject = "s",
                   std::optional<std::int64_t> time = 1000)
{
    ScanLine line = _message(sender, subject, time);
    line.texts = {text};
    return line;
}

GroupOptions _options(std::uint64_t least = 2, size_t most = 5)
{
    GroupOptions options;
    options.least = least;
    options.most = most;
    return options;
}

Json _groupsOf(std::vector<ScanLine> const& lines, GroupOptions const& options = _options())
{
    Groups groups(options);
    for (ScanLine const& line : lines) groups.add(line);
    EXPECT_EQ(lines.size(), groups.messages());
    Json all = Json::array();
    groups.finish([](GroupKind, std::uint64_t) {}, [&](Json const& group) { all.push_back(group); });
    return all;
}

/// "KIND KEY MESSAGES" of each.
std::vector<std::string> _named(Json const& groups)
{
    std::vector<std::string> names;
    for (Json const& group : groups)
        names.push_back(group["kind"].get<std::string>() + ' ' + group["key"].get<std::string>() + ' ' +
                        std::to_string(group["messages"].get<int>()));
    return names;
}

/// "VALUE MESSAGES" of each of the most frequent ones, then how many there are.
std::vector<std::string> _facet(Json const& facet)
{
    std::vector<std::string> values;
    for (Json const& one : facet["most"])
        values.push_back(one["value"].get<std::string>() + ' ' + std::to_string(one["messages"].get<int>()));
    values.push_back("of " + std::to_string(facet["distinct"].get<int>()));
    return values;
}

using Names = std::vector<std::string>;

TEST(Groups, StandByKindTheLargestFirstEqualOnesByKey)
{
    ScanLine full = _withText("t1");
    full.tags = {"g1", "g2"};
    full.images = {"i1"};
    full.hosts = {"h.example"};
    std::vector<ScanLine> lines = {
        full, full, _withText("t3"), _withText("t2"), _withText("t2"), _withText("t3"), full, _withText("t4")};
    lines[1].tags = {"g2"};
    EXPECT_EQ(
        (Names{"text t1 3", "text t2 2", "text t3 2", "tags g2 3", "tags g1 2", "image i1 3", "host h.example 3"}),
        _named(_groupsOf(lines)));
}

TEST(Groups, MessagesAreCountedAndNotTheirParts)
{
    ScanLine line = _withText("t1");
    line.texts = {"t1", "t2"};
    EXPECT_EQ((Names{"text t1 2", "text t2 2"}), _named(_groupsOf({line, line})));
}

TEST(Groups, SmallerThanAskedForAreLeftOut)
{
    std::vector<ScanLine> const lines = {_withText("a"), _withText("b"), _withText("b"),
                                         _withText("c"), _withText("c"), _withText("c")};
    EXPECT_EQ((Names{"text c 3", "text b 2"}), _named(_groupsOf(lines)));
    EXPECT_EQ((Names{"text c 3"}), _named(_groupsOf(lines, _options(3))));
    EXPECT_EQ((Names{"text c 3", "text b 2", "text a 1"}), _named(_groupsOf(lines, _options(1))));
    EXPECT_EQ(Names{}, _named(_groupsOf(lines, _options(4))));
}

TEST(Groups, OnlyTheKindsThatAreAskedFor)
{
    ScanLine line = _withText("t");
    line.tags = {"g"};
    line.images = {"i"};
    line.hosts = {"h"};
    for (size_t kind = 0; kind < groupKinds; ++kind) {
        GroupOptions options = _options(1);
        options.kinds = {};
        options.kinds[kind] = true;
        Json const groups = _groupsOf({line}, options);
        ASSERT_EQ(1u, groups.size());
        EXPECT_EQ(nameOf(static_cast<GroupKind>(kind)), groups[0]["kind"]);
    }
}

TEST(Groups, TellTheirFirstAndLastDate)
{
    Json const groups = _groupsOf({_withText("a", "", "", 500), _withText("a", "", "", -3), _withText("a", "", "", 70),
                                   _withText("a", "", "", std::nullopt), _withText("b", "", "", std::nullopt),
                                   _withText("b", "", "", std::nullopt)});
    EXPECT_EQ(-3, groups[0]["first"]);
    EXPECT_EQ(500, groups[0]["last"]);
    EXPECT_FALSE(groups[1].contains("first") || groups[1].contains("last"));
}

TEST(Groups, NameTheMostFrequentSendersAndSubjects)
{
    Json const groups = _groupsOf({_withText("t", "c", "y"), _withText("t", "b", "x"), _withText("t", "b", "x"),
                                   _withText("t", "a", "x"), _withText("t", "d", ""), _withText("t", "", "x")},
                                  _options(2, 3));
    EXPECT_EQ((Names{"b 2", "a 1", "c 1", "of 4"}), _facet(groups[0]["senders"]));
    EXPECT_EQ((Names{"x 4", "y 1", "of 2"}), _facet(groups[0]["subjects"]));
    EXPECT_EQ((Names{"of 0"}), _facet(groups[0]["hosts"]));
}

TEST(Groups, NameNobodyIfNobodyIsAskedFor)
{
    EXPECT_EQ((Names{"of 1"}), _facet(_groupsOf({_withText("t"), _withText("t")}, _options(2, 0))[0]["senders"]));
}

TEST(Groups, OfAHostNameTheOtherHosts)
{
    ScanLine line = _message("a", "s", 1);
    line.hosts = {"x.example", "y.example"};
    Json const groups = _groupsOf({line, line});
    EXPECT_EQ("x.example", groups[0]["key"]);
    EXPECT_EQ((Names{"y.example 2", "of 1"}), _facet(groups[0]["hosts"]));
}

TEST(Groups, OfManyHostsEachHasItsGroupAndSixteenAreNamed)
{
    ScanLine line = _withText("t");
    for (int i = 100; i < 200; ++i) line.hosts.insert("h" + std::to_string(i));
    Json const groups = _groupsOf({line, line}, _options(2, 50));
    EXPECT_EQ(101u, groups.size());
    EXPECT_EQ(16, groups[0]["hosts"]["distinct"]);
    EXPECT_EQ("h115 2", _facet(groups[0]["hosts"])[15]);
    EXPECT_EQ(16, groups[1]["hosts"]["distinct"]); // of h100: those behind it
}

TEST(Groups, LongTextsAreCutBetweenCharacters)
{
    std::string const long255 = std::string(255, 's');
    Json const groups = _groupsOf({_withText("t", "a", long255 + "é"), _withText("t", "a", long255 + "è")});
    EXPECT_EQ((Names{long255 + " 2", "of 1"}), _facet(groups[0]["subjects"]));
}

TEST(Groups, KeysThatNoScanWritesAreLeftOut)
{
    EXPECT_EQ(Names{},
              _named(_groupsOf({_withText(""), _withText("a\0b"s), _withText(std::string(257, 'x'))}, _options(1))));
    EXPECT_EQ(1u, _groupsOf({_withText(std::string(256, 'x'))}, _options(1)).size());
}

TEST(Groups, AKeyIsNotTakenForTheBeginningOfAnother)
{
    EXPECT_EQ((Names{"text a 1", "text ab 1", "text b 1"}),
              _named(_groupsOf({_withText("ab"), _withText("b"), _withText("a")}, _options(1))));
}

TEST(Groups, DependNeitherOnTheOrderOfMessagesNorOnMemory)
{
    std::mt19937 random(3);
    std::vector<ScanLine> lines;
    for (int i = 0; i < 2000; ++i) {
        ScanLine line = _withText("t" + std::to_string(random() % 400), "a" + std::to_string(random() % 50),
                                  "s" + std::to_string(random() % 10), random() % 10000);
        line.hosts = {"h" + std::to_string(random() % 100), "h" + std::to_string(random() % 5)};
        lines.push_back(line);
    }
    Json const expected = _groupsOf(lines);
    EXPECT_LT(300u, expected.size());
    std::shuffle(lines.begin(), lines.end(), random);
    GroupOptions small = _options();
    small.sort.memory = 4096;
    small.sort.fanIn = 3;
    EXPECT_EQ(expected, _groupsOf(lines, small));
}

TEST(Groups, TellOfEachKindHowManyThereAre)
{
    ScanLine line = _withText("t");
    line.images = {"i", "j"};
    Groups groups(_options(1));
    groups.add(line);
    std::string told;
    groups.finish([&](GroupKind kind, std::uint64_t n) { told += nameOf(kind) + std::to_string(n) + ' '; },
                  [&](Json const& group) { told += group["key"].get<std::string>() + ' '; });
    EXPECT_EQ("text1 t image2 i j ", told);
}

} // namespace
} // namespace VelmaraCommand
