// Uuencoded text against a short plain reading of its rules, write by write.
#include "fuzz/Writes.h"

#include <strings.h>

namespace {

struct Plain {
    int state = 0;

    static unsigned value(char c) { return (static_cast<unsigned char>(c) - 32u) & 63u; }
    static bool begins(std::string const& line, std::string const& word)
    {
        return line.size() >= word.size() && strncasecmp(line.data(), word.data(), word.size()) == 0;
    }

    static std::string decoded(std::string const& line)
    {
        std::string bytes;
        for (std::size_t at = 1; at + 4 < line.size(); at += 4) {
            unsigned const c0 = value(line[at]), c1 = value(line[at + 1]), c2 = value(line[at + 2]),
                           c3 = value(line[at + 3]);
            bytes += static_cast<char>(c0 << 2 | c1 >> 4);
            bytes += static_cast<char>(c1 << 4 | c2 >> 2);
            bytes += static_cast<char>(c2 << 6 | c3);
        }
        return bytes.substr(0, value(line[0]));
    }

    std::string write(std::string const& line)
    {
        if (state == 0 && line.size() >= 11 && begins(line, "begin ")) {
            state = 1;
        } else if (state == 1 && line.size() > 3) {
            if (!begins(line, "end") && static_cast<unsigned char>(line[0]) >= 33) return decoded(line);
            state = 2;
        } else if (state == 1 && (line.empty() || (line[0] != '\r' && line[0] != '\n'))) {
            state = 2;
        }
        return "";
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1) return 0;
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    Plain plain;
    Velmara::Buffer out;
    Velmara::CodecUUEncode codec{Velmara::BufferMediaOut(out)};
    for (std::string const& piece : data[0] % 4 == 0 ? Writes::cut(text, {data[0]}) : Writes::lines(text)) {
        Writes::write(codec, piece);
        Writes::require(Writes::take(out) == plain.write(piece));
    }
    return 0;
}
