#include <velmara/MediaIn.h>

#include <algorithm>

#include <velmara/MediaOut.h>

namespace Velmara {

namespace {

constexpr unsigned int _lineSize = 4096;

/// Calls `deliver` with each line until `wanted` bytes have come or the stream is at its end.
template <class Deliver> void _gather(MediaInImpl& in, unsigned long wanted, Deliver deliver)
{
    Buffer line(static_cast<int>(std::min<unsigned long>(wanted, _lineSize)), 0);
    while (wanted > 0) {
        if (wanted < line.size()) line.size(static_cast<unsigned int>(wanted));
        in.readline(line);
        if (line.isEmpty()) return;
        deliver(line);
        wanted -= std::min<unsigned long>(wanted, line.length());
    }
}

constexpr unsigned long _everything = ~0ul;

[[noreturn]] void _refuse(char const* operation, unsigned int line)
{
    throw Exception(operation, 1, "MediaIn", line);
}

} // namespace

MediaInImpl::MediaInImpl() = default;
MediaInImpl::~MediaInImpl() = default;

void MediaInImpl::readline(Buffer& line)
{
    line.length(0);
    if (line.size() == 0) line.size(_lineSize);
    uchar_t byte = 0;
    // Counted here: a buffer whose `maxSize` is smaller than its capacity never gets full.
    for (unsigned int wanted = line.size(); wanted > 0 && read(&byte, 1) == 1; --wanted) {
        line.append(byte);
        if (byte == '\n') return;
    }
}

int MediaInImpl::read(Buffer& block, uint_t n)
{
    if (n == 0) n = block.size();
    block.length(0);
    _gather(*this, n, [&block](Buffer const& line) { block.append(line); });
    return static_cast<int>(block.length());
}

int MediaInImpl::read(Buffer& all)
{
    all.length(0);
    _gather(*this, _everything, [&all](Buffer const& line) { all.append(line); });
    return static_cast<int>(all.length());
}

int MediaInImpl::read(std::string& all)
{
    all.clear();
    _gather(*this, _everything,
            [&all](Buffer const& line) { all.append(reinterpret_cast<char const*>(line.data()), line.length()); });
    return static_cast<int>(all.size());
}

unsigned long MediaInImpl::tell() const
{
    return 0;
}

void MediaInImpl::setpos(unsigned long)
{}

void MediaInImpl::write(MediaOut& out)
{
    _gather(*this, _everything, [&out](Buffer const& line) { out.write(line); });
}

MediaIn::MediaIn() = default;
MediaIn::MediaIn(MediaInImpl* impl, bool addRef) : Ref(impl, addRef)
{}
MediaIn::~MediaIn() = default;

inline MediaInImpl& MediaIn::impl(char const* operation, unsigned int line) const
{
    MediaInImpl* found = get();
    if (!found) _refuse(operation, line);
    return *found;
}

bool MediaIn::atEnd() const
{
    return impl("atEnd", __LINE__).atEnd();
}

int MediaIn::peek() const
{
    return impl("peek", __LINE__).peek();
}

void MediaIn::readline(Buffer& line)
{
    impl("readline", __LINE__).readline(line);
}

int MediaIn::read(uchar_t* bytes, uint_t n)
{
    return impl("read", __LINE__).read(bytes, n);
}

int MediaIn::read(Buffer& block, uint_t n)
{
    return impl("read", __LINE__).read(block, n);
}

unsigned long MediaIn::tell() const
{
    return impl("tell", __LINE__).tell();
}

void MediaIn::setpos(unsigned long position)
{
    impl("setpos", __LINE__).setpos(position);
}

void MediaIn::write(MediaOut& out)
{
    impl("write", __LINE__).write(out);
}

int MediaIn::read(Buffer& all)
{
    return impl("read", __LINE__).read(all);
}

int MediaIn::read(std::string& all)
{
    return impl("read", __LINE__).read(all);
}

} // namespace Velmara
