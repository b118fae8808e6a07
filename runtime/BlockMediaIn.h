#pragma once

#include <cstring>
#include <string_view>

#include <velmara/MediaIn.h>

namespace Velmara {

/// A stream over blocks of bytes in memory, one at a time: all reading stands here once, and a subclass
/// says where the next block comes from.
class BlockMediaInImpl : public MediaInImpl {
public:
    bool atEnd() const override;
    int peek() const override;
    void readline(Buffer& line) override;
    int read(Buffer& block, uint_t n) override;
    int read(Buffer& all) override;
    int read(std::string& all) override;
    int read(uchar_t* bytes, uint_t n) override;
    unsigned long tell() const final { return m_endPosition - left(); }
    void write(MediaOut& out) override;

    /// What `readline` with a buffer of capacity `most` delivers, without a copy: the line stays where
    /// it lies until the next read. Empty, with nothing read, unless all of it lies in the present block.
    std::string_view lineInBlock(size_t most)
    {
        size_t const n = most < left() ? most : left();
        if (n == 0) return std::string_view();
        void const* lineFeed = std::memchr(m_at, '\n', n);
        if (!lineFeed) return n == most ? taken(n) : std::string_view();
        return taken(static_cast<size_t>(static_cast<unsigned char const*>(lineFeed) - m_at) + 1);
    }

protected:
    /// Makes the block that follows the present one the present one, by `present`; false at the end of
    /// the stream, which leaves the present block as it is.
    virtual bool nextBlock() = 0;
    /// Makes `n` bytes, which start at `position` in the stream, the present block.
    void present(unsigned char const* bytes, size_t n, unsigned long position);
    /// Moves to a position if it lies in the present block or just behind it.
    bool moveWithin(unsigned long position);

private:
    bool more();
    size_t left() const { return static_cast<size_t>(m_end - m_at); }
    unsigned char const* take(size_t n)
    {
        unsigned char const* bytes = m_at;
        m_at += n;
        return bytes;
    }
    std::string_view taken(size_t n) { return std::string_view(reinterpret_cast<char const*>(take(n)), n); }

    unsigned char const* m_at = nullptr;  // next byte
    unsigned char const* m_end = nullptr; // behind the last byte of the block
    unsigned long m_endPosition = 0;      // of m_end in the stream
    size_t m_size = 0;                    // of the block
};

} // namespace Velmara
