#include "scan/Progress.h"

#include <string>

#include <gtest/gtest.h>

namespace VelmaraCommand {
namespace {

TEST(Progress, TellsMessagesBytesAndRates)
{
    EXPECT_EQ("1000 messages, 5.0 MB, 2.5 MB/s, 500 messages/s", shownAdvance({1000, 5000000, 0, 2}, 80));
}

TEST(Progress, TellsTheTimeLeftOnceTheWholeIsKnown)
{
    EXPECT_EQ("1000 messages, 5.0 MB, 2.5 MB/s, 500 messages/s [######             ] 0:04 left",
              shownAdvance({1000, 5000000, 15000000, 2}, 79));
    EXPECT_EQ("1 messages, 1.0 MB, 1.0 MB/s, 1 messages/s 2:46:39 left",
              shownAdvance({1, 1000000, 10000000000, 1}, 60));
}

TEST(Progress, IsNeverWiderThanTheTerminal)
{
    Advance const advance{123456, 1234567890, 2345678901, 100};
    for (std::size_t columns = 0; columns < 120; ++columns) EXPECT_LE(shownAdvance(advance, columns).size(), columns);
    EXPECT_EQ("123456 messages, 1234.6 MB 1:30 left", shownAdvance(advance, 40));
}

TEST(Progress, IsFullWhenFilesHaveGrown)
{
    EXPECT_EQ("1 messages, 2.0 MB, 1.0 MB/s, 0 messages/s [########################################] 0:00 left",
              shownAdvance({1, 2000000, 1000000, 2}, 200));
}

} // namespace
} // namespace VelmaraCommand
