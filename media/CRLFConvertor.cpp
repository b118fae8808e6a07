#include <velmara/CRLFConvertor.h>

#include "media/MedianInAdapter.h"

namespace Velmara {

namespace {

class CRLFConvertorImpl : public MedianInAdapterImpl {
public:
    CRLFConvertorImpl(MediaIn const& source, CRLFConvertor::CRLFConverType type)
        : MedianInAdapterImpl(source), m_type(type)
    {}

    void readline(Buffer& line) override;

private:
    CRLFConvertor::CRLFConverType const m_type;
};

constexpr unsigned char _cr = '\r', _lf = '\n';

unsigned char _last(Buffer const& line)
{
    return line.isEmpty() ? 0 : line.at(line.length() - 1);
}

/// Removes the last byte if it is this one.
bool _strip(Buffer& line, unsigned char byte)
{
    if (_last(line) != byte) return false;
    line.length(line.length() - 1);
    return true;
}

} // namespace

void CRLFConvertorImpl::readline(Buffer& line)
{
    source().readline(line);
    if (line.isEmpty()) return;
    // CR LF, LF and CR are all line ends here, and so is none at all.
    _strip(line, _lf);
    _strip(line, _cr);
    if (m_type == CRLFConvertor::ToCRLF) line.append(_cr);
    line.append(_lf);
}

CRLFConvertor::CRLFConvertor() = default;
CRLFConvertor::CRLFConvertor(MediaIn const& source, CRLFConverType type)
    : MediaIn(new CRLFConvertorImpl(source, type), false)
{}

} // namespace Velmara
