#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <velmara/Buffer.h>
#include <velmara/MediaOut.h>

namespace Velmara {

using Pieces = std::vector<std::string>;

/// A sink for tests: keeps what arrives until it is taken, and counts the rest.
class Collected {
public:
    Collected() : m_impl(new Impl), m_media(m_impl, false) {}

    MediaOut const& media() const { return m_media; }
    /// What has arrived since the last call.
    std::string take()
    {
        std::string all;
        for (std::string const& piece : takePieces()) all += piece;
        return all;
    }
    /// The same, write by write.
    Pieces takePieces() { return std::exchange(m_impl->pieces, Pieces()); }
    int writes() const { return m_impl->writes; }
    /// Where the bytes of the last write lay.
    void const* where() const { return m_impl->where; }
    /// Names that were passed on as the character set.
    Pieces const& characterSets() const { return m_impl->characterSets; }
    int ends() const { return m_impl->ends; }

private:
    struct Impl : MediaOutImpl {
        using MediaOutImpl::write;
        void write(uchar_t const* p, uint_t n) override
        {
            pieces.emplace_back(reinterpret_cast<char const*>(p), n);
            where = p;
            ++writes;
        }
        void end() override { ++ends; }
        void characterSet(std::string const& name) override { characterSets.push_back(name); }

        Pieces pieces, characterSets;
        void const* where = nullptr;
        int writes = 0, ends = 0;
    };
    Impl* m_impl; // owned by m_media
    MediaOut m_media;
};

inline Buffer bytes(std::string const& text)
{
    return Buffer(text.data(), static_cast<unsigned int>(text.size()), true);
}

inline Pieces singleBytes(std::string const& text)
{
    Pieces pieces;
    for (char c : text) pieces.emplace_back(1, c);
    return pieces;
}

/// Lines with their LF, as `readline` gives them.
inline Pieces lines(std::string const& text)
{
    Pieces pieces;
    for (size_t at = 0; at < text.size();) {
        size_t const lineFeed = text.find('\n', at);
        size_t const next = lineFeed == std::string::npos ? text.size() : lineFeed + 1;
        pieces.push_back(text.substr(at, next - at));
        at = next;
    }
    return pieces;
}

/// The text whole, in two at each position, and in single bytes.
inline std::vector<Pieces> everyCut(std::string const& text)
{
    std::vector<Pieces> ways{{text}, singleBytes(text)};
    for (size_t at = 1; at < text.size(); ++at) ways.push_back({text.substr(0, at), text.substr(at)});
    return ways;
}

/// All that arrives behind a stage of type `Stage` for these writes; `end` is called where asked for.
template <class Stage> std::string through(Pieces const& writes, bool andEnd = false)
{
    Collected out;
    Stage stage(out.media());
    for (std::string const& piece : writes) stage.write(bytes(piece));
    if (andEnd) stage.end();
    return out.take();
}

} // namespace Velmara
