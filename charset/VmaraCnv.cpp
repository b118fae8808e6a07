#include <velmara/VmaraCnv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <velmara/VmaraConv.h>

using namespace Velmara;

namespace Velmara {

struct cVmaraCnv {
    cVmaraCnv(char const* from, char const* to) : converter(BufferMediaOut(pending), from, to, false)
    {
        converter.substitute_unknown(true);
        converter.retry_on_failure(false);
    }

    Buffer pending; // converted bytes that wait for room
    VmaraConv converter;
};

} // namespace Velmara

namespace {

constexpr size_t _mostAtOnce = 512;

int _fails()
{
    errno = E2BIG;
    return -1;
}

void _moveOut(Buffer& pending, char** out, size_t* outLeft)
{
    auto const n = static_cast<unsigned int>(std::min<size_t>(pending.length(), *outLeft));
    if (n == 0) return;
    std::memcpy(*out, pending.data(), n);
    pending.shiftLeft(n);
    *out += n;
    *outLeft -= n;
}

/// A piece whose output should about fit into the room that is left.
void _convertPiece(VmaraConv& converter, char** in, size_t* inLeft, size_t outLeft)
{
    size_t const n = std::min({_mostAtOnce, outLeft / 4 + 1, *inLeft});
    converter.write(reinterpret_cast<uchar_t const*>(*in), static_cast<uint_t>(n));
    *in += n;
    *inLeft -= n;
}

} // namespace

cVmaraCnv* vmaracnv_open(char const* from, char const* to)
{
    auto* handle = new cVmaraCnv(from, to);
    if (handle->converter.ok()) return handle;
    delete handle;
    return nullptr;
}

void vmaracnv_close(cVmaraCnv* handle)
{
    delete handle;
}

int vmaracnv(cVmaraCnv* handle, char** in, size_t* inLeft, char** out, size_t* outLeft)
{
    if (!handle) return _fails();
    _moveOut(handle->pending, out, outLeft);
    while (*inLeft != 0 && *outLeft != 0) {
        _convertPiece(handle->converter, in, inLeft, *outLeft);
        _moveOut(handle->pending, out, outLeft);
    }
    return *inLeft == 0 && handle->pending.isEmpty() ? 0 : _fails();
}
