#pragma once

#include <string>

#include <velmara/MediaOut.h>

namespace Velmara {

/// Base of the encodings that turn a fixed number of bytes into a line.
class LineEncoderImpl : public MediaOutDecoratorImpl {
public:
    LineEncoderImpl(MediaOut const& out, uint_t bytesPerLine);

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    /// Writes the last line, which may be shorter, and passes the end on.
    void end() override;

protected:
    /// Writes what is held of a begun line.
    void flush();
    /// Appends these bytes as a line with its line end.
    virtual void appendLine(uchar_t const* bytes, uint_t n, std::string& text) = 0;
    /// How many of the bytes left at the end, which make no full line, form the next line.
    virtual uint_t endLineLength(uint_t left) const { return left; }

private:
    void writeLine(uchar_t const* bytes, uint_t n);

    uint_t const m_bytesPerLine;
    Buffer m_begun;     // bytes of a line that is not full yet
    std::string m_text; // of one write downstream
};

} // namespace Velmara
