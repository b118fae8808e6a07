#pragma once

#include <string>
#include <utility>
#include <vector>

/// A second reading of the header block of a message, piece by piece; what the parser reads is compared
/// with it.
namespace Velmara::PlainMessageHeaders {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct Block {
    Pairs headers;
    size_t length = 0; // with the empty line, without a line that is none of the block's
};

constexpr char space[] = " \t\n\v\f\r";

/// As much of a line as the parser's buffer takes.
inline std::string piece(std::string const& text, size_t at)
{
    size_t const lineFeed = text.find('\n', at);
    size_t const length = lineFeed == std::string::npos ? text.size() - at : lineFeed + 1 - at;
    return text.substr(at, length < 2048 ? length : 2048);
}

inline std::string withoutLineEnd(std::string line)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) line.pop_back();
    return line;
}

inline std::string leftTrimmed(std::string const& text)
{
    size_t const first = text.find_first_not_of(space);
    return first == std::string::npos ? "" : text.substr(first);
}

inline Block read(std::string const& text)
{
    Block block;
    std::string name, value;
    bool atLineStart = true;
    size_t at = 0;
    for (;;) {
        std::string const line = piece(text, at);
        bool ends = line.empty();
        if (!name.empty() && !atLineStart) {
            if (!ends) value += withoutLineEnd(line);
        } else if (!name.empty() && !ends && (line[0] == ' ' || line[0] == '\t')) {
            std::string const folded = leftTrimmed(withoutLineEnd(line));
            if (!folded.empty()) value += ' ' + folded;
        } else {
            size_t const colon = line.find(':'), blank = line.find_first_of(" \t\r\n");
            ends = ends || colon == std::string::npos || colon == 0 || (blank != std::string::npos && blank < colon);
            if (!ends) {
                if (!name.empty()) block.headers.emplace_back(name, value);
                name = line.substr(0, colon);
                value = leftTrimmed(withoutLineEnd(line).substr(colon + 1));
            }
        }
        if (ends) {
            bool const isEmpty = leftTrimmed(line).empty();
            block.length = isEmpty ? at + line.size() : at;
            break;
        }
        atLineStart = line.back() == '\n';
        at += line.size();
    }
    if (!name.empty()) block.headers.emplace_back(name, value);
    return block;
}

} // namespace Velmara::PlainMessageHeaders
