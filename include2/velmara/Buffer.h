#pragma once

#include <cstring>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// A byte array with a used length and a capacity.
///
/// The capacity matters beyond memory: one `readline` delivers at most `size()` bytes, so it decides
/// where long lines are cut. Bytes dropped from the front cost nothing (`shiftLeft` moves an offset)
/// and growth is amortised, so a buffer can serve as a queue.
///
/// A buffer owns its bytes or refers to bytes of the caller, which must outlive it; those it changes
/// in place and never grows past: what does not fit is dropped. Lengths are 32 bits wide.
/// An object belongs to one thread at a time.
class VELMARA_EXPORT Buffer {
public:
    Buffer() noexcept = default;
    /// Room for `size` bytes, length 0. `step` is the number of bytes by which the buffer grows when
    /// it must (0: it doubles); it limits nothing. Negative numbers count as 0.
    Buffer(int size, int step);
    /// Over `n` bytes at `p`: a copy of them with `copy` true, the caller's own bytes with false.
    Buffer(void const* p, unsigned int n, bool copy);
    /// A copy owns its bytes, also that of a buffer which refers to foreign ones.
    Buffer(Buffer const& other);
    Buffer(Buffer&& other) noexcept;
    Buffer& operator=(Buffer const& other);
    Buffer& operator=(Buffer&& other) noexcept;
    virtual ~Buffer();

    /// Bytes in use.
    unsigned int length() const { return m_length; }
    /// Truncates; a value above the length changes nothing.
    void length(unsigned int n)
    {
        if (n < m_length) m_length = n;
    }
    /// The capacity.
    unsigned int size() const { return m_size; }
    /// Sets the capacity; a length above it is cut. Foreign bytes cannot get more of it than they had.
    void size(unsigned int n);
    /// The limit of the length that later appends can reach; 0 means none. What is there stays.
    void maxSize(unsigned int limit) { m_limit = limit; }
    bool isEmpty() const { return m_length == 0; }

    /// The first byte; not null once the buffer has a capacity. Valid until the next change. Where bytes
    /// were dropped from the front and some are left, `size()` bytes are there again after `size(size())`.
    unsigned char* data() { return m_bytes + m_start; }
    unsigned char const* data() const { return m_bytes + m_start; }

    /// The byte at an index; 0 at or past the length.
    unsigned char at(unsigned int index) const { return index < m_length ? m_bytes[m_start + index] : 0; }
    /// Overwrites one byte; nothing happens at or past the length.
    void at(unsigned int index, unsigned char byte)
    {
        if (index < m_length) m_bytes[m_start + index] = byte;
    }

    /// Append at the end, growing as needed. Past `maxSize`, or past foreign bytes, what fits is kept
    /// and the rest is dropped without a word. The bytes may lie inside this buffer.
    void append(unsigned char byte)
    {
        if (m_length < m_end && (m_limit == 0 || m_length < m_limit))
            m_bytes[m_start + m_length++] = byte;
        else
            append(&byte, 1u);
    }
    void append(unsigned char const* bytes, unsigned int n)
    {
        // For nearly every line there is room. With n 0, n - 1 is no small number.
        if (n - 1 >= m_end - m_length || m_limit != 0) return appendSlowly(bytes, n);
        std::memmove(m_bytes + m_start + m_length, bytes, n);
        m_length += n;
    }
    void append(unsigned char* bytes, unsigned int n) { append(static_cast<unsigned char const*>(bytes), n); }
    virtual void append(Buffer const& other);

    /// Sets every byte of the capacity; the length stays.
    void fill(char byte);
    /// Drops the first `n` bytes (all of them, if there are fewer).
    void shiftLeft(unsigned int n);

    /// Index of the first `byte` at or after `from`, -1 if there is none. A negative `from` counts as 0.
    int find(unsigned char byte, int from) const;
    /// Index of the first blank, tab, CR or LF at or after `from`, -1 if there is none.
    int findWhiteSpace(int from) const;
    /// Index of the first other byte at or after `from`, -1 if there is none.
    int findNonWhiteSpace(int from) const;

    /// Replaces the content of `out` by the decoded content of this buffer (RFC 4648). White space is
    /// skipped and decoding ends at padding. Any other foreign byte, or a number of characters that is
    /// no multiple of 4, throws BufferException (code 5); `out` then holds what was decoded so far.
    void decodeBase64(Buffer& out) const;
    /// The content in Base64, padded, on one line.
    std::string toBase64String() const;
    /// True for the 64 characters of the alphabet and for the padding "=".
    static bool isValidBase64Char(unsigned char byte);

private:
    void appendSlowly(unsigned char const* bytes, unsigned int n);
    unsigned int roomFor(unsigned int n);
    void makeRoom(unsigned int length);
    void relocate(unsigned int room);
    unsigned int grown(unsigned int length) const;

    unsigned char* m_bytes = nullptr;
    unsigned int m_start = 0;  // offset of the first byte in use
    unsigned int m_length = 0; // bytes in use
    unsigned int m_end = 0;    // bytes that fit behind m_start without moving, at most m_size
    unsigned int m_size = 0;   // the capacity that callers see
    unsigned int m_room = 0;   // bytes there are at m_bytes
    unsigned int m_step = 0;   // 0: double
    unsigned int m_limit = 0;  // 0: none
    bool m_owned = true;       // false: m_bytes belongs to the caller
};

} // namespace Velmara
