#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Velmara {
namespace HTML {

constexpr size_t maxAttributes = 1024; // of a tag
constexpr size_t harmlessSize = 16384; // a document in which any number of attributes costs little

/// What the limit of attributes comes to for one document.
struct AttributeLimit {
    explicit AttributeLimit(std::string_view document, size_t limit = maxAttributes);

    std::string blanked; // the document with blanks for the attributes beyond the limit; empty if there are none
    bool certain;        // false: the document may change to a character set in which tags look otherwise
};

/// Whether a character set leaves what marks tags (blank, quotes, "<", "=", ">" and the letters of
/// ASCII) as they are and uses their bytes for nothing else. False for names that we do not know.
bool keepsTags(std::string_view characterSet);

} // namespace HTML
} // namespace Velmara
