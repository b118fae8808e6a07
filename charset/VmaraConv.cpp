#include <velmara/VmaraConv.h>

#include <algorithm>
#include <utility>

#include "charset/VmaraConvImpl.h"
#include "runtime/BufferView.h"

namespace Velmara {

namespace {

constexpr unsigned int _partLength = 4096;

void _write(VmaraConvImpl& converter, char const* data, unsigned int n)
{
    converter.write(reinterpret_cast<uchar_t const*>(data), n);
}

/// In parts, so that what `enough` ends costs nothing more; the converter does not see the seams.
template <class Enough> void _writeParts(VmaraConvImpl& converter, char const* data, unsigned int len, Enough enough)
{
    for (unsigned int at = 0; at < len && !enough();) {
        unsigned int const n = std::min(len - at, _partLength);
        _write(converter, data + at, n);
        at += n;
    }
}

} // namespace

VmaraConv::VmaraConv() = default;

VmaraConv::VmaraConv(MediaOut const& out, std::string const& from, std::string const& to, bool force)
    : MediaOutDecorator(new VmaraConvImpl(out, from, to, force), false)
{}

VmaraConv::~VmaraConv() = default;

VmaraConvImpl& VmaraConv::converter(unsigned int line) const
{
    if (isNull()) throw MediaException(line, "VmaraCharSet");
    return static_cast<VmaraConvImpl&>(*get());
}

void VmaraConv::flush()
{
    converter(__LINE__).flush(false);
}

void VmaraConv::writeThrough(uchar_t const* bytes, uint_t n)
{
    converter(__LINE__).writeThrough(bytes, n);
}

bool VmaraConv::ok() const
{
    return converter(__LINE__).ok();
}

unsigned int VmaraConv::ferrCnt() const
{
    return converter(__LINE__).ferrCnt();
}

unsigned int VmaraConv::terrCnt() const
{
    return converter(__LINE__).terrCnt();
}

void VmaraConv::retry_on_failure(bool on)
{
    converter(__LINE__).retry_on_failure(on);
}

void VmaraConv::substitute_unknown(bool on)
{
    converter(__LINE__).substitute_unknown(on);
}

bool VmaraConv::conv(Buffer& out, std::string const& to, std::string const& from, char const* data, unsigned int len,
                     unsigned int maxSize, bool retry, bool substitute)
{
    if (maxSize != 0) out.maxSize(maxSize);
    BufferConv converter(out, from, to, false);
    if (!converter.ok()) return false;
    converter.retry_on_failure(retry);
    converter.substitute_unknown(substitute);
    if (maxSize == 0)
        _write(converter, data, len);
    else
        _writeParts(converter, data, len, [&] { return out.length() >= maxSize; });
    converter.end();
    return true;
}

Buffer VmaraConv::toUtf8(std::string const& charset, char const* data, unsigned int len, unsigned int maxSize,
                         bool retry, bool substitute)
{
    Buffer out;
    conv(out, "utf-8", charset, data, len, maxSize, retry, substitute);
    return out;
}

Buffer VmaraConv::fromUtf8(std::string const& charset, char const* data, unsigned int len, unsigned int maxSize)
{
    Buffer out;
    conv(out, charset, "utf-8", data, len, maxSize, false, false);
    return out;
}

bool VmaraConv::m_conv(Buffer& out, std::string& usedCharset, char const* data, unsigned int len,
                       std::list<std::string> const& charsets, std::string const& to)
{
    for (std::string const& name : charsets) {
        if (name.empty()) continue;
        Buffer local;
        BufferConv converter(local, name, to, true);
        if (!converter.ok()) continue;
        converter.retry_on_failure(true);
        converter.substitute_unknown(true);
        _writeParts(converter, data, len, [&] { return converter.ferrCnt() != 0; });
        converter.end();
        if (converter.ferrCnt() != 0) continue;
        out = std::move(local);
        usedCharset = name;
        return true;
    }
    return false;
}

bool VmaraConv::m_conv(Buffer& out, std::string& usedCharset, char const* data, unsigned int len,
                       VMRStaticCharSetFallbacks const& fallbacks, std::string const& to)
{
    return m_conv(out, usedCharset, data, len, fallbacks.charsets(), to);
}

std::string utf82utf7imap(std::string const& text)
{
    Buffer const name =
        VmaraConv::fromUtf8("IMAP-mailbox-name", text.data(), static_cast<unsigned int>(text.size()), 0);
    return std::string(viewOf(name));
}

std::string utf7imp2utf8(std::string const& name)
{
    Buffer const text =
        VmaraConv::toUtf8("IMAP-mailbox-name", name.data(), static_cast<unsigned int>(name.size()), 0, true, true);
    return std::string(viewOf(text));
}

} // namespace Velmara

long vmaral_convert_to_utf7imap(char const* src, char* dst, long dstSize)
{
    std::string const name = Velmara::utf82utf7imap(src);
    if (dstSize > 0) {
        name.copy(dst, static_cast<size_t>(dstSize));
        dst[dstSize - 1] = '\0';
    }
    return static_cast<long>(name.size());
}
