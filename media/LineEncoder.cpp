#include "media/LineEncoder.h"

#include <algorithm>

namespace Velmara {

LineEncoderImpl::LineEncoderImpl(MediaOut const& out, uint_t bytesPerLine)
    : MediaOutDecoratorImpl(out), m_bytesPerLine(bytesPerLine)
{}

void LineEncoderImpl::write(uchar_t const* bytes, uint_t n)
{
    while (n > 0) {
        uint_t const used = std::min(n, m_bytesPerLine - m_begun.length());
        if (used == m_bytesPerLine) {
            writeLine(bytes, used);
        } else {
            m_begun.append(bytes, used);
            if (m_begun.length() == m_bytesPerLine) {
                writeLine(m_begun.data(), m_bytesPerLine);
                m_begun.length(0);
            }
        }
        bytes += used;
        n -= used;
    }
}

void LineEncoderImpl::end()
{
    flush();
    MediaOutDecoratorImpl::end();
}

void LineEncoderImpl::flush()
{
    while (!m_begun.isEmpty()) {
        uint_t const n = endLineLength(m_begun.length());
        writeLine(m_begun.data(), n);
        m_begun.shiftLeft(n);
    }
}

void LineEncoderImpl::writeLine(uchar_t const* bytes, uint_t n)
{
    m_text.clear();
    appendLine(bytes, n, m_text);
    downstream() << m_text;
}

} // namespace Velmara
