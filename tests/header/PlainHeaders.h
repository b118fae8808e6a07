#pragma once

#include <string>
#include <utility>
#include <vector>

/// A second reading of header blocks and typed values, by numbered states and without a thought for
/// speed; what the library reads is compared with it.
namespace Velmara::PlainHeaders {

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline std::string lower(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

constexpr char space[] = "\r\n\t ";

inline std::string rightTrimmed(std::string const& text)
{
    return text.substr(0, text.find_last_not_of(space) + 1);
}

inline std::string trimmed(std::string const& text)
{
    size_t const start = text.find_first_not_of(space);
    return start == std::string::npos ? "" : rightTrimmed(text.substr(start));
}

/// What a stream delivers into a buffer of 1024 bytes.
inline std::vector<std::string> pieces(std::string const& block)
{
    std::vector<std::string> all;
    for (size_t at = 0; at < block.size();) {
        size_t const lineEnd = block.find('\n', at);
        size_t length = lineEnd == std::string::npos ? block.size() - at : lineEnd + 1 - at;
        if (length > 1024) length = 1024;
        all.push_back(block.substr(at, length));
        at += length;
    }
    return all;
}

/// False where the block is refused; `headers` then holds what stood before.
inline bool readBlock(std::string const& block, Pairs& headers)
{
    int state = 0, lineEnds = 0;
    bool previousComplete = true;
    std::string name, value;
    for (std::string const& line : pieces(block)) {
        bool const complete = line.back() == '\n';
        bool const empty = line == "\r\n" || line == "\n";
        size_t i = 0, nameStart = 0;
        while (i < line.size()) {
            if (state == 0) {
                while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
                if (i == line.size()) return false;
                if (empty) return true;
                nameStart = i;
                lineEnds = 0;
                state = 1;
            } else if (state == 1) {
                while (i < line.size() && line[i] != ':' && line[i] != '\n' && line[i] != '\r') ++i;
                if (i == line.size()) break;
                if ((line.size() == 2 && line[i] == '\r' && line[1] == '\n') || (line.size() == 1 && line[i] == '\n')) {
                    if (lineEnds != 0) return true;
                    lineEnds = 1;
                }
                if (line[i] == ':') {
                    name = line.substr(nameStart, i - nameStart);
                    value.clear();
                    lineEnds = 0;
                    state = 2;
                }
                ++i;
            } else {
                if (!previousComplete) {
                    value += line;
                    if (complete) ++lineEnds;
                    break;
                }
                if (lineEnds != 0 && empty) {
                    if (!name.empty()) headers.emplace_back(name, rightTrimmed(value));
                    return true;
                }
                size_t const before = i;
                while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
                if (i == before && i == 0) {
                    headers.emplace_back(name, rightTrimmed(value));
                    state = 1;
                    continue;
                }
                value += lineEnds == 0 ? line.substr(i) : line;
                if (complete) ++lineEnds;
                break;
            }
        }
        previousComplete = complete;
    }
    return true;
}

/// The pairs from an index on; `contentType` tells the two kinds of name apart.
inline Pairs readParameters(std::string const& text, size_t at, bool contentType)
{
    Pairs pairs;
    while (at < text.size()) {
        at = text.find_first_not_of(space, at);
        if (at == std::string::npos) break;
        size_t stop = text.find_first_of(contentType ? "=\r\n" : "=\r", at);
        std::string name = rightTrimmed(text.substr(at, stop == std::string::npos ? stop : stop - at));
        if (contentType) name = lower(name);
        if (stop == std::string::npos) break;
        at = stop + (text[stop] == '\r' ? 2 : 1);
        if (at >= text.size()) break;
        at = text.find_first_not_of(space, at);
        if (at == std::string::npos) break;

        size_t end = text.find_first_of("\";\r\n", at);
        if (end == std::string::npos) end = text.size();
        if (end < text.size() && text[end] == '"') {
            at = end;
            end = text.find('"', at + 1);
            end = end == std::string::npos ? text.size() : end + 1;
        }
        std::string value = rightTrimmed(text.substr(at, end - at));
        if (!value.empty() && value[0] == '"') {
            value = value.substr(1);
            if (!value.empty()) value = value.substr(0, value.size() - 1);
            value = trimmed(value);
        }
        pairs.emplace_back(name, value);
        at = end + (end < text.size() && text[end] == '\r' ? 2 : 1);
    }
    return pairs;
}

struct Type {
    std::string value; // as it is after the reading
    std::string mediatype;
    std::string subtype;
    std::string charset;
    std::string boundary;
    Pairs parameters;
};

inline Type readType(std::string const& text)
{
    Type type;
    type.value = text;
    if (text.size() < 2) return type;
    size_t at = text.find_first_not_of("\t ");
    if (at == std::string::npos) return type;
    size_t const slash = text.find('/', at);
    if (slash == std::string::npos) {
        type.mediatype = "text";
        type.subtype = "plain";
    } else {
        if (text.find_first_of(";\r\n", slash + 1) == std::string::npos) type.value += ';';
        size_t const end = type.value.find_first_of(";\r\n", slash + 1);
        type.mediatype = lower(text.substr(at, slash - at));
        type.subtype = lower(text.substr(slash + 1, end - slash - 1));
        at = end + (type.value[end] == '\r' ? 2 : 1);
    }
    type.parameters = readParameters(type.value, at, true);
    for (auto const& [name, value] : type.parameters)
        if (name.substr(0, 7) == "charset") type.charset = value;
    for (size_t i = type.parameters.size(); i-- > 0;)
        if (type.parameters[i].first == "boundary") type.boundary = type.parameters[i].second;
    return type;
}

struct Disposition {
    int code = 0;
    Pairs parameters;
};

inline Disposition readDisposition(std::string const& text)
{
    Disposition disposition;
    if (text.empty()) return disposition;
    size_t start = text.find_first_not_of("\t ");
    if (start == std::string::npos) start = text.size();
    size_t const end = text.find(';', start);
    std::string const token = lower(text.substr(start, end == std::string::npos ? end : end - start));
    disposition.code = token.substr(0, 6) == "inline" ? 2 : 1;
    if (end != std::string::npos) disposition.parameters = readParameters(text, end + 1, false);
    return disposition;
}

/// The first word in lower case.
inline std::string readWord(std::string const& text)
{
    std::string word;
    for (char c : text) {
        bool const isSpace = c == ' ' || (c >= '\t' && c <= '\r');
        if (isSpace && !word.empty()) break;
        if (!isSpace) word += c;
    }
    return lower(word);
}

} // namespace Velmara::PlainHeaders
