#pragma once

#include <functional>
#include <string>

/// The rules of the image walkers a second time, word for word over a string that is eaten from the
/// front. It shares no line with the module and is what the module is compared with.
namespace plainwalk {

/// Gets each piece; false ends the walk.
using Take = std::function<bool(std::string const&)>;

inline long byteAt(std::string const& s, size_t i)
{
    return s.at(i) & 0xff;
}

inline int jpg(std::string rest, Take const& take)
{
    if (rest.substr(0, 2) != "\xff\xd8") return -1;
    rest.erase(0, 2);
    while (!rest.empty()) {
        long const m = byteAt(rest, 0);
        if (m == 255 || (208 <= m && m <= 215) || m == 1) {
            rest.erase(0, 1);
            continue;
        }
        if (rest.size() < 3) return -3;
        size_t const length = static_cast<size_t>(byteAt(rest, 1) * 256 + byteAt(rest, 2));
        if (length >= rest.size()) return -4;
        rest.erase(0, length + 1);
        if (m == 218) {
            take(rest);
            return 0;
        }
    }
    return 0;
}

inline int gif(std::string rest, Take const& take)
{
    if (rest.substr(0, 6) != "GIF87a" && rest.substr(0, 6) != "GIF89a") return -1;
    rest.erase(0, 6);
    if (rest.size() < 7) return -2;
    long const packed = byteAt(rest, 4);
    rest.erase(0, 7);
    size_t local = 3; // without a global table
    if (packed >= 128) {
        static size_t const tableBytes[] = {6, 12, 24, 48, 96, 192, 384, 768};
        static size_t const localBytes[] = {384, 24576, 100663296, 393216, 6, 6, 6, 6};
        if (rest.size() < tableBytes[packed % 8]) return -3;
        rest.erase(0, tableBytes[packed % 8]);
        local = localBytes[packed % 8];
    }
    do {
        if (rest.empty()) return -4;
        if (rest[0] == ',') {
            if (rest.size() <= 9) return -4;
            bool const hasLocal = byteAt(rest, 9) >= 128;
            rest.erase(0, 10);
            if (hasLocal) {
                if (rest.size() < local) return -5;
                rest.erase(0, local);
            }
            if (rest.empty()) return -6;
            rest.erase(0, 1);
            for (size_t n = 1; n != 0;) {
                if (rest.empty()) return -7;
                n = static_cast<size_t>(byteAt(rest, 0));
                if (n != 0 && !take(rest.substr(1, n))) return 0;
                if (rest.size() < n + 1) return -8;
                rest.erase(0, n + 1);
            }
        } else if (rest[0] == '!') {
            if (rest.size() < 3) return -9;
            rest.erase(0, 2);
            for (size_t s = 2; s != 1;) {
                s = static_cast<size_t>(byteAt(rest, 0)) + 1;
                if (s > rest.size()) return -11;
                rest.erase(0, s);
                if (s != 1 && rest.empty()) return -10;
            }
        } else if (rest[0] == ';') {
            rest.erase(0, 1);
        } else {
            return -9;
        }
    } while (!rest.empty());
    return 0;
}

inline int png(std::string rest, Take const& take)
{
    if (rest.substr(0, 8) != "\x89PNG\x0d\x0a\x1a\x0a") return -1;
    rest.erase(0, 8);
    while (rest.size() > 7) {
        if (byteAt(rest, 0) >= 128) return -3;
        size_t const length = static_cast<size_t>(byteAt(rest, 0) * 16777216 + byteAt(rest, 1) * 65536 +
                                                  byteAt(rest, 2) * 256 + byteAt(rest, 3));
        if (rest.substr(4, 4) == "IDAT" && !take(rest.substr(8, length))) return 0;
        if (length + 11 >= rest.size()) return -3;
        rest.erase(0, length + 12);
        if (rest.empty()) return 0;
    }
    return -2;
}

} // namespace plainwalk
