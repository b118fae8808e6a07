// Every write is decoded as a whole or not at all: a strict codec must know that no byte of it is
// foreign before the first decoded byte goes on. The plain way is to copy the letters of a write
// behind those carried over and to decode that copy. Nearly all writes are lines of letters with a
// line end, and for letters and white space alone the copy changes nothing: they are decoded straight
// from the caller's bytes into our own buffer, and only once the end of the write has been reached
// is anything delivered. At the first other byte ("=", a foreign one) that work is thrown away and
// the write takes the plain way, which costs at most twice as much.
#include <velmara/CodecBase64.h>

#include <velmara/Exception.h>

#include "runtime/Base64.h"

namespace Velmara {

class CodecBase64Impl : public MediaOutDecoratorImpl {
public:
    CodecBase64Impl() = default;
    explicit CodecBase64Impl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& input) override { write(input.data(), input.length()); }
    void write(uchar_t const* bytes, uint_t n) override;

    void strict(bool on) { m_strict = on; }
    bool strict() const { return m_strict; }
    int status() const { return m_status; }

private:
    bool writeLetters(uchar_t const* in, uint_t left);
    void writeCleaned(Buffer const& input);
    bool clean(Buffer const& input);
    void writeEncoded(Buffer const& block);
    void giveUp(unsigned int carried, Buffer const& input);
    void writeRaw(Buffer const& input);

    CodecBase64::Status m_status = CodecBase64::StatusNothingDecoded;
    bool m_strict = true;
    Buffer m_carry;                      // up to 3 letters or "=" that wait for their group
    Buffer m_clean;                      // carried and new characters of one write, without white space
    Buffer m_decoded = Buffer(32768, 0); // large enough for any usual line, so that it need not grow
};

void CodecBase64Impl::write(uchar_t const* bytes, uint_t n)
{
    if (m_status == CodecBase64::StatusRaw)
        writeRaw(Buffer(bytes, n, false));
    else if (!writeLetters(bytes, n))
        writeCleaned(Buffer(bytes, n, false));
}

void CodecBase64Impl::writeRaw(Buffer const& input)
{
    if (!m_carry.isEmpty()) {
        downstream().write(m_carry);
        m_carry.length(0);
    }
    downstream().write(input);
}

/// The write if it holds, with what is carried, nothing but letters and white space; else false, and
/// nothing has changed.
bool CodecBase64Impl::writeLetters(uchar_t const* in, uint_t left)
{
    unsigned int const most = left / 4 * 3 + 8; // the carried group and the decoder's spare byte included
    if (m_decoded.size() < most) m_decoded.size(most);
    unsigned char* const decoded = m_decoded.data();
    unsigned char group[4];
    unsigned int begun = 0;
    for (; begun < m_carry.length(); ++begun) group[begun] = m_carry.at(begun);
    if (begun != 0 && m_carry.find('=', 0) >= 0) return false;

    uint_t written = 0;
    while (left > 0) {
        if (begun == 0 && left >= 4) {
            Base64Letters const letters = base64DecodeLetters(in, left, decoded + written);
            in += letters.read;
            left -= static_cast<uint_t>(letters.read);
            written += static_cast<uint_t>(letters.written);
            if (left == 0) break;
        }
        unsigned char const c = *in++, kind = base64Kinds[c];
        --left;
        if (kind == Base64Space) continue;
        if (kind == Base64Padding || kind == Base64Foreign) return false;
        group[begun++] = c;
        if (begun < 4) continue;
        written += static_cast<uint_t>(base64DecodeLetters(group, 4, decoded + written).written);
        begun = 0;
    }

    if (begun != 0 || !m_carry.isEmpty()) {
        m_carry.length(0);
        m_carry.append(group, begun);
    }
    if (written == 0) return true;
    m_status = CodecBase64::StatusDecoded;
    downstream().write(decoded, written);
    return true;
}

void CodecBase64Impl::writeCleaned(Buffer const& input)
{
    unsigned int const carried = m_carry.length();
    bool const invalid = clean(input);
    if (m_strict && invalid) return giveUp(carried, input);
    unsigned int const whole = m_clean.length() / 4 * 4;
    m_carry.append(m_clean.data() + whole, m_clean.length() - whole);
    m_clean.length(whole);
    writeEncoded(m_clean);
    if (m_status == CodecBase64::StatusRaw) giveUp(carried, input);
}

/// Fills m_clean, the carried characters first; true if a foreign byte had to be dropped.
bool CodecBase64Impl::clean(Buffer const& input)
{
    bool invalid = false;
    m_clean.length(0);
    m_clean.append(m_carry);
    m_carry.length(0);
    unsigned char const* const bytes = input.data();
    for (unsigned int i = 0; i < input.length(); ++i) {
        unsigned char const kind = base64Kinds[bytes[i]];
        if (kind <= Base64Padding) m_clean.append(bytes[i]);
        if (kind == Base64Foreign) invalid = true;
    }
    return invalid;
}

void CodecBase64Impl::writeEncoded(Buffer const& block)
{
    if (block.isEmpty()) return;
    try {
        block.decodeBase64(m_decoded);
        m_status = CodecBase64::StatusDecoded;
    } catch (BufferException const&) {
        // What could be decoded is in the buffer and counts; the status stays.
    }
    if (!m_decoded.isEmpty()) {
        downstream().write(m_decoded);
        return;
    }
    m_status = CodecBase64::StatusRaw;
    // The write itself follows raw, so its text arrives twice: cleaned and as it came. Body
    // signatures cover what arrives, so it has to be so in every installation.
    downstream().write(block);
}

void CodecBase64Impl::giveUp(unsigned int carried, Buffer const& input)
{
    m_status = CodecBase64::StatusRaw;
    if (carried != 0) downstream().write(m_clean.data(), carried);
    downstream().write(input);
}

namespace {

/// Only constructors of CodecBase64 set its implementation, so it is one of ours.
CodecBase64Impl& _implOf(CodecBase64 const& codec, unsigned int line)
{
    if (codec.isNull()) throw MediaException(line, "Base64Codec");
    return static_cast<CodecBase64Impl&>(*codec.get());
}

} // namespace

CodecBase64::CodecBase64() : MediaOutDecorator(new CodecBase64Impl, false)
{}

CodecBase64::CodecBase64(MediaOut const& out) : MediaOutDecorator(new CodecBase64Impl(out), false)
{}

void CodecBase64::strict(bool on)
{
    _implOf(*this, __LINE__).strict(on);
}

bool CodecBase64::strict() const
{
    return _implOf(*this, __LINE__).strict();
}

int CodecBase64::status() const
{
    return _implOf(*this, __LINE__).status();
}

} // namespace Velmara
