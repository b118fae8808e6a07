#include <velmara/FilterCRLFMediaOut.h>

namespace Velmara {

class FilterCRLFMediaOutImpl : public MediaOutDecoratorImpl {
public:
    FilterCRLFMediaOutImpl() = default;
    explicit FilterCRLFMediaOutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& bytes) override;
    void write(uchar_t const* bytes, uint_t n) override;
};

class FilterLFCRLFMediaOutImpl : public MediaOutDecoratorImpl {
public:
    FilterLFCRLFMediaOutImpl() = default;
    explicit FilterLFCRLFMediaOutImpl(MediaOut const& out) : MediaOutDecoratorImpl(out) {}

    void write(Buffer const& bytes) override;
    void write(uchar_t const* bytes, uint_t n) override;

private:
    void writeLine(uchar_t const* bytes, uint_t start, uint_t lineFeed);
};

namespace {

constexpr unsigned char _cr = '\r', _lf = '\n';
constexpr unsigned char _crLf[] = {_cr, _lf};

/// Hands each run that `byte` ends to `run` (begin, end), and what follows the last one to `out`.
template <class Run> void _split(MediaOut& out, Buffer const& bytes, unsigned char byte, Run run)
{
    if (bytes.isEmpty()) return;
    int at = bytes.find(byte, 0);
    if (at < 0) {
        out.write(bytes);
        return;
    }
    uint_t start = 0;
    for (; at >= 0; at = bytes.find(byte, at + 1)) {
        auto const end = static_cast<uint_t>(at);
        run(start, end);
        start = end + 1;
    }
    if (start != bytes.length()) out.write(bytes.data() + start, bytes.length() - start);
}

} // namespace

void FilterCRLFMediaOutImpl::write(Buffer const& bytes)
{
    _split(downstream(), bytes, _cr,
           [&](uint_t start, uint_t end) { downstream().write(bytes.data() + start, end - start); });
}

void FilterCRLFMediaOutImpl::write(uchar_t const* bytes, uint_t n)
{
    write(Buffer(bytes, n, false));
}

void FilterLFCRLFMediaOutImpl::write(Buffer const& bytes)
{
    _split(downstream(), bytes, _lf, [&](uint_t start, uint_t end) { writeLine(bytes.data(), start, end); });
}

void FilterLFCRLFMediaOutImpl::write(uchar_t const* bytes, uint_t n)
{
    write(Buffer(bytes, n, false));
}

/// Body signatures cover what arrives downstream, so a CR LF has to lose its LF everywhere.
void FilterLFCRLFMediaOutImpl::writeLine(uchar_t const* bytes, uint_t start, uint_t lineFeed)
{
    if (start != lineFeed) {
        downstream().write(bytes + start, lineFeed - start);
        if (bytes[lineFeed - 1] == _cr) return;
    }
    downstream().write(_crLf, sizeof _crLf);
}

FilterCRLFMediaOut::FilterCRLFMediaOut() : MediaOutDecorator(new FilterCRLFMediaOutImpl, false)
{}

FilterCRLFMediaOut::FilterCRLFMediaOut(MediaOut const& downstream)
    : MediaOutDecorator(new FilterCRLFMediaOutImpl(downstream), false)
{}

FilterLFCRLFMediaOut::FilterLFCRLFMediaOut() : MediaOutDecorator(new FilterLFCRLFMediaOutImpl, false)
{}

FilterLFCRLFMediaOut::FilterLFCRLFMediaOut(MediaOut const& downstream)
    : MediaOutDecorator(new FilterLFCRLFMediaOutImpl(downstream), false)
{}

} // namespace Velmara
