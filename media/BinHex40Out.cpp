#include <velmara/Base64MediaOut.h>

#include "media/BinHex.h"

namespace Velmara {

namespace {

/// The text between the colons: bytes are shortened to runs, put into characters of six bits and these
/// into lines.
class Text {
public:
    explicit Text(MediaOut& out) : m_out(out), m_line(1, binHexEndMark) {}

    /// Adds bytes and their checksum.
    void add(std::string_view section);
    void finish();

private:
    void addToRun(unsigned char byte);
    void flushRun();
    void addByte(unsigned char byte);
    void addCharacter(char c);
    void endLine();

    MediaOut& m_out;
    std::string m_line;
    unsigned char m_last = 0;           // the byte of the run
    unsigned m_run = 0;                 // how often it stands
    unsigned m_bits = 0, m_waiting = 0; // bits that wait for their character, and how many
};

constexpr size_t _lineLength = 64;
constexpr unsigned _longestRun = 255;
constexpr unsigned _shortestRun = 4; // below it, the bytes themselves are as short

/// CRC-16 with the polynomial 0x1021, from 0 on.
unsigned _checksum(std::string_view section)
{
    unsigned crc = 0;
    for (unsigned char byte : section) {
        crc ^= unsigned(byte) << 8;
        for (int bit = 0; bit < 8; ++bit) crc = (crc << 1 ^ (crc & 0x8000 ? 0x1021 : 0)) & 0xffff;
    }
    return crc;
}

std::string _bigEndian(unsigned value, int bytes)
{
    std::string text;
    while (bytes-- > 0) text += static_cast<char>(value >> 8 * bytes);
    return text;
}

std::string _header(unsigned dataLength)
{
    std::string const name = "data", unknownTypeAndCreator = "????????";
    std::string const version(1, '\0'), flags(2, '\0');
    return _bigEndian(static_cast<unsigned>(name.size()), 1) + name + version + unknownTypeAndCreator + flags +
           _bigEndian(dataLength, 4) + _bigEndian(0, 4);
}

void Text::add(std::string_view section)
{
    for (unsigned char byte : section) addToRun(byte);
    for (unsigned char byte : _bigEndian(_checksum(section), 2)) addToRun(byte);
}

void Text::finish()
{
    flushRun();
    if (m_waiting != 0) addCharacter(binHexAlphabet[m_bits << (6 - m_waiting) & 63]);
    addCharacter(binHexEndMark);
    if (!m_line.empty()) endLine();
}

void Text::addToRun(unsigned char byte)
{
    if (m_run == _longestRun || byte != m_last) flushRun();
    m_last = byte;
    ++m_run;
}

void Text::flushRun()
{
    bool const shortened = m_run >= _shortestRun;
    for (unsigned copies = shortened ? 1 : m_run; copies > 0; --copies) {
        addByte(m_last);
        if (m_last == binHexRunMark) addByte(0);
    }
    if (shortened) {
        addByte(binHexRunMark);
        addByte(static_cast<unsigned char>(m_run));
    }
    m_run = 0;
}

void Text::addByte(unsigned char byte)
{
    m_bits = m_bits << 8 | byte;
    for (m_waiting += 8; m_waiting >= 6; m_waiting -= 6) addCharacter(binHexAlphabet[m_bits >> (m_waiting - 6) & 63]);
}

void Text::addCharacter(char c)
{
    m_line += c;
    if (m_line.size() == _lineLength) endLine();
}

void Text::endLine()
{
    m_line += "\r\n";
    m_out << m_line;
    m_line.clear();
}

class BinHex40OutImpl : public MediaOutDecoratorImpl {
public:
    explicit BinHex40OutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    void end() override;

private:
    void writeFile();

    Buffer m_data;
    bool m_ended = false; // the file has been written, and nothing came since
};

void BinHex40OutImpl::write(uchar_t const* bytes, uint_t n)
{
    m_data.append(bytes, n);
    m_ended = false;
}

void BinHex40OutImpl::end()
{
    if (!m_ended) writeFile();
    m_ended = true;
    MediaOutDecoratorImpl::end();
}

void BinHex40OutImpl::writeFile()
{
    downstream() << std::string(binHexNotice) + " 4.0)\r\n";
    Text text(downstream());
    text.add(_header(m_data.length()));
    text.add({reinterpret_cast<char const*>(m_data.data()), m_data.length()});
    text.add({}); // no resource fork
    text.finish();
    m_data = Buffer();
}

} // namespace

BinHex40Out::BinHex40Out(MediaOut const& out) : MediaOutDecorator(new BinHex40OutImpl(out), false)
{}

} // namespace Velmara
