#include "charset/CharSetTables.h"

#include <string_view>

#include <velmara/StringOperations.h>
#include <velmara/VmaraConv.h>

namespace Velmara {

namespace {

struct Pair {
    std::string_view name;
    char const* other;
};

constexpr Pair _replacements[] = {
    {"GB2312", "GB18030"},
    {"GBK", "GB18030"},
};

constexpr Pair _retries[] = {
    {"ISO-2022-JP", "SHIFT_JIS"},
};

template <size_t n> char const* _other(Pair const (&table)[n], std::string const& name)
{
    for (Pair const& row : table)
        if (row.name.size() == name.size() && stringCompareNoCase(row.name.data(), name)) return row.other;
    return nullptr;
}

} // namespace

char const* charSetReplacement(std::string const& name)
{
    return _other(_replacements, name);
}

char const* retryCharSet(std::string const& name)
{
    return _other(_retries, name);
}

// Configurations store these numbers: add, never renumber.
std::map<int, std::string> const& VmaraConv::getFallbackCharMap()
{
    static auto const* names = new std::map<int, std::string>{
        {1, "UTF-8"},           {2, "ISO-8859-6"},   {3, "Windows-1256"},  {4, "GB2312"},      {5, "GBK"},
        {6, "GB18030"},         {7, "Big5"},         {8, "EUC-TW"},        {9, "ISO-8859-8"},  {10, "Windows-1255"},
        {11, "EUC-JP"},         {12, "ISO-2022-JP"}, {13, "Shift-JIS"},    {14, "EUC-KR"},     {15, "ISO-2022-KR"},
        {16, "KS_C_5601-1987"}, {17, "ISO-8859-9"},  {18, "Windows-1254"}, {99, "ISO-8859-1"},
    };
    return *names;
}

} // namespace Velmara
