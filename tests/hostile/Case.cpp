#include "hostile/Case.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace Velmara::Hostile {

Input Input::ofText(std::string text)
{
    Input input;
    input.m_text = std::move(text);
    return input;
}

Input Input::ofFile(std::string const& path)
{
    Input input;
    input.m_path = path;
    return input;
}

MediaIn Input::media() const
{
    if (m_path.empty()) return BufferMediaIn(m_text->data(), m_text->size());
    return FileMediaIn(m_path);
}

std::string const& Input::text() const
{
    if (!m_text) {
        // Read in one piece: what a growing string leaves behind would count as the work's own memory.
        std::ifstream in(m_path, std::ios::binary | std::ios::ate);
        m_text.emplace(static_cast<size_t>(in.tellg()), '\0');
        in.seekg(0);
        in.read(m_text->data(), static_cast<std::streamsize>(m_text->size()));
    }
    return *m_text;
}

void Sink::take(std::string_view bytes)
{
    if (m_keeping == All) m_all.append(bytes);
    m_hasher.update(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
}

void Sink::text(std::string_view bytes)
{
    m_length += bytes.size();
    if (m_keeping == Nothing) return;
    number(static_cast<long long>(bytes.size()));
    take(bytes);
    take("\n");
}

void Sink::number(long long value)
{
    if (m_keeping == Nothing) return;
    // Not through a stream, which would write the number as the locale wants it.
    take(std::to_string(value));
    take("\n");
}

std::string Sink::digest()
{
    m_hasher.finalize();
    return m_hasher.digestAsHexString();
}

std::vector<Case> const& cases()
{
    static std::vector<Case> const all = [] {
        std::vector<Case> list;
        using Room = std::vector<Case> (*)();
        constexpr Room rooms[] = {messageCases, headerCases, addressCases,   decoderCases,
                                  textCases,    htmlCases,   signatureCases, typeCases};
        for (Room room : rooms) {
            std::vector<Case> const some = room();
            list.insert(list.end(), some.begin(), some.end());
        }
        return list;
    }();
    return all;
}

std::string repeated(size_t times, std::string_view unit)
{
    std::string all;
    all.reserve(times * unit.size());
    while (times-- > 0) all += unit;
    return all;
}

std::string filled(size_t size, std::string_view head, std::string_view unit, std::string_view tail)
{
    if (unit.empty()) throw std::invalid_argument("a unit of no bytes");
    std::string text;
    text.reserve(size + head.size() + unit.size() + tail.size());
    text += head;
    do text += unit;
    while (text.size() + unit.size() + tail.size() <= size);
    text += tail;
    return text;
}

std::string counted(size_t size, std::string_view head, std::string_view unit, std::string_view tail)
{
    if (unit.empty()) throw std::invalid_argument("a unit of no bytes");
    std::string text;
    text.reserve(size + head.size() + 4 * unit.size() + tail.size() + 64);
    text += head;
    size_t number = 0;
    do {
        std::string const digits = std::to_string(number++);
        for (size_t at = 0; at < unit.size();) {
            size_t const mark = std::min(unit.find("{}", at), unit.size());
            text += unit.substr(at, mark - at);
            if (mark < unit.size()) text += digits;
            at = mark + 2;
        }
    } while (text.size() + unit.size() + tail.size() <= size);
    text += tail;
    return text;
}

} // namespace Velmara::Hostile
