#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "scan/File.h"

namespace VelmaraCommand {

/// Gives a text, which outlives it, in reads of at most so many bytes.
class CutStream : public ByteStream {
public:
    CutStream(std::string const& text, std::size_t most) : m_text(text), m_most(most) {}
    std::size_t read(char* bytes, std::size_t n) override
    {
        std::size_t const taken = m_text.copy(bytes, std::min(n, m_most), m_at);
        m_at += taken;
        return taken;
    }

private:
    std::string const& m_text;
    std::size_t const m_most;
    std::size_t m_at = 0;
};

} // namespace VelmaraCommand
