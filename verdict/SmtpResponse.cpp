#include <velmara/SmtpResponse.h>

#include "runtime/Ascii.h"

namespace Velmara::SMTP {

namespace {

/// By digit. A reply of class 3 asks for more; an enhanced code has no such class.
constexpr int _replyClasses[10] = {0, 0, 2, 3, 4, 5, 0, 0, 0, 0};
constexpr int _enhancedClasses[10] = {0, 0, 2, 0, 4, 5, 0, 0, 0, 0};
/// 3 and 4 are unspecified and count as no category, like those beyond 5.
constexpr int _replyCategories[10] = {0, 1, 2, -1, -1, 5, -1, -1, -1, -1};

bool _startsWithThreeDigits(std::string const& line)
{
    if (line.size() < 3) return false;
    for (size_t i = 0; i < 3; ++i)
        if (!isDigit(static_cast<unsigned char>(line[i]))) return false;
    return true;
}

} // namespace

_ResponseParser::_ResponseParser() : Regex::Expression(R"(^(\d\d\d)[-\s](\d{1,3}\.\d{1,3}\.\d{1,3})\s*(.*$))", 0, true)
{}

EnhancedStatusCode::EnhancedStatusCode() = default;
EnhancedStatusCode::~EnhancedStatusCode() = default;

void EnhancedStatusCode::value(std::string const& text)
{
    enum Place { Class, Category, Detail } place = Class;
    for (char c : text) {
        if (c == '.' && place != Detail) {
            place = place == Class ? Category : Detail;
            continue;
        }
        int const digit = c - '0';
        switch (place) {
        case Class:
            m_class = isDigit(static_cast<unsigned char>(c)) ? _enhancedClasses[digit] : 0;
            break;
        case Category:
            m_category = digit;
            break;
        case Detail:
            m_present = true;
            // Unsigned, so that a detail of any length wraps instead of being undefined.
            m_detail = static_cast<int>(static_cast<unsigned int>(m_detail) * 10 + static_cast<unsigned int>(digit));
            break;
        }
    }
}

Response::Response(std::string const& line)
{
    if (!_startsWithThreeDigits(line)) return;
    std::vector<std::string> groups;
    if (_ResponseParser::instance()(line, groups)) m_enhanced.value(groups[2]);
    m_class = _replyClasses[line[0] - '0'];
    m_category = _replyCategories[line[1] - '0'];
    m_detail = line[2] - '0';
}

Response::~Response() = default;

} // namespace Velmara::SMTP
