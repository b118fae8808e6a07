#pragma once

#include <cstddef>
#include <cstdint>

namespace Velmara {

struct mbuf;

/// What the owner of attached bytes wants to be asked.
struct mbuf_operations {
    void (*release)(mbuf* b); // gives the bytes back and sets b->n to 0
};

/// A range of bytes that belongs to someone else. One is made as `mbuf b;`; the magic value tells a
/// range that was made from memory that was not.
struct mbuf {
    std::uint32_t magic = 0xcaaaaafe;
    unsigned char const* data = nullptr;
    std::size_t n = 0;                           // bytes at data
    mbuf_operations const* operations = nullptr; // of the owner; null where nothing is to be given back
};

/// Makes `b` the range of `length` bytes at `data`; what was attached before is released.
void mbuf_attach(mbuf* b, void const* data, std::size_t length);
/// Releases what is attached. An owner whose release leaves bytes behind aborts the process.
void mbuf_clear(mbuf* b);
/// The first occurrence of the bytes of `n` in `h`, null without one. Meant for needles of a few bytes:
/// the cost is that of both lengths multiplied at worst.
unsigned char const* mbuf_find(mbuf const* h, mbuf const* n);

} // namespace Velmara
