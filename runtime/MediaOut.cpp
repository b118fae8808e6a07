#include <velmara/MediaOut.h>

#include <utility>

namespace Velmara {

MediaOutImpl::MediaOutImpl() = default;
MediaOutImpl::~MediaOutImpl() = default;

void MediaOutImpl::write(Buffer const& bytes)
{
    write(bytes.data(), bytes.length());
}

void MediaOutImpl::end()
{}

void MediaOutImpl::characterSet(std::string const&)
{}

unsigned long MediaOutImpl::tell() const
{
    return 0;
}

void MediaOutImpl::setpos(unsigned long)
{}

MediaOut::MediaOut() = default;
MediaOut::MediaOut(MediaOutImpl* impl, bool addRef) : Ref(impl, addRef)
{}
MediaOut::~MediaOut() = default;

MediaOutImpl& MediaOut::impl(char const* operation, unsigned int line) const
{
    if (isNull()) throw Exception(operation, 1, "MediaOut", line);
    return *get();
}

void MediaOut::write(Buffer const& bytes)
{
    impl("write", __LINE__).write(bytes);
}

void MediaOut::write(uchar_t const* bytes, uint_t n)
{
    impl("write", __LINE__).write(bytes, n);
}

void MediaOut::end()
{
    impl("end", __LINE__).end();
}

unsigned long MediaOut::tell() const
{
    return impl("tell", __LINE__).tell();
}

void MediaOut::setpos(unsigned long position)
{
    impl("setpos", __LINE__).setpos(position);
}

void MediaOut::characterSet(std::string const& name)
{
    impl("characterSet", __LINE__).characterSet(name);
}

MediaOut& operator<<(MediaOut& out, Buffer const& bytes)
{
    out.write(bytes);
    return out;
}

MediaOut& operator<<(MediaOut& out, std::string const& bytes)
{
    // Lengths are 32 bits wide; a longer text goes out in pieces.
    constexpr size_t most = 1u << 30;
    auto const* data = reinterpret_cast<uchar_t const*>(bytes.data());
    size_t at = 0;
    do {
        size_t const n = bytes.size() - at < most ? bytes.size() - at : most;
        out.write(data + at, static_cast<uint_t>(n));
        at += n;
    } while (at < bytes.size());
    return out;
}

MediaOut& operator<<(MediaOut& out, char byte)
{
    auto const one = static_cast<uchar_t>(byte);
    out.write(&one, 1);
    return out;
}

MediaOutDecoratorImpl::MediaOutDecoratorImpl() = default;
MediaOutDecoratorImpl::MediaOutDecoratorImpl(MediaOut const& downstream) : m_downstream(downstream)
{}
MediaOutDecoratorImpl::~MediaOutDecoratorImpl() = default;

void MediaOutDecoratorImpl::end()
{
    if (!m_downstream.isNull()) m_downstream.end();
}

void MediaOutDecoratorImpl::characterSet(std::string const& name)
{
    if (!m_downstream.isNull()) m_downstream.characterSet(name);
}

void MediaOutDecoratorImpl::attach(MediaOut const& downstream)
{
    m_downstream = downstream;
}

void MediaOutDecoratorImpl::detach()
{
    m_downstream.release();
}

MediaOutDecorator::MediaOutDecorator() = default;

MediaOutDecorator::MediaOutDecorator(MediaOutDecoratorImpl* impl, bool addRef)
{
    if (impl && get() == impl) return; // a subclass gave it to MediaOut, too
    Ref given(impl, addRef);
    if (isNull()) Ref::operator=(std::move(given));
}

MediaOutDecorator::MediaOutDecorator(MediaOutDecorator const& other) : MediaOut(other)
{
    if (!holder) MediaOut::operator=(other);
}

MediaOutDecorator::~MediaOutDecorator() = default;

MediaOutDecorator& MediaOutDecorator::operator=(MediaOutDecorator const& other)
{
    MediaOut::operator=(other);
    return *this;
}

MediaOutDecoratorImpl& MediaOutDecorator::decorator(char const* operation, unsigned int line) const
{
    // Only the constructors above and those of subclasses set the implementation, so it is a decorator.
    return static_cast<MediaOutDecoratorImpl&>(impl(operation, line));
}

void MediaOutDecorator::attach(MediaOut const& downstream)
{
    decorator("attach", __LINE__).attach(downstream);
}

void MediaOutDecorator::detach()
{
    decorator("detach", __LINE__).detach();
}

} // namespace Velmara
