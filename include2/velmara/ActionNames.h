#pragma once

#include <list>
#include <string>
#include <utility>

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// The names of the actions that can be taken on a message. Actions form a bit mask; several bits
/// share the name "Accept", and the value 2 has none. Logs and configuration rely on these exact
/// texts. One object, made at load and then only read, safe from any thread.
class VELMARA_EXPORT ActionNames : private NonCopyable {
public:
    /// A row of actionStrings().
    struct ActionString {
        /// The bit, or 0 in the end mark.
        int value;
        char* name; // null in the end mark
    };

    /// The object of the process.
    static ActionNames& instance();

    /// Writes the names of all rows that have a bit in common with `mask` into `buffer`, in the order of
    /// the table, joined by ";". The text is cut to what fits into `size` bytes and always ends in NUL.
    /// Gives `buffer`, or null for a null buffer or a size of 0.
    char const* mapToString(unsigned int mask, char const* buffer, unsigned int size) const;
    /// Whether a name equals `text` without regard to case, or with `substring` contains it.
    bool checkTypeByString(char const* text, bool substring) const;
    /// All rows, and an end mark of 0 and null, for callers in C: the array comes from malloc and each
    /// name from strdup, and the caller frees them. Null if memory is short.
    ActionString* actionStrings() const;
    /// All rows in the order of the table.
    std::list<std::pair<int, std::string>> const& actions() const { return m_actions; }

private:
    ActionNames();

    std::list<std::pair<int, std::string>> m_actions;
};

} // namespace Velmara
