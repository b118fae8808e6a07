#include <velmara/MailHeaderMedia.h>

#include "media/MedianInAdapter.h"

namespace Velmara {

namespace {

class MailHeaderMediaImpl : public MedianInAdapterImpl {
public:
    using MedianInAdapterImpl::MedianInAdapterImpl;
    void readline(Buffer& line) override;

private:
    bool isOfHeader(Buffer const& line);

    bool m_finished = false;
    bool m_headerSeen = false;
    bool m_atLineStart = true; // false: the last piece was cut from a longer line
};

class MailBodyMediaImpl : public MedianInAdapterImpl {
public:
    using MedianInAdapterImpl::MedianInAdapterImpl;
    void readline(Buffer& line) override;

private:
    void skipHeader(Buffer& line);

    bool m_headerSeen = false;
    bool m_bodyStarted = false;
};

bool _isContinuation(Buffer const& line)
{
    return line.findWhiteSpace(0) == 0 && line.findNonWhiteSpace(0) != -1;
}

bool _isHeader(Buffer const& line)
{
    int const colon = line.find(':', 0);
    return colon >= 1 && colon < line.findWhiteSpace(0);
}

bool _isComplete(Buffer const& line)
{
    return line.isEmpty() || line.at(line.length() - 1) == '\n';
}

} // namespace

void MailHeaderMediaImpl::readline(Buffer& line)
{
    if (!m_finished) {
        source().readline(line);
        if (isOfHeader(line)) return;
        m_finished = true;
    }
    line.length(0);
}

bool MailHeaderMediaImpl::isOfHeader(Buffer const& line)
{
    bool const startsLine = m_atLineStart;
    if (!startsLine && line.isEmpty()) return false;
    m_atLineStart = _isComplete(line);
    if (!startsLine) return true;
    if (m_headerSeen && _isContinuation(line)) return true;
    if (!_isHeader(line)) return false;
    m_headerSeen = true;
    return true;
}

void MailBodyMediaImpl::readline(Buffer& line)
{
    if (m_bodyStarted) {
        source().readline(line);
        return;
    }
    skipHeader(line);
    m_bodyStarted = true;
}

/// Leaves the first line of the body in `line`.
void MailBodyMediaImpl::skipHeader(Buffer& line)
{
    for (bool atLineStart = true;; atLineStart = _isComplete(line)) {
        source().readline(line);
        if (!atLineStart) {
            if (line.isEmpty()) return;
        } else if (!m_headerSeen || !_isContinuation(line)) {
            if (!_isHeader(line)) return;
            m_headerSeen = true;
        }
    }
}

MailHeaderMedia::MailHeaderMedia() = default;
MailHeaderMedia::MailHeaderMedia(MediaIn const& source) : MediaIn(new MailHeaderMediaImpl(source), false)
{}

MailBodyMedia::MailBodyMedia() = default;
MailBodyMedia::MailBodyMedia(MediaIn const& source) : MediaIn(new MailBodyMediaImpl(source), false)
{}

} // namespace Velmara
