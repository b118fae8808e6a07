// Layout: m_bytes .. m_start | m_length bytes in use | free | .. m_room. Callers see the capacity
// m_size, which dropping bytes from the front does not change; the room behind it may be larger. Bytes
// move to the front only when at least as much was dropped as stays, else the room doubles: each byte
// is moved a bounded number of times, whatever the mix of appends and drops.
#include <velmara/Buffer.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include <velmara/Exception.h>

#include "runtime/Ascii.h"
#include "runtime/Base64.h"

namespace Velmara {

namespace {

constexpr unsigned int _longest = std::numeric_limits<unsigned int>::max();
constexpr unsigned int _firstSize = 64;

template <class Test> int _findIf(unsigned char const* bytes, unsigned int length, int from, Test test)
{
    for (unsigned int i = from < 0 ? 0 : static_cast<unsigned int>(from); i < length; ++i)
        if (test(bytes[i])) return static_cast<int>(i);
    return -1;
}

} // namespace

Buffer::Buffer(int size, int step) : m_step(step > 0 ? static_cast<unsigned int>(step) : 0)
{
    if (size > 0) this->size(static_cast<unsigned int>(size));
}

Buffer::Buffer(void const* p, unsigned int n, bool copy) : m_owned(copy)
{
    if (copy) {
        append(static_cast<unsigned char const*>(p), n);
        return;
    }
    m_bytes = static_cast<unsigned char*>(const_cast<void*>(p));
    m_length = m_end = m_size = m_room = n;
}

Buffer::Buffer(Buffer const& other) : m_step(other.m_step), m_limit(other.m_limit)
{
    size(other.m_size);
    if (other.m_length != 0) std::memcpy(m_bytes, other.data(), other.m_length);
    m_length = other.m_length;
}

Buffer::Buffer(Buffer&& other) noexcept
{
    *this = std::move(other);
}

Buffer& Buffer::operator=(Buffer const& other)
{
    if (this != &other) *this = Buffer(other);
    return *this;
}

Buffer& Buffer::operator=(Buffer&& other) noexcept
{
    std::swap(m_bytes, other.m_bytes);
    std::swap(m_start, other.m_start);
    std::swap(m_length, other.m_length);
    std::swap(m_end, other.m_end);
    std::swap(m_size, other.m_size);
    std::swap(m_room, other.m_room);
    std::swap(m_step, other.m_step);
    std::swap(m_limit, other.m_limit);
    std::swap(m_owned, other.m_owned);
    return *this;
}

Buffer::~Buffer()
{
    if (m_owned) std::free(m_bytes);
}

void Buffer::size(unsigned int n)
{
    if (!m_owned) n = std::min(n, m_room);
    m_length = std::min(m_length, n);
    if (n > m_room - m_start) relocate(n);
    m_size = n;
    m_end = std::min(m_size, m_room - m_start);
}

/// Moves the bytes in use to the front of `room` bytes; the room never shrinks.
void Buffer::relocate(unsigned int room)
{
    if (room <= m_room) {
        std::memmove(m_bytes, data(), m_length);
    } else {
        auto* bytes = static_cast<unsigned char*>(std::malloc(room));
        if (!bytes) throw std::bad_alloc();
        if (m_length != 0) std::memcpy(bytes, data(), m_length);
        std::free(m_bytes);
        m_bytes = bytes;
        m_room = room;
    }
    m_start = 0;
    m_end = std::min(m_size, m_room);
}

unsigned int Buffer::grown(unsigned int length) const
{
    unsigned long size = m_size;
    if (m_step != 0)
        size += (static_cast<unsigned long>(length) - size + m_step - 1) / m_step * m_step;
    else
        size = std::max({2 * size, static_cast<unsigned long>(length), static_cast<unsigned long>(_firstSize)});
    if (m_limit != 0) size = std::min<unsigned long>(size, std::max(length, m_limit));
    return static_cast<unsigned int>(std::min<unsigned long>(size, _longest));
}

/// How many of `n` further bytes the limits let in.
unsigned int Buffer::roomFor(unsigned int n)
{
    unsigned int most = m_owned ? _longest : m_room;
    if (m_limit != 0) most = std::min(most, m_limit);
    return m_length < most ? std::min(n, most - m_length) : 0;
}

/// Makes `length` bytes fit behind m_start; the capacity grows only if it has to.
void Buffer::makeRoom(unsigned int length)
{
    if (length > m_size) m_size = m_owned ? grown(length) : m_room;
    if (length > m_room - m_start || m_size > m_room) { // a capacity that is not there would mislead callers
        // The room doubles even where callers asked for small steps of the capacity.
        bool const moveFits = std::max(length, m_size) <= m_room && (m_start >= m_length || !m_owned);
        auto const doubled = static_cast<unsigned int>(std::min<unsigned long>(2ul * m_room, _longest));
        relocate(moveFits ? m_room : std::max(m_size, doubled));
    }
    m_end = std::min(m_size, m_room - m_start);
}

void Buffer::appendSlowly(unsigned char const* bytes, unsigned int n)
{
    n = roomFor(n);
    if (n == 0) return;
    if (n > m_end - m_length) {
        // The bytes may be our own, and are about to move.
        bool const inside = m_bytes && bytes >= m_bytes && bytes < m_bytes + m_room;
        std::string const saved = inside ? std::string(reinterpret_cast<char const*>(bytes), n) : std::string();
        makeRoom(m_length + n);
        std::memcpy(m_bytes + m_start + m_length, inside ? reinterpret_cast<unsigned char const*>(saved.data()) : bytes,
                    n);
    } else {
        std::memmove(m_bytes + m_start + m_length, bytes, n);
    }
    m_length += n;
}

void Buffer::append(Buffer const& other)
{
    append(other.data(), other.m_length);
}

void Buffer::fill(char byte)
{
    if (m_size == 0) return;
    if (m_start != 0) relocate(std::max(m_room, m_size));
    std::memset(m_bytes, static_cast<unsigned char>(byte), m_end);
}

void Buffer::shiftLeft(unsigned int n)
{
    n = std::min(n, m_length);
    m_start += n;
    m_length -= n;
    if (m_length == 0) m_start = 0;
    m_end = std::min(m_size, m_room - m_start);
}

int Buffer::find(unsigned char byte, int from) const
{
    unsigned int const start = from < 0 ? 0 : static_cast<unsigned int>(from);
    if (start >= m_length) return -1;
    void const* found = std::memchr(data() + start, byte, m_length - start);
    return found ? static_cast<int>(static_cast<unsigned char const*>(found) - data()) : -1;
}

int Buffer::findWhiteSpace(int from) const
{
    return _findIf(data(), m_length, from, isHeaderSpace);
}

int Buffer::findNonWhiteSpace(int from) const
{
    return _findIf(data(), m_length, from, [](unsigned char c) { return !isHeaderSpace(c); });
}

void Buffer::decodeBase64(Buffer& out) const
{
    Buffer const ownCopy = &out == this ? Buffer(*this) : Buffer();
    Buffer const& in = &out == this ? ownCopy : *this;
    out.length(0);
    unsigned long const most = in.m_length / 4ul * 3 + 4;
    if (out.m_limit == 0 && out.m_owned) {
        if (most > out.m_end) out.makeRoom(static_cast<unsigned int>(most));
        Base64Decoded const decoded = base64Decode(in.data(), in.m_length, out.data());
        out.m_length = static_cast<unsigned int>(decoded.written);
        if (!decoded.complete) throw BufferException("decodeBase64", 5, __LINE__);
        return;
    }
    std::string bytes(most, '\0');
    auto* to = reinterpret_cast<unsigned char*>(&bytes[0]);
    Base64Decoded const decoded = base64Decode(in.data(), in.m_length, to);
    out.append(to, static_cast<unsigned int>(decoded.written));
    if (!decoded.complete) throw BufferException("decodeBase64", 5, __LINE__);
}

std::string Buffer::toBase64String() const
{
    std::string text;
    base64Encode(data(), m_length, text);
    return text;
}

bool Buffer::isValidBase64Char(unsigned char byte)
{
    return base64Kinds[byte] <= Base64Padding;
}

} // namespace Velmara
