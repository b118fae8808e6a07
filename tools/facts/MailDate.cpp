// A date is read as a row of words: whatever day of the week it claims, then day, month, year, time and
// zone. Words are parted by white space, commas and comments: "Mon, 1 Jan 2024 00:00:00 +0000 (UTC)".
#include "MailDate.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <utility>
#include <vector>

#include "Text.h"

namespace VelmaraCommand {

namespace {

using Words = std::vector<std::string>;

constexpr char const* _months[] = {"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"};

struct Zone {
    char const* name;
    int hours;
};

constexpr Zone _zones[] = {{"gmt", 0},  {"ut", 0},   {"utc", 0},  {"z", 0},    {"est", -5}, {"edt", -4},
                           {"cst", -6}, {"cdt", -5}, {"mst", -7}, {"mdt", -6}, {"pst", -8}, {"pdt", -7}};

bool _parts(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',';
}

/// The words in lower case. Nothing of interest lies behind the sixth, so reading stops there.
Words _wordsOf(std::string_view text)
{
    constexpr size_t most = 6;
    Words words;
    std::string word;
    int depth = 0;
    for (size_t at = 0; at <= text.size() && words.size() < most; ++at) {
        char const c = at < text.size() ? text[at] : ' ';
        bool const inside = depth > 0 || c == '(';
        if (c == '(') ++depth;
        if (c == ')' && depth > 0) --depth;
        if (!inside && !_parts(c))
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        else if (!word.empty())
            words.push_back(std::exchange(word, std::string()));
    }
    return words;
}

/// A whole number of at most `most` digits, -1 if it is none.
int _number(std::string_view digits, size_t most)
{
    if (digits.empty() || digits.size() > most) return -1;
    int number = 0;
    for (char c : digits) {
        if (!isDigit(c)) return -1;
        number = number * 10 + (c - '0');
    }
    return number;
}

int _month(std::string const& word)
{
    auto const* const found = std::find_if(std::begin(_months), std::end(_months),
                                           [&](char const* month) { return startsWith(word, month); });
    return found == std::end(_months) ? -1 : static_cast<int>(found - _months);
}

/// Two digits are of 1950 to 2049; three, as some mailers wrote in 2000, count from 1900.
int _year(std::string const& word)
{
    int const year = _number(word, 4);
    if (year < 0 || word.size() < 2 || word.size() == 4) return word.size() == 4 ? year : -1;
    return word.size() == 2 && year < 50 ? 2000 + year : 1900 + year;
}

/// "hh:mm" or "hh:mm:ss".
bool _readTime(std::string const& word, tm& time)
{
    size_t const first = word.find(':');
    if (first == std::string::npos) return false;
    size_t const second = word.find(':', first + 1);
    time.tm_hour = _number(word.substr(0, first), 2);
    time.tm_min = _number(word.substr(first + 1, second == std::string::npos ? second : second - first - 1), 2);
    time.tm_sec = second == std::string::npos ? 0 : _number(word.substr(second + 1), 2);
    return time.tm_hour >= 0 && time.tm_hour < 24 && time.tm_min >= 0 && time.tm_min < 60 && time.tm_sec >= 0 &&
           time.tm_sec <= 60; // a leap second
}

std::optional<int> _zoneSeconds(std::string const& word)
{
    for (Zone const& zone : _zones)
        if (word == zone.name) return zone.hours * 3600;
    if (word.size() != 5 || (word[0] != '+' && word[0] != '-')) return std::nullopt;
    int const hours = _number(word.substr(1, 2), 2), minutes = _number(word.substr(3, 2), 2);
    if (hours < 0 || minutes < 0 || minutes > 59) return std::nullopt;
    return (word[0] == '-' ? -1 : 1) * (hours * 3600 + minutes * 60);
}

bool _isDay(tm const& date)
{
    tm normal = date;
    normal.tm_hour = 0;
    ::timegm(&normal);
    return normal.tm_mday == date.tm_mday && normal.tm_mon == date.tm_mon;
}

} // namespace

std::optional<std::int64_t> readMailDate(std::string_view text)
{
    Words words = _wordsOf(text);
    if (!words.empty() && std::isalpha(static_cast<unsigned char>(words[0][0]))) words.erase(words.begin());
    if (words.size() < 5) return std::nullopt;
    tm date{};
    date.tm_mday = _number(words[0], 2);
    date.tm_mon = _month(words[1]);
    date.tm_year = _year(words[2]) - 1900;
    std::optional<int> const zone = _zoneSeconds(words[4]);
    if (date.tm_mon < 0 || date.tm_year < 0 || !_isDay(date) || !_readTime(words[3], date) || !zone)
        return std::nullopt;
    return static_cast<std::int64_t>(::timegm(&date)) - *zone;
}

std::string shownTime(std::int64_t seconds)
{
    auto const time = static_cast<time_t>(seconds);
    tm utc{};
    ::gmtime_r(&time, &utc);
    char text[64];
    size_t const length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &utc);
    return std::string(text, length);
}

std::string shownDelay(std::int64_t seconds)
{
    struct Unit {
        std::int64_t seconds;
        char const* name;
    };
    constexpr Unit units[] = {{86400, " d"}, {3600, " h"}, {60, " min"}, {1, " s"}};
    if (seconds < 0) return "-" + shownDelay(-seconds);
    Unit const* unit = std::begin(units);
    while (unit->seconds > 1 && seconds < unit->seconds) ++unit;
    std::string text = std::to_string(seconds / unit->seconds) + unit->name;
    if (unit->seconds == 1) return text;
    Unit const& smaller = unit[1];
    return text + ' ' + std::to_string(seconds % unit->seconds / smaller.seconds) + smaller.name;
}

} // namespace VelmaraCommand
