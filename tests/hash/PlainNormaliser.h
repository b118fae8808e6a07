#pragma once

#include <map>
#include <string>
#include <utility>

/// The rules of the text normaliser a second time, slowly and word for word: no tables of characters, no
/// pointers, nothing remembered, every search made again. It shares no line with the module and is
/// what the module is compared with. Its cost can grow with the square of the input.
class PlainNormaliser {
public:
    /// The extract; `written` as in htm_txt_get_data.
    static std::string extract(std::string const& text, int mode, long capacity, long& written)
    {
        PlainNormaliser n(text, capacity);
        if (mode == 1) n.html();
        if (mode == 2) n.scanText();
        written = static_cast<long>(n.out.size());
        return n.finished();
    }

private:
    PlainNormaliser(std::string const& text, long room) : in(text), end(static_cast<long>(text.size())), capacity(room)
    {}

    static int byte(char c) { return c & 0xff; }
    static bool upper(char c) { return c >= 'A' && c <= 'Z'; }
    static bool lower(char c) { return c >= 'a' && c <= 'z'; }
    static bool letter(char c) { return upper(c) || lower(c); }
    static bool digit(char c) { return c >= '0' && c <= '9'; }
    static bool space(char c) { return c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r' || c == ' '; }

    static bool uriChar(char c)
    {
        if (byte(c) >= 128) return false;
        if (letter(c) || digit(c)) return true;
        if (byte(c) < 32) return !(c == '\t' || c == '\n' || c == '\r');
        for (char mark : {';',  '/', '?', ':', '@', '&', '=', '+', '$',  ',', '[', ']',
                          '\\', '#', '-', '_', '.', '!', '~', '*', '\'', '(', ')', '%'})
            if (c == mark) return true;
        return false;
    }

    bool full() const { return static_cast<long>(out.size()) >= capacity; }

    void countLabelChar(char c)
    {
        if (labelIndex >= 4) return;
        if (digit(c)) digits[labelIndex] = digits[labelIndex] + 1;
        if (letter(c)) letters[labelIndex] = letters[labelIndex] + 1;
    }

    void emit(char c)
    {
        if (full()) return;
        bool separator = false;
        if (space(c)) {
            if (c != '\n') return;
            separator = true;
        } else {
            if (byte(c) <= 27) return;
            if (std::string("!,\"<>{}[]&").find(c) != std::string::npos) return;
        }
        if (c == '$')
            c = 's';
        else if (c == '|')
            c = 'l';
        else if (upper(c))
            c = static_cast<char>(c + 32);
        place(c, separator);
    }

    void place(char c, bool separator)
    {
        long const here = static_cast<long>(out.size());
        if (phase == 0) {
            if (separator) {
                if (!lead1.empty()) phase = 1;
            } else if (lead1.size() < 128) {
                lead1 += c;
            }
        } else if (phase == 1) {
            if (separator) {
                if (!lead2.empty()) phase = 2;
            } else if (lead2.size() < 128) {
                lead2 += c;
            }
        } else if (phase == 2) {
            if (separator) return;
            previousLine = lastLine = nextLine = here;
            out += c;
            lineLength = 1;
            phase = 3;
        } else if (separator) {
            if (lineLength != 0) {
                nextLine += lineLength;
                lineLength = 0;
            }
        } else {
            out += c;
            lineLength += 1;
            if (lastLine != nextLine) {
                previousLine = lastLine;
                lastLine = nextLine;
            }
        }
    }

    void flush(long upto)
    {
        for (long i = uriStart; i < upto; ++i) {
            if (full()) return;
            emit(in[i]);
        }
    }

    void parseUri()
    {
        char const c = in[cursor];
        if (uriState == 0) {
            if (letter(c) || digit(c)) {
                for (int i = 0; i < 4; ++i) digits[i] = letters[i] = 0;
                labelIndex = 0;
                uriState = 2;
                uriStart = cursor;
                countLabelChar(c);
            } else {
                emit(c);
            }
            cursor += 1;
            return;
        }
        if (uriState == 2) {
            if (c == '.') {
                uriState = 1;
                labelIndex += 1;
                cursor += 1;
                return;
            }
            if (uriChar(c)) {
                countLabelChar(c);
                cursor += 1;
                return;
            }
            uriState = 7;
        } else {
            uriState = behindFirstDot(c);
        }
        if (uriState == 7) flush(cursor);
        if (cursor < end) emit(in[cursor]);
        uriState = 0;
        cursor += 1;
    }

    int behindFirstDot(char c)
    {
        if (!(letter(c) || digit(c) || c == '%' || c == '&' || c == '\0')) return 7;
        while (cursor < end && uriChar(in[cursor])) {
            if (in[cursor] == '.') {
                if (labelIndex != 3) labelIndex += 1;
            } else {
                countLabelChar(in[cursor]);
            }
            cursor += 1;
        }
        bool plain = labelIndex < 3;
        for (int i = 0; i <= labelIndex; ++i) {
            if (letters[i] > 2) return 8;
            if (letters[i] >= 1 || digits[i] >= 4) plain = true;
        }
        return plain ? 7 : 8;
    }

    void scanText()
    {
        while (!full() && cursor < end) parseUri();
        if (uriState != 0) flush(end);
    }

    void html()
    {
        while (!full() && cursor < end && !ended) {
            char const c = in[cursor];
            if (cursor == end - 1 || (c != '<' && c != '&')) {
                if (hidden) {
                    cursor += 1;
                    uriState = 0;
                } else {
                    parseUri();
                }
            } else if (c == '&') {
                entity();
            } else {
                tagOrComment();
            }
        }
        if (uriState != 0) flush(end);
    }

    // The byte `i` places behind the "&"; 0 stands for one that is not there, and matches nothing.
    char behind(int i) const { return cursor + i < end ? in[cursor + i] : '\0'; }
    bool pair(int i, char a, char b) const { return behind(i) == a && behind(i + 1) == b; }

    void entity()
    {
        long const rest = end - cursor;
        int skip = 1;
        char character = '&';
        if (rest >= 3 && (pair(1, 'l', 't') || pair(1, 'L', 'T'))) {
            skip = 3;
            character = '<';
        } else if (rest >= 3 && (pair(1, 'g', 't') || pair(1, 'G', 'T'))) {
            skip = 3;
            character = '>';
        } else if (rest >= 4 && ((pair(1, 'a', 'm') && behind(3) == 'p') || (pair(1, 'A', 'M') && behind(3) == 'P'))) {
            skip = 4;
            character = '&';
        } else if (rest >= 5 &&
                   ((pair(1, 'q', 'u') && pair(3, 'o', 't')) || (pair(1, 'Q', 'U') && pair(3, 'O', 'T')))) {
            skip = 5;
            character = '"';
        } else if (rest >= 5 && pair(3, 's', 'p') && pair(1, 'n', 'b')) {
            skip = 5;
            character = ' ';
        } else if (rest >= 6 && pair(3, 's', 'p') && behind(5) == ';' && (pair(1, 'e', 'm') || pair(1, 'e', 'n'))) {
            skip = 5;
            character = ' ';
        }
        long const p = cursor;
        cursor += skip;
        if (skip > 1 && cursor < end && in[cursor] == ';') cursor += 1;
        if (uriState == 0) return;
        if (uriChar(character)) return;
        flush(p);
        uriState = 0;
    }

    void restIsText(long p)
    {
        cursor = p;
        scanText();
    }

    void tagOrComment()
    {
        long const p = cursor;
        if (uriState != 0) flush(p);
        char const n = in[p + 1];
        if (n == '!') {
            comment(p);
        } else if (n != '/' && !letter(n)) {
            emit('<');
            emit(n);
            cursor += 2;
            uriState = 0;
        } else {
            handleTag(p);
        }
    }

    void comment(long p)
    {
        cursor = p + 2;
        if (p + 2 < end - 2 && in.compare(p + 2, 2, "--") == 0) {
            size_t const found = in.find("-->", p + 2);
            if (found != std::string::npos) {
                cursor = static_cast<long>(found) + 3;
                uriState = 0;
                return;
            }
        }
        size_t const found = in.find('>', p + 2);
        if (found != std::string::npos) {
            cursor = static_cast<long>(found) + 1;
            uriState = 0;
            return;
        }
        restIsText(p);
        ended = true;
    }

    void handleTag(long p)
    {
        size_t const e = in.find_first_of("> \t\n\v\f\r", p + 1);
        size_t const close = e == std::string::npos ? e : in.find('>', e);
        if (close == std::string::npos) {
            restIsText(p);
            uriState = 0;
            return;
        }
        std::string name = in.substr(p + 1, e - p - 1);
        bool const closing = in[p + 1] == '/';
        if (closing) name.erase(0, 1);
        name = name.substr(0, 29);
        for (char& c : name)
            if (lower(c)) c = static_cast<char>(c - 32);
        act(name, closing);
        cursor = static_cast<long>(close) + 1;
        uriState = 0;
    }

    void act(std::string const& name, bool closing)
    {
        static std::map<std::string, std::pair<int, int>> const table = {
            {"BLOCKQUOTE", {1, 1}}, {"CENTER", {2, 1}},   {"H1", {3, 1}},     {"H2", {4, 1}},
            {"H3", {5, 1}},         {"H4", {6, 1}},       {"H5", {7, 1}},     {"H6", {8, 1}},
            {"HR", {9, 5}},         {"BR", {10, 5}},      {"P", {11, 1}},     {"DL", {12, 1}},
            {"DD", {13, 5}},        {"DT", {14, 5}},      {"DIR", {15, 1}},   {"LI", {16, 5}},
            {"MENU", {17, 1}},      {"OL", {18, 1}},      {"UL", {19, 1}},    {"LISTING", {20, 1}},
            {"PRE", {21, 1}},       {"MARQUEE", {22, 1}}, {"TABLE", {23, 1}}, {"TR", {24, 1}},
            {"TD", {25, 2}},        {"SUB", {26, 2}},     {"SUP", {27, 2}},   {"TEXTAREA", {29, 1}},
            {"TITLE", {30, 8}},     {"SCRIPT", {31, 8}},  {"STYLE", {32, 8}}, {"IMG", {33, 16}},
            {"FRAME", {34, 16}},    {"EMBED", {35, 16}},  {"TH", {36, 0}},    {"BODY", {37, 0}}};
        if (name.empty() || name.size() > 10) return;
        auto const row = table.find(name);
        if (row == table.end()) return;
        int const id = row->second.first;
        int const flags = row->second.second;
        if ((id == 24 || id == 25) && !inTable) return;
        if (!(closing && (flags & 4) != 0)) {
            if ((flags & 8) != 0) hidden = !closing;
            if (hidden) return;
            if ((flags & 1) != 0) emit('\n');
        }
        if (id == 23) inTable = !closing;
    }

    std::string finished()
    {
        long length = static_cast<long>(out.size());
        long const lastLength = lastLine < 0 ? 0 : static_cast<long>(out.size()) - lastLine;
        if (length - lastLength >= 129) length -= lastLength;
        long const previousLength = lastLine - previousLine;
        if (previousLength > 0 && length - previousLength > 128) length -= previousLength;
        out.resize(static_cast<size_t>(length));
        while (out.size() < 128 && static_cast<long>(out.size()) < capacity && !(lead1.empty() && lead2.empty())) {
            std::string& from = lead2.empty() ? lead1 : lead2;
            out += from.back();
            from.pop_back();
        }
        return out.size() > 63 ? out : "";
    }

    std::string const& in;
    long const end;
    long const capacity;
    long cursor = 0;
    bool ended = false;
    std::string out, lead1, lead2;
    long previousLine = -1, lastLine = -1, nextLine = -1; // -1: no line was started
    long lineLength = 0;
    long digits[4] = {}, letters[4] = {};
    int labelIndex = 0;
    int uriState = 0;
    long uriStart = 0;
    int phase = 0;
    bool inTable = false, hidden = false;
};
