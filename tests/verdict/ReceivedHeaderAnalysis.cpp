#include <velmara/ReceivedHeaderAnalysis.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

namespace Velmara {
namespace {

bool allZero(unsigned char const* bytes, size_t n)
{
    return std::all_of(bytes, bytes + n, [](unsigned char byte) { return byte == 0; });
}

TEST(ReceivedHeaderAnalysis, StartsEmpty)
{
    ReceivedHeaderAnalysis const analysis;
    EXPECT_TRUE(analysis.records.empty());
    EXPECT_TRUE(analysis.address.isNull());
    EXPECT_EQ(9u, sizeof analysis.marks);
    EXPECT_TRUE(allZero(analysis.marks, sizeof analysis.marks));
}

TEST(ReceivedHeaderAnalysis, ARecordHasTheHeaderAndNoMarks)
{
    Received const received("from a.example by b.example id 1; x");
    ReceivedHeaderAnalysis::Record const record(received);
    EXPECT_EQ("b.example", record.header.by());
    EXPECT_EQ(10u, sizeof record.marks);
    EXPECT_TRUE(allZero(record.marks, sizeof record.marks));
}

TEST(ReceivedHeaderAnalysis, ARecordSharesTheTextOfTheHeader)
{
    Received const received("from a.example by b.example id 1; x");
    ReceivedHeaderAnalysis::Record const record(received);
    EXPECT_EQ(&received.by(), &record.header.by());
}

TEST(ReceivedHeaderAnalysis, KeepsRecordsInTheirOrder)
{
    ReceivedHeaderAnalysis analysis;
    for (char const* value : {"by a.example id 1; x", "by b.example id 2; x"})
        analysis.records.emplace_back(Received(value));
    analysis.records.front().marks[9] = 1;
    ReceivedHeaderAnalysis const copy = analysis; // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ("a.example", copy.records.front().header.by());
    EXPECT_EQ("b.example", copy.records.back().header.by());
    EXPECT_EQ(1, copy.records.front().marks[9]);
}

TEST(ReceivedHeaderAnalysis, IsMadeToBeDerivedFrom)
{
    EXPECT_TRUE(std::has_virtual_destructor<ReceivedHeaderAnalysis>::value);
    EXPECT_TRUE(std::has_virtual_destructor<ReceivedHeaderAnalysis::Record>::value);
}

} // namespace
} // namespace Velmara
