#include <velmara/DecodeMediaIn.h>

#include <cstring>

namespace Velmara {

namespace {

constexpr int _lineSize = 4096;

/// A source that is not at its end may give an empty line now and then, and is asked again; one that
/// gives so many in a row (a header view whose source goes on behind the header) has nothing more.
constexpr int _patience = 64;

} // namespace

/// The sink of the decoder. It is counted, so a decoder that outlives the stream has something to
/// write to.
class DecodeMediaIn::Decoded : public MediaOutImpl {
public:
    void write(Buffer const& more) override { bytes.append(more); }
    void write(uchar_t const* more, uint_t n) override { bytes.append(more, n); }

    Buffer bytes = Buffer(_lineSize, 0);
};

DecodeMediaIn::DecodeMediaIn(MediaIn const& source, MediaOutDecorator const& decoder)
    : m_source(source), m_decoder(decoder), m_decoded(new Decoded), m_decodedMedia(m_decoded, false),
      m_pending(512, 4096), m_line(_lineSize, 0)
{
    m_decoder.attach(m_decodedMedia);
}

DecodeMediaIn::~DecodeMediaIn() = default;

bool DecodeMediaIn::atEnd() const
{
    if (!m_source.isNull() && !m_source.atEnd()) return false;
    return m_pending.isEmpty();
}

int DecodeMediaIn::peek() const
{
    return 0;
}

unsigned long DecodeMediaIn::tell()
{
    return 0;
}

void DecodeMediaIn::setpos(unsigned long)
{}

/// Adds one line of the source, which has to be there, decoded to what is pending; false if there is no more.
bool DecodeMediaIn::decodeLine()
{
    m_source.readline(m_line);
    if (m_line.isEmpty()) return false;
    m_decoder.write(m_line);
    m_pending.append(m_decoded->bytes);
    m_decoded->bytes.length(0);
    return true;
}

/// Decodes until `n` bytes are pending; how many of them there are.
uint_t DecodeMediaIn::decodeUpTo(uint_t n)
{
    if (atEnd()) return 0;
    while (m_pending.length() < n)
        if (!decodeLine()) n = m_pending.length();
    return n;
}

int DecodeMediaIn::read(Buffer& block, uint_t n)
{
    n = decodeUpTo(n != 0 ? n : block.size());
    block.length(0);
    block.append(m_pending.data(), n);
    m_pending.shiftLeft(n);
    return static_cast<int>(block.length());
}

int DecodeMediaIn::read(uchar_t* bytes, uint_t n)
{
    if (!bytes) return 0;
    n = decodeUpTo(n);
    if (n != 0) std::memcpy(bytes, m_pending.data(), n);
    m_pending.shiftLeft(n);
    return static_cast<int>(n);
}

void DecodeMediaIn::readline(Buffer& line)
{
    line.length(0);
    if (atEnd()) return;
    for (bool more = true; more;) {
        // What holds no LF goes to the caller at once: a body may be a single line.
        int const lineFeed = m_pending.find('\n', 0);
        uint_t const n = lineFeed < 0 ? m_pending.length() : static_cast<uint_t>(lineFeed) + 1;
        line.append(m_pending.data(), n);
        m_pending.shiftLeft(n);
        if (lineFeed >= 0) return;
        try {
            more = decodeLine();
        } catch (...) {
            // Who reads again after the failure gets the line whole.
            m_pending.append(line);
            line.length(0);
            throw;
        }
    }
}

void DecodeMediaIn::write(MediaOut& out)
{
    if (m_source.isNull()) return;
    m_source.setpos(0);
    for (int tries = 0; tries < _patience; ++tries) {
        m_source.readline(m_line);
        if (m_line.isEmpty()) {
            if (m_source.atEnd()) break;
            continue;
        }
        tries = 0;
        m_decoder.write(m_line);
        passOn(out);
    }
    m_decoder.end();
    passOn(out);
}

/// Moves what the decoder has given to `out`.
void DecodeMediaIn::passOn(MediaOut& out)
{
    if (!m_decoded->bytes.isEmpty()) out.write(m_decoded->bytes);
    m_decoded->bytes.length(0);
}

} // namespace Velmara
