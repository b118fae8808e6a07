#pragma once

#include <string_view>

namespace Velmara {

/// Index of the first byte at or after `at` that `wanted` accepts; the size of the text if there is none.
template <class Wanted> size_t findFrom(std::string_view text, size_t at, Wanted wanted)
{
    size_t const size = text.size();
    while (at < size && !wanted(static_cast<unsigned char>(text[at]))) ++at;
    return at < size ? at : size;
}

} // namespace Velmara
