#include <velmara/HeaderValues.h>

#include <gtest/gtest.h>

#include <climits>
#include <set>

#include <velmara/Regex.h>

namespace Velmara {
namespace {

tm timeOf(int year, int month, int day, int hour, int minute, int second, long offset)
{
    tm time = {};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    time.tm_gmtoff = offset;
    return time;
}

std::string dateOf(tm const& time)
{
    return LW::createHeaderDateValue(&time);
}

TEST(HeaderDate, IsADateOfTheStandard)
{
    EXPECT_EQ("Mon, 1 Jan 2024 00:00:00 +0000", dateOf(timeOf(2024, 1, 1, 0, 0, 0, 0)));
    EXPECT_EQ("Thu, 29 Feb 2024 23:59:59 +0000", dateOf(timeOf(2024, 2, 29, 23, 59, 59, 0)));
    EXPECT_EQ("Wed, 31 Dec 1997 01:02:03 +0000", dateOf(timeOf(1997, 12, 31, 1, 2, 3, 0)));
}

TEST(HeaderDate, HasTheOffsetOfItsZone)
{
    EXPECT_EQ("Mon, 1 Jan 2024 12:00:00 +0100", dateOf(timeOf(2024, 1, 1, 12, 0, 0, 3600)));
    EXPECT_EQ("Mon, 1 Jan 2024 12:00:00 -0330", dateOf(timeOf(2024, 1, 1, 12, 0, 0, -12600)));
    EXPECT_EQ("Mon, 1 Jan 2024 12:00:00 +0000", dateOf(timeOf(2024, 1, 1, 12, 0, 0, LONG_MAX)));
    EXPECT_EQ("Mon, 1 Jan 2024 12:00:00 +0000", dateOf(timeOf(2024, 1, 1, 12, 0, 0, LONG_MIN)));
}

TEST(HeaderDate, TheDayOfTheWeekFollowsFromTheDate)
{
    tm time = timeOf(2024, 1, 1, 0, 0, 0, 0);
    time.tm_wday = 5;
    EXPECT_EQ("Mon, 1 Jan 2024 00:00:00 +0000", dateOf(time));
}

TEST(HeaderDate, FieldsOutOfTheirRangeAreCarriedOver)
{
    EXPECT_EQ("Thu, 1 Feb 2024 00:00:00 +0000", dateOf(timeOf(2024, 1, 32, 0, 0, 0, 0)));
    EXPECT_EQ("Wed, 31 Dec 1969 23:59:59 +0000", dateOf(timeOf(1970, 1, 1, 0, 0, -1, 0)));
    EXPECT_EQ("Thu, 1 Jan 1970 00:00:00 +0000", dateOf(timeOf(INT_MAX, 1000000, 1, 0, 0, 0, 0)));
}

TEST(HeaderDate, NullMeansNow)
{
    std::vector<std::string> groups;
    Regex::Expression const form("^[A-Z][a-z]{2}, [1-3]?[0-9] [A-Z][a-z]{2} 2[0-9]{3} ..:..:.. [-+][0-9]{4}$", 0, true);
    EXPECT_TRUE(form(LW::createHeaderDateValue(nullptr), groups));
}

std::string idOf(std::string const& host)
{
    tm const time = timeOf(2024, 1, 2, 3, 4, 5, 0);
    return LW::createHeaderMessageIdValue(host, &time);
}

TEST(HeaderMessageId, HasTimeRandomnessAndHost)
{
    std::vector<std::string> groups;
    EXPECT_TRUE(Regex::Expression("^<20240102030405\\.[0-9a-f]{24}@mail\\.a\\.example>$", 0,
                                  true)(idOf("mail.a.example"), groups))
        << idOf("mail.a.example");
}

TEST(HeaderMessageId, IsNeverTheSame)
{
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) ids.insert(idOf("a.example"));
    EXPECT_EQ(1000u, ids.size());
}

TEST(HeaderMessageId, TheHostCannotBreakTheValue)
{
    auto const hostIn = [](std::string const& given) {
        std::string const id = idOf(given);
        return id.substr(id.find('@'));
    };
    EXPECT_EQ("@a.exampleX-Evil:1>", hostIn("a.example>\r\nX-Evil: 1"));
    EXPECT_EQ("@[192.0.2.1]>", hostIn("[192.0.2.1]"));
    EXPECT_EQ("@my_host.b\xc3\xbc"
              "cher.example>",
              hostIn("my_host.b\xc3\xbc"
                     "cher.example"));
    EXPECT_EQ("@localhost>", hostIn(""));
    EXPECT_EQ("@localhost>", hostIn("<@ >"));
}

} // namespace
} // namespace Velmara
