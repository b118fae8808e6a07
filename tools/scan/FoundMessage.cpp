#include "FoundMessage.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace VelmaraCommand {

namespace {

using namespace Velmara;

/// A stream over part of a file, read in blocks.
class FilePartIn : public MediaInImpl {
public:
    FilePartIn(std::shared_ptr<File> file, std::uint64_t begin, std::uint64_t length)
        : m_file(std::move(file)), m_begin(begin), m_length(length), m_block(64 << 10)
    {}

    bool atEnd() const override { return peek() < 0; }
    int peek() const override { return more() ? static_cast<unsigned char>(m_block[m_at]) : -1; }
    using MediaInImpl::read;
    int read(uchar_t* bytes, uint_t n) override
    {
        uint_t stored = 0;
        while (stored < n && more()) {
            std::size_t const taken = std::min<std::size_t>(n - stored, m_end - m_at);
            std::memcpy(bytes + stored, m_block.data() + m_at, taken);
            m_at += taken;
            stored += static_cast<uint_t>(taken);
        }
        return static_cast<int>(stored);
    }
    int read(Buffer& block, uint_t n) override
    {
        if (n == 0) n = block.size();
        block.length(0);
        while (block.length() < n && more()) moveTo(block, n - block.length());
        return static_cast<int>(block.length());
    }
    void readline(Buffer& line) override
    {
        if (line.size() == 0) line.size(4096);
        line.length(0);
        uint_t const most = line.size();
        while (line.length() < most && more()) {
            std::size_t const n = std::min<std::size_t>(most - line.length(), m_end - m_at);
            char const* const at = m_block.data() + m_at;
            void const* lineFeed = std::memchr(at, '\n', n);
            moveTo(line, lineFeed ? static_cast<std::size_t>(static_cast<char const*>(lineFeed) - at) + 1 : n);
            if (lineFeed) return;
        }
    }
    unsigned long tell() const override { return m_blockPosition + m_at; }
    void setpos(unsigned long position) override
    {
        if (position >= m_blockPosition && position - m_blockPosition <= m_end) {
            m_at = position - m_blockPosition;
            return;
        }
        m_blockPosition = std::min<std::uint64_t>(position, m_length);
        m_at = m_end = 0;
    }

private:
    void moveTo(Buffer& buffer, std::size_t n)
    {
        n = std::min(n, m_end - m_at);
        buffer.append(reinterpret_cast<uchar_t const*>(m_block.data()) + m_at, static_cast<uint_t>(n));
        m_at += n;
    }
    bool more() const { return m_at < m_end || fill(); }
    bool fill() const
    {
        m_blockPosition += m_end;
        m_at = m_end = 0;
        std::uint64_t const left = m_length - m_blockPosition;
        if (left == 0) return false;
        std::size_t const n = static_cast<std::size_t>(std::min<std::uint64_t>(left, m_block.size()));
        m_end = m_file->readAt(m_begin + m_blockPosition, m_block.data(), n);
        return m_end > 0; // a file that has become shorter ends here
    }

    std::shared_ptr<File> m_file;
    std::uint64_t const m_begin, m_length;
    // changed by peek too, which may have to read
    mutable std::vector<char> m_block;
    mutable std::uint64_t m_blockPosition = 0;
    mutable std::size_t m_at = 0, m_end = 0;
};

} // namespace

MessageBytes MessageBytes::inMemory(std::string bytes)
{
    MessageBytes made;
    made.m_memory = std::move(bytes);
    return made;
}

MessageBytes MessageBytes::inFile(std::shared_ptr<File> file, std::uint64_t begin, std::uint64_t length)
{
    MessageBytes made;
    made.m_file = std::move(file);
    made.m_begin = begin;
    made.m_length = length;
    return made;
}

MessageBytes MessageBytes::atPath(std::string path)
{
    MessageBytes made;
    made.m_path = std::move(path);
    return made;
}

void MessageBytes::open(std::size_t largestInMemory)
{
    if (m_path.empty()) return;
    std::shared_ptr<File> const file = File::openRegular(m_path);
    *this = file->size() > largestInMemory ? inFile(file, 0, file->size()) : inMemory(readHead(*file, file->size()));
}

Velmara::MediaIn MessageBytes::media() const
{
    if (m_file) return MediaIn(new FilePartIn(m_file, m_begin, m_length), false);
    return BufferMediaIn(m_memory.data(), m_memory.size());
}

ByteCollector::ByteCollector(Options const& options, std::shared_ptr<File> file, std::uint64_t begin)
    : m_options(options), m_file(std::move(file)), m_begin(begin)
{}

void ByteCollector::add(char const* bytes, std::size_t n)
{
    if (m_options.most != 0) n = static_cast<std::size_t>(std::min<std::uint64_t>(n, m_options.most - m_length));
    m_length += n;
    if (m_length <= m_options.largestInMemory) {
        m_memory.append(bytes, n);
        return;
    }
    if (m_file) return;
    if (!m_temporary) {
        m_temporary = File::temporary();
        m_temporary->append(m_memory.data(), m_memory.size());
    }
    m_temporary->append(bytes, n);
}

MessageBytes ByteCollector::take()
{
    if (m_length <= m_options.largestInMemory) return MessageBytes::inMemory(std::move(m_memory));
    m_memory = std::string();
    return m_file ? MessageBytes::inFile(m_file, m_begin, m_length)
                  : MessageBytes::inFile(std::move(m_temporary), 0, m_length);
}

} // namespace VelmaraCommand
