#include <velmara/Base64MediaOut.h>

#include "media/LineEncoder.h"

namespace Velmara {

namespace {

constexpr uint_t _bytesPerLine = 45;

/// A line of so many bytes begins with "E" and may go on with "ND", which reads as the end line.
constexpr uint_t _likeTheEnd = 'E' - 32;
static_assert(_likeTheEnd < _bytesPerLine, "only the last line can have that length");

class UUEncodeOutImpl : public LineEncoderImpl {
public:
    explicit UUEncodeOutImpl(MediaOut const& out) : LineEncoderImpl(out, _bytesPerLine) {}

    using LineEncoderImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    void end() override;

private:
    enum State { BeforeBegin, InBody, Finished };

    void begin();
    void appendLine(uchar_t const* bytes, uint_t n, std::string& text) override;
    uint_t endLineLength(uint_t left) const override { return left == _likeTheEnd ? left - 1 : left; }

    State m_state = BeforeBegin;
};

/// The grave accent is 0 as well as the blank, and survives where blanks at the end of a line do not.
char _character(unsigned value)
{
    return value % 64 == 0 ? '`' : static_cast<char>(32 + value % 64);
}

} // namespace

void UUEncodeOutImpl::begin()
{
    if (m_state != InBody) downstream() << std::string("begin 644 data\r\n");
    m_state = InBody;
}

void UUEncodeOutImpl::write(uchar_t const* bytes, uint_t n)
{
    begin();
    LineEncoderImpl::write(bytes, n);
}

void UUEncodeOutImpl::end()
{
    // Without a write there is an empty file; a second end adds nothing.
    if (m_state != Finished) begin();
    flush();
    if (m_state == InBody) downstream() << std::string("`\r\n") << std::string("end\r\n");
    m_state = Finished;
    MediaOutDecoratorImpl::end();
}

void UUEncodeOutImpl::appendLine(uchar_t const* bytes, uint_t n, std::string& text)
{
    text += _character(n);
    for (uint_t at = 0; at < n; at += 3) {
        unsigned const first = bytes[at], second = at + 1 < n ? bytes[at + 1] : 0,
                       third = at + 2 < n ? bytes[at + 2] : 0;
        text += _character(first >> 2);
        text += _character(first << 4 | second >> 4);
        text += _character(second << 2 | third >> 6);
        text += _character(third);
    }
    text += "\r\n";
}

UUEncodeOut::UUEncodeOut(MediaOut const& out) : MediaOutDecorator(new UUEncodeOutImpl(out), false)
{}

} // namespace Velmara
