#pragma once

#include <velmara/MediaIn.h>

namespace Velmara {

/// Base of the streams that rewrite another stream line by line: a subclass has its own `readline`,
/// and everything else is built on it.
class MedianInAdapterImpl : public MediaInImpl {
public:
    explicit MedianInAdapterImpl(MediaIn const& source);

    /// Both are those of the source, without regard to bytes that wait for a block read.
    bool atEnd() const override;
    int peek() const override;
    /// Block reads share the bytes that wait. Those into a buffer must not ask `readline` for the piece
    /// that is still wanted, as the default does: a line cut there gets a line end, or is no header.
    int read(uchar_t* bytes, uint_t n) override;
    int read(Buffer& block, uint_t n) override;
    int read(Buffer& all) override;
    int read(std::string& all) override;

protected:
    MediaIn& source() { return m_source; }

private:
    uint_t fetched(uint_t n);

    MediaIn m_source;
    Buffer m_pending;                // bytes of whole lines for later block reads
    Buffer m_line = Buffer(1024, 0); // one line, during block reads
};

} // namespace Velmara
