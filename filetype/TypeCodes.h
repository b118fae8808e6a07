#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace Velmara {

/// One row of a table of file type codes. Other programs store the numbers.
struct TypeCode {
    unsigned int code;
    char const* mimeType;
};

template <size_t n> std::map<std::string, unsigned int> codesByType(TypeCode const (&rows)[n])
{
    std::map<std::string, unsigned int> codes;
    for (TypeCode const& row : rows) codes.emplace(row.mimeType, row.code);
    return codes;
}

/// 0 for a type without a code.
inline unsigned int codeOf(std::map<std::string, unsigned int> const& codes, std::string const& mimeType)
{
    auto const row = codes.find(mimeType);
    return row == codes.end() ? 0 : row->second;
}

} // namespace Velmara
