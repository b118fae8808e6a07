#include "group/ExternalSort.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <map>
#include <random>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

namespace VelmaraCommand {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

using Records = std::vector<std::pair<std::string, std::string>>;

/// Small enough that a few dozen records make several runs of several levels.
ExternalSort::Limits _small(size_t memory = 256, unsigned int fanIn = 2)
{
    ExternalSort::Limits limits;
    limits.memory = memory;
    limits.fanIn = fanIn;
    limits.directory = testing::TempDir();
    return limits;
}

Records _drained(ExternalSort& sort)
{
    Records records;
    sort.drain([&](std::string_view key, std::string_view value) { records.emplace_back(key, value); });
    return records;
}

Records _sorted(ExternalSort::Limits const& limits, Records const& records)
{
    ExternalSort sort(limits);
    for (auto const& record : records) sort.add(record.first, record.second);
    return _drained(sort);
}

/// Values of eight bytes that are added up.
void _addUp(char* value, std::string_view other)
{
    std::uint64_t a = 0, b = 0;
    std::memcpy(&a, value, sizeof a);
    std::memcpy(&b, other.data(), sizeof b);
    a += b;
    std::memcpy(value, &a, sizeof a);
}

std::string_view _bytes(std::uint64_t const& number)
{
    return {reinterpret_cast<char const*>(&number), sizeof number};
}

std::map<std::string, std::uint64_t> _counted(ExternalSort& sort)
{
    std::map<std::string, std::uint64_t> counts;
    sort.drain([&](std::string_view key, std::string_view value) {
        std::uint64_t number = 0;
        std::memcpy(&number, value.data(), sizeof number);
        EXPECT_TRUE(counts.emplace(key, number).second) << key << " came twice";
    });
    return counts;
}

TEST(ExternalSort, NothingGivesNothing)
{
    EXPECT_EQ(Records{}, _sorted(_small(), {}));
}

TEST(ExternalSort, OrdersByBytesAndNotByLetters)
{
    Records const records = {{"\x80", ""}, {"a\0b"s, ""}, {"a", "1"}, {"", "e"}, {"\x7F", ""}, {"a\0"s, ""}, {"B", ""}};
    Records const sorted = {{"", "e"}, {"B", ""}, {"a", "1"}, {"a\0"s, ""}, {"a\0b"s, ""}, {"\x7F", ""}, {"\x80", ""}};
    EXPECT_EQ(sorted, _sorted(ExternalSort::Limits(), records));
    EXPECT_EQ(sorted, _sorted(_small(64), records));
}

TEST(ExternalSort, EqualKeysStayInTheOrderOfAddingOverAllRuns)
{
    Records records;
    for (int i = 0; i < 500; ++i)
        records.emplace_back(std::string(1, static_cast<char>('a' + i % 3)), std::to_string(i));
    Records expected = records;
    std::stable_sort(expected.begin(), expected.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    for (unsigned int fanIn : {2u, 3u, 16u}) EXPECT_EQ(expected, _sorted(_small(256, fanIn), records)) << fanIn;
}

TEST(ExternalSort, AnyBufferAndAnyFanInGiveTheSame)
{
    std::mt19937 random(1);
    Records records;
    for (int i = 0; i < 3000; ++i)
        records.emplace_back(std::string(random() % 20, static_cast<char>(random() % 4)) +
                                 std::to_string(random() % 500),
                             std::string(random() % 30, 'v'));
    Records expected = records;
    std::stable_sort(expected.begin(), expected.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    for (size_t memory : {128u, 1000u, 4096u, 65536u})
        for (unsigned int fanIn : {0u, 2u, 5u, 16u})
            EXPECT_EQ(expected, _sorted(_small(memory, fanIn), records)) << memory << ' ' << fanIn;
}

TEST(ExternalSort, CombinesEqualKeysOverAllRuns)
{
    ExternalSort sort(_small(), _addUp);
    std::map<std::string, std::uint64_t> expected;
    std::mt19937 random(2);
    for (int i = 0; i < 5000; ++i) {
        std::string const key = std::to_string(random() % 300);
        std::uint64_t const number = random();
        expected[key] += number;
        sort.add(key, _bytes(number));
    }
    EXPECT_EQ(expected, _counted(sort));
    EXPECT_LT(100u, sort.runsWritten());
}

TEST(ExternalSort, AFewKeysNeverReachTheDisk)
{
    ExternalSort sort(_small(), _addUp);
    for (int i = 0; i < 10000; ++i) sort.add(std::to_string(i % 3), _bytes(1));
    EXPECT_EQ((std::map<std::string, std::uint64_t>{{"0", 3334}, {"1", 3333}, {"2", 3333}}), _counted(sort));
    EXPECT_EQ(0u, sort.runsWritten());
}

TEST(ExternalSort, ARecordMayFillTheBufferButNotMore)
{
    std::string const largest(256 - 12, 'x'); // the lengths of key and value and the place take 12
    EXPECT_EQ((Records{{"a", "1"}, {largest, ""}, {"z", "2"}}),
              _sorted(_small(), {{"z", "2"}, {largest, ""}, {"a", "1"}}));
    EXPECT_EQ((Records{{"", largest}, {"a", "1"}}), _sorted(_small(), {{"a", "1"}, {"", largest}}));
    ExternalSort sort(_small());
    EXPECT_THROW(sort.add(largest, "x"), std::length_error);
    EXPECT_THROW(sort.add("x", largest), std::length_error);
    sort.add("still", "good");
    EXPECT_EQ((Records{{"still", "good"}}), _drained(sort));
}

TEST(ExternalSort, ValuesMayBeLargerThanTheBlocksOfARun)
{
    std::string const large(300000, 'v');
    Records const records = {{"c", large}, {"a", "1"}, {"b", large + "2"}, {"d", std::string(65536, 'w')}};
    Records sorted = records;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(sorted, _sorted(_small(400000), records));
}

TEST(ExternalSort, WhatTheSinkThrowsReachesTheCaller)
{
    for (size_t memory : {64u, 65536u}) {
        ExternalSort sort(_small(memory));
        for (int i = 0; i < 20; ++i) sort.add(std::to_string(i), "");
        EXPECT_THROW(sort.drain([](std::string_view, std::string_view) { throw std::runtime_error("full"); }),
                     std::runtime_error);
    }
}

// ---- temporary files ----------------------------------------------------------------------------

class TemporaryFiles : public testing::Test {
protected:
    TemporaryFiles() { std::filesystem::create_directory(directory); }
    ~TemporaryFiles() override { std::filesystem::remove_all(directory); }

    ExternalSort::Limits limits(unsigned int fanIn = 2) const
    {
        ExternalSort::Limits limits = _small(256, fanIn);
        limits.directory = directory;
        return limits;
    }
    static void add(ExternalSort& sort, int n)
    {
        for (int i = 0; i < n; ++i) sort.add(std::to_string(i * 7919 % n), "value");
    }
    static size_t openFiles()
    {
        std::filesystem::directory_iterator const all("/proc/self/fd");
        return static_cast<size_t>(std::distance(begin(all), end(all)));
    }

    std::string const directory = testing::TempDir() + "velmara-sort-" + std::to_string(::getpid());
};

TEST_F(TemporaryFiles, HaveNoName)
{
    ExternalSort sort(limits());
    add(sort, 1000);
    ASSERT_LT(0u, sort.runsWritten());
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(TemporaryFiles, AreFewHoweverManyRuns)
{
    size_t const before = openFiles();
    ExternalSort sort(limits(4));
    add(sort, 20000);
    EXPECT_LT(2000u, sort.runsWritten());
    EXPECT_GE(before + 4 * 7, openFiles()); // 4 to the power of 6 runs are 4096
    EXPECT_EQ(20000u, _drained(sort).size());
}

TEST_F(TemporaryFiles, AreClosedWithTheSort)
{
    size_t const before = openFiles();
    {
        ExternalSort sort(limits());
        add(sort, 1000);
        EXPECT_LT(before, openFiles());
    }
    EXPECT_EQ(before, openFiles());
}

std::string _failureOf(ExternalSort::Limits const& limits, int n)
{
    try {
        ExternalSort sort(limits);
        for (int i = 0; i < n; ++i) sort.add(std::to_string(i), "value");
        sort.drain([](std::string_view, std::string_view) {});
        return "none";
    } catch (SpillFailure const& failure) {
        return failure.what();
    }
}

TEST_F(TemporaryFiles, AreNotMadeBeforeTheyAreNeeded)
{
    ExternalSort::Limits none = limits();
    none.directory = directory + "/nowhere";
    EXPECT_EQ("none", _failureOf(none, 3));
    EXPECT_EQ("temporary files in " + none.directory + ": No such file or directory", _failureOf(none, 1000));
}

TEST_F(TemporaryFiles, ThatCannotGrowEndTheSortAndLeaveNothing)
{
    size_t const before = openFiles();
    rlimit old{};
    ASSERT_EQ(0, ::getrlimit(RLIMIT_FSIZE, &old));
    auto const oldAction = std::signal(SIGXFSZ, SIG_IGN);
    rlimit const small{1024, old.rlim_max};
    ASSERT_EQ(0, ::setrlimit(RLIMIT_FSIZE, &small));
    std::string const failure = _failureOf(limits(16), 1000); // runs of 256 bytes fit, a merged one does not
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldAction);
    EXPECT_EQ("temporary files in " + directory + ": File too large", failure);
    EXPECT_TRUE(std::filesystem::is_empty(directory));
    EXPECT_EQ(before, openFiles());
}

TEST(ExternalSort, TemporaryFilesGoToTheDirectoryOfTheEnvironment)
{
    ::setenv("TMPDIR", "/nowhere/at/all", 1);
    ExternalSort::Limits limits = _small();
    limits.directory.clear();
    EXPECT_THAT(_failureOf(limits, 1000), HasSubstr("/nowhere/at/all"));
    ::unsetenv("TMPDIR");
    EXPECT_EQ("none", _failureOf(limits, 1000));
}

} // namespace
} // namespace VelmaraCommand
