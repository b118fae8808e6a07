#include "facts/SelfTest.h"

#include <set>
#include <thread>

#include <gtest/gtest.h>

#include <velmara/Config.h>

namespace VelmaraCommand {
namespace {

TEST(SelfTest, EveryVectorHoldsHere)
{
    std::vector<VectorOutcome> const outcomes = runVectors();
    EXPECT_LE(12u, outcomes.size());
    for (VectorOutcome const& one : outcomes) EXPECT_EQ(one.expected, one.given) << one.name;
}

TEST(SelfTest, AVectorHoldsByWhatItGave)
{
    EXPECT_TRUE((VectorOutcome{"", "x", "x"}).holds());
    EXPECT_FALSE((VectorOutcome{"", "x", "threw Buffer"}).holds());
}

TEST(SelfTest, NamesTellVectorsApart)
{
    std::set<std::string> names;
    for (VectorOutcome const& one : runVectors()) EXPECT_TRUE(names.insert(one.name).second) << one.name;
}

TEST(SelfTest, NeedsNoDataAndLeavesTheConfigurationAlone)
{
    runVectors();
    EXPECT_EQ(nullptr, Velmara::pconfig);
}

TEST(SelfTest, RunsOnSeveralThreadsAtOnce)
{
    std::vector<VectorOutcome> other;
    std::thread thread([&] { other = runVectors(); });
    std::vector<VectorOutcome> const own = runVectors();
    thread.join();
    ASSERT_EQ(own.size(), other.size());
    for (size_t i = 0; i < own.size(); ++i) EXPECT_EQ(own[i].given, other[i].given) << own[i].name;
}

} // namespace
} // namespace VelmaraCommand
