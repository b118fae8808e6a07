#pragma once

#include <cstddef>
#include <string>

/// Images of a kind, made of any bytes: a head that is mostly right, then blocks that are mostly whole.
/// Each function picks by the bytes it is given and eats them from the front.
namespace imagepieces {

inline unsigned take(std::string& picks)
{
    if (picks.empty()) return 0;
    unsigned const pick = picks[0] & 0xffu;
    picks.erase(0, 1);
    return pick;
}

inline std::string run(std::string& picks, size_t n)
{
    std::string data = picks.substr(0, n);
    picks.erase(0, n);
    data.resize(n, '.');
    return data;
}

inline std::string jpg(std::string picks)
{
    static char const markers[] = {'\xe0', '\xff', '\xd0', '\xd7', '\xcf', '\xd8', '\x01', '\xda', '\xdb', '\x00'};
    std::string image = "\xff\xd8";
    while (!picks.empty()) {
        char const marker = markers[take(picks) % sizeof markers];
        unsigned const n = take(picks) % 16;
        image += marker;
        if (n < 3) continue;
        image += std::string(1, n == 15 ? '\x01' : '\0') + static_cast<char>(n);
        image += run(picks, n < 14 ? n - 2 : n);
    }
    return image;
}

inline std::string gif(std::string picks)
{
    unsigned const screen = take(picks);
    std::string image = screen % 2 ? "GIF87a" : "GIF89a";
    unsigned const packed = screen < 128 ? 0 : 128 + screen / 2 % 8;
    image += std::string("wwhh") + static_cast<char>(packed) + "bp";
    if (packed) image += run(picks, 3u << (packed % 8 + 1));
    while (!picks.empty()) {
        unsigned const block = take(picks);
        if (block % 8 == 0) image += ';';
        if (block % 8 == 1) image += static_cast<char>(block);
        if (block % 8 == 2 || block % 8 == 3) image += "!e";
        if (block % 8 > 3) image += std::string(",xxyywwhh") + static_cast<char>(block % 8 == 7 ? 128 : 0);
        if (block % 8 == 7 && !packed) image += "ttt";
        if (block % 8 > 3) image += 'c';
        for (unsigned n = take(picks) % 8; n > 0 && block % 8 > 1; n = take(picks) % 8)
            image += static_cast<char>(n) + run(picks, n);
        if (block % 8 > 1) image += '\0';
    }
    return image;
}

inline std::string png(std::string picks)
{
    std::string image = "\x89PNG\r\n\x1a\n";
    while (!picks.empty()) {
        unsigned const chunk = take(picks);
        unsigned const n = take(picks) % 32;
        char const top = chunk == 255 ? '\x7f' : chunk == 254 ? '\x80' : '\0';
        image += std::string(1, top) + std::string(2, top ? '\xff' : '\0') + static_cast<char>(n);
        image += chunk % 2 ? "IDAT" : "tEXt";
        image += run(picks, n) + "crc.";
    }
    return image;
}

/// The images above with their ends cut off, as transfers leave them.
inline std::string cut(std::string image, unsigned pick)
{
    return image.substr(0, pick % 2 ? image.size() : pick % (image.size() + 1));
}

} // namespace imagepieces
