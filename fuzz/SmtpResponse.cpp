// Reply lines against a plain reading, byte by byte, on raw bytes and on text made of fragments; and
// enhanced codes by themselves.
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

#include <velmara/SmtpResponse.h>

using namespace Velmara;

namespace {

void require(bool holds)
{
    if (!holds) std::abort();
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';
}

struct Enhanced {
    bool present = false;
    int classValue = 0, category = 0, detail = 0;
};

Enhanced plainEnhanced(std::string const& text)
{
    Enhanced code;
    int state = 0;
    for (char c : text) {
        int const digit = c - '0';
        if (state < 2 && c == '.') {
            ++state;
        } else if (state == 0) {
            code.classValue = digit == 2 || digit == 4 || digit == 5 ? digit : 0;
        } else if (state == 1) {
            code.category = digit;
        } else {
            code.present = true;
            code.detail = code.detail * 10 + digit;
        }
    }
    return code;
}

/// The enhanced code of a line; "" without one.
std::string enhancedText(std::string const& line)
{
    if (line.size() < 4 || (line[3] != '-' && !isSpace(line[3]))) return "";
    std::size_t at = 4;
    for (int part = 0; part < 3; ++part) {
        std::size_t const begin = at;
        while (at < line.size() && at - begin < 3 && isDigit(line[at])) ++at;
        if (at == begin) return "";
        if (part < 2 && (at == line.size() || line[at++] != '.')) return "";
    }
    std::size_t text = at;
    while (text < line.size() && isSpace(line[text])) ++text;
    std::size_t const lineFeed = line.find('\n', text);
    if (lineFeed != std::string::npos && lineFeed + 1 != line.size()) return "";
    return line.substr(4, at - 4);
}

void requireSame(SMTP::EnhancedStatusCode const& code, Enhanced const& expected)
{
    require(code.isPresent() == expected.present && code.classValue() == expected.classValue);
    require(code.category() == expected.category && code.detail() == expected.detail);
}

void check(std::string const& line)
{
    SMTP::Response const response(line);
    bool const reads = line.size() >= 3 && isDigit(line[0]) && isDigit(line[1]) && isDigit(line[2]);
    char const first = reads ? line[0] : '0', second = reads ? line[1] : '3';
    require(response.classValue() == (first >= '2' && first <= '5' ? first - '0' : 0));
    require(response.isValid() == (response.classValue() != 0));
    require(response.category() == (second <= '2' || second == '5' ? second - '0' : -1));
    require(response.detail() == (reads ? line[2] - '0' : 0));
    requireSame(response.enhancedStatusCode(), plainEnhanced(reads ? enhancedText(line) : ""));
}

/// Codes by themselves; a number of three digits and two points, as the expression lets them through.
void checkEnhanced(std::uint8_t const* data, std::size_t n)
{
    if (n < 6) return;
    std::string text;
    for (std::size_t i = 0; i < 6; i += 2)
        text += (i == 0 ? "" : ".") + std::string(1 + data[i] % 3u, static_cast<char>('0' + data[i + 1] % 10));
    SMTP::EnhancedStatusCode code;
    code.value(text);
    requireSame(code, plainEnhanced(text));
}

std::string fragments(std::uint8_t const* data, std::size_t n)
{
    static char const* const texts[] = {"2",  "5", "4", "3",     "250", "550", ".",  ".",    " ",  "-",
                                        "\t", "0", "1", "5.7.1", "10",  "Ok",  "\n", "\r\n", "\v", "\f"};
    std::string line;
    for (std::size_t i = 0; i < n; ++i) line += texts[data[i] % std::size(texts)];
    return line;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    std::string const line(reinterpret_cast<char const*>(data), n);
    check(line);
    check(fragments(data, n));
    checkEnhanced(data, n);
    return 0;
}
