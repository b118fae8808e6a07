#include <velmara/Base64MediaOut.h>

#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _longestLine = 76 - 1; // room for the "=" of a soft break

class QuotedPrintableOutImpl : public MediaOutDecoratorImpl {
public:
    explicit QuotedPrintableOutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    void end() override;

private:
    void add(uchar_t byte);
    void addLiteral(uchar_t byte);
    void addEscaped(uchar_t byte);
    void makeRoom(size_t characters);

    std::string m_line;
    uchar_t m_blank = 0;     // a blank or tab that could be the last byte, where it must not stand as it is
    bool m_breakDue = false; // the line ends if anything follows
};

bool _isLiteral(uchar_t byte)
{
    return byte > ' ' && byte < 127 && byte != '=';
}

} // namespace

void QuotedPrintableOutImpl::write(uchar_t const* bytes, uint_t n)
{
    for (uint_t i = 0; i < n; ++i) add(bytes[i]);
}

void QuotedPrintableOutImpl::end()
{
    if (m_blank != 0) addEscaped(m_blank);
    if (!m_line.empty()) downstream() << m_line;
    m_line.clear();
    m_blank = 0;
    m_breakDue = false;
    MediaOutDecoratorImpl::end();
}

void QuotedPrintableOutImpl::add(uchar_t byte)
{
    if (m_blank != 0) addLiteral(m_blank);
    m_blank = isBlank(byte) ? byte : 0;
    if (m_blank != 0) return;
    if (_isLiteral(byte))
        addLiteral(byte);
    else
        addEscaped(byte);
    m_breakDue = byte == '\n';
}

void QuotedPrintableOutImpl::addLiteral(uchar_t byte)
{
    makeRoom(1);
    m_line += static_cast<char>(byte);
}

void QuotedPrintableOutImpl::addEscaped(uchar_t byte)
{
    constexpr char digits[] = "0123456789ABCDEF";
    makeRoom(3);
    m_line += '=';
    m_line += digits[byte >> 4];
    m_line += digits[byte & 15];
}

void QuotedPrintableOutImpl::makeRoom(size_t characters)
{
    if (!m_breakDue && m_line.size() + characters <= _longestLine) return;
    m_line += "=\r\n";
    downstream() << m_line;
    m_line.clear();
    m_breakDue = false;
}

QuotedPrintableOut::QuotedPrintableOut(MediaOut const& out) : MediaOutDecorator(new QuotedPrintableOutImpl(out), false)
{}

} // namespace Velmara
