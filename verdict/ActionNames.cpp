#include <velmara/ActionNames.h>

#include <cstdlib>
#include <cstring>

#include <velmara/Buffer.h>

#include "verdict/NameMatch.h"

namespace Velmara {

namespace {

struct Row {
    int value;
    char const* name;
};

constexpr Row _actions[] = {
    {0, "Accept"},
    {1, "Accept"},
    {4, "Reject"},
    {8, "Add Header"},
    {16, "Modify Subject"},
    {32, "Quarantine"},
    {64, "Accept"},
    {128, "Discard"},
    {256, "Replace"},
    {512, "Delay"},
    {1024, "Rewrite"},
    {2048, "Disclaimer Body"},
    {4096, "Disclaimer Header"},
    {8192, "Defer Delivery"},
    {16384, "Quarantine to Review"},
    {32768, "Content Filter as Spam"},
    {65536, "Encrypt"},
    {131072, "Decrypt"},
    {262144, "Alternate Host"},
    {524288, "BCC"},
    {1048576, "Archive"},
    {2097152, "Customised repackage"},
    {4194304, "Repackage"},
    {8388608, "Notification"},
    {16777216, "Sign"},
    {33554432, "Defer Disposition"},
};

void _append(Buffer& text, std::string const& piece)
{
    text.append(reinterpret_cast<unsigned char const*>(piece.data()), static_cast<unsigned int>(piece.size()));
}

} // namespace

ActionNames::ActionNames()
{
    for (Row const& row : _actions) m_actions.emplace_back(row.value, row.name);
}

ActionNames& ActionNames::instance()
{
    static auto* names = new ActionNames; // lives to process exit, so late logs may still ask
    return *names;
}

char const* ActionNames::mapToString(unsigned int mask, char const* buffer, unsigned int size) const
{
    if (!buffer || size == 0) return nullptr;
    Buffer text(buffer, size - 1, false); // one byte stays for the NUL
    text.length(0);
    bool first = true;
    for (auto const& [value, name] : m_actions) {
        if ((static_cast<unsigned int>(value) & mask) == 0) continue;
        if (!first) _append(text, ";");
        _append(text, name);
        first = false;
    }
    const_cast<char*>(buffer)[text.length()] = '\0';
    return buffer;
}

bool ActionNames::checkTypeByString(char const* text, bool substring) const
{
    for (auto const& action : m_actions)
        if (nameMatches(action.second, text, substring)) return true;
    return false;
}

ActionNames::ActionString* ActionNames::actionStrings() const
{
    auto* rows = static_cast<ActionString*>(std::calloc(m_actions.size() + 1, sizeof(ActionString)));
    if (!rows) return nullptr;
    ActionString* row = rows;
    for (auto const& [value, name] : m_actions) {
        row->value = value;
        row->name = ::strdup(name.c_str());
        if (!row->name) {
            while (row != rows) std::free((--row)->name);
            std::free(rows);
            return nullptr;
        }
        ++row;
    }
    return rows; // calloc left the end mark
}

} // namespace Velmara
