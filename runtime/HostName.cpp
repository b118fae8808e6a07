#include <velmara/HostName.h>

#include <algorithm>
#include <string_view>

#include <velmara/IPAddress.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _longestLabel = 63, _longestName = 253;

bool _isLabelByte(char c)
{
    return isAlnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
}

bool _isLabel(std::string_view label)
{
    return !label.empty() && label.size() <= _longestLabel && label.front() != '-' && label.back() != '-' &&
           std::all_of(label.begin(), label.end(), _isLabelByte);
}

bool _isName(std::string_view name)
{
    if (!name.empty() && name.back() == '.') name.remove_suffix(1);
    if (name.size() > _longestName) return false;
    for (size_t dot; (dot = name.find('.')) != std::string_view::npos; name.remove_prefix(dot + 1))
        if (!_isLabel(name.substr(0, dot))) return false;
    return _isLabel(name);
}

bool _isLooseName(std::string_view name)
{
    return std::none_of(name.begin(), name.end(), [](unsigned char c) {
        return c <= ' ' || c == 0x7f ||
               std::string_view("/\\@:<>[]()\",;").find(static_cast<char>(c)) != std::string_view::npos;
    });
}

bool _isAllowed(std::string const& text, bool acceptAny, bool strict)
{
    if (!strict) return acceptAny || _isLooseName(text);
    return IPAddress::isValidIPAddress(text) ? acceptAny : _isName(text);
}

} // namespace

HostName::HostName(std::string const& text, bool acceptAny, bool strict)
{
    if (_isAllowed(text, acceptAny, strict)) m_text = text;
}

bool HostName::operator==(HostName const& other) const
{
    return sameNoCase(m_text, other.m_text);
}

bool HostName::operator<(HostName const& other) const
{
    return std::lexicographical_compare(m_text.begin(), m_text.end(), other.m_text.begin(), other.m_text.end(),
                                        [](unsigned char a, unsigned char b) { return toLower(a) < toLower(b); });
}

} // namespace Velmara
