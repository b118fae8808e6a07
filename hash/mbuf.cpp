#include "hash/mbuf.h"

#include <cstring>

#include "hash/Contract.h"

#define MBUF_ASSERT(condition) HASH_ASSERT("mbuf", condition)
#define MBUF_VALID(b) MBUF_ASSERT((b) && (b)->magic == 0xcaaaaafe)

namespace Velmara {

void mbuf_attach(mbuf* b, void const* data, std::size_t length)
{
    MBUF_VALID(b);
    mbuf_clear(b);
    b->data = static_cast<unsigned char const*>(data);
    b->n = length;
}

void mbuf_clear(mbuf* b)
{
    if (b->operations)
        b->operations->release(b);
    else
        b->n = 0;
    // clang-format off
    MBUF_ASSERT(! b->n);
    // clang-format on
    b->data = nullptr;
    b->operations = nullptr;
}

// The last byte of the needle is looked for, not the first: it is the ">" of "-->", which is rarer in
// comments than "-".
unsigned char const* mbuf_find(mbuf const* h, mbuf const* n)
{
    MBUF_VALID(h);
    MBUF_VALID(n);
    if (n->n == 0) return h->data;
    std::size_t const ahead = n->n - 1;
    for (std::size_t at = ahead; at < h->n; ++at) {
        void const* hit = std::memchr(h->data + at, n->data[ahead], h->n - at);
        if (!hit) break;
        at = static_cast<std::size_t>(static_cast<unsigned char const*>(hit) - h->data);
        if (std::memcmp(h->data + at - ahead, n->data, ahead) == 0) return h->data + at - ahead;
    }
    return nullptr;
}

} // namespace Velmara
