#include "charset/Utf8Writer.h"

#include <unicode/utf16.h>

namespace Velmara {

namespace {

constexpr char _byte(unsigned int value)
{
    return static_cast<char>(value);
}

constexpr char _trail(unsigned int value)
{
    return _byte(0x80 | (value & 0x3F));
}

char* _writePair(char* to, UChar lead, UChar trail)
{
    auto const c = static_cast<unsigned int>(U16_GET_SUPPLEMENTARY(lead, trail));
    *to++ = _byte(0xF0 | c >> 18);
    *to++ = _trail(c >> 12);
    *to++ = _trail(c >> 6);
    *to++ = _trail(c);
    return to;
}

} // namespace

char* Utf8Writer::write(UChar const* at, UChar const* end, char* to)
{
    if (m_lead != 0 && at != end && !U16_IS_SURROGATE(*at)) this->end();
    while (at != end) {
        unsigned int const c = *at;
        if (c < 0x80) {
            *to++ = _byte(c);
        } else if (c < 0x800) {
            *to++ = _byte(0xC0 | c >> 6);
            *to++ = _trail(c);
        } else if (!U16_IS_SURROGATE(c)) {
            *to++ = _byte(0xE0 | c >> 12);
            *to++ = _trail(c >> 6);
            *to++ = _trail(c);
        } else {
            to = surrogate(at, end, to);
            continue;
        }
        ++at;
    }
    return to;
}

/// Takes one surrogate, and drops a lead that waited for another unit than the one behind it.
char* Utf8Writer::surrogate(UChar const*& at, UChar const* end, char* to)
{
    UChar const unit = *at++;
    if (U16_IS_LEAD(unit)) {
        this->end();
        m_lead = unit;
        if (at != end && !U16_IS_TRAIL(*at)) this->end();
    } else if (m_lead != 0) {
        to = _writePair(to, m_lead, unit);
        m_lead = 0;
    } else {
        ++m_dropped;
    }
    return to;
}

void Utf8Writer::end()
{
    if (m_lead != 0) ++m_dropped;
    m_lead = 0;
}

} // namespace Velmara
