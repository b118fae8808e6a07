#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <velmara/MediaIn.h>

namespace VelmaraCommand {

/// Thrown where the time for a message is over.
struct OutOfTime {};

/// When the work on a message has to end.
class Deadline {
public:
    /// 0: never.
    explicit Deadline(std::chrono::milliseconds time);
    /// Throws OutOfTime once it is later.
    void check() const
    {
        if (m_isSet && std::chrono::steady_clock::now() > m_end) throw OutOfTime{};
    }

private:
    bool m_isSet;
    std::chrono::steady_clock::time_point m_end;
};

/// The bytes of a message as the parser gets them, read forward and once. Positions count from the
/// first byte. The line last read stays known: the parser tells that a part has ended, but not by which
/// line.
class CappedSource : public Velmara::MediaInImpl {
public:
    /// Ends behind `most` bytes (0: where `inner` ends). The deadline is not owned.
    CappedSource(Velmara::MediaIn const& inner, std::uint64_t most, Deadline const& deadline);

    using Velmara::MediaInImpl::read;
    using Velmara::MediaInImpl::setpos;

    bool atEnd() const override;
    int peek() const override;
    void readline(Velmara::Buffer& line) override;
    int read(Velmara::uchar_t* bytes, Velmara::uint_t n) override;
    unsigned long tell() const override { return m_position; }

    /// From here on, and until endHeaders(), notes where lines begin that do not continue another one.
    void beginHeaders();
    void endHeaders() { m_notesStarts = false; }
    std::vector<std::uint64_t> const& headerStarts() const { return m_starts; }
    /// The beginning of the last line that was read meanwhile, without white space behind it.
    std::string lineStart() const;

    /// Ends behind `most` lines of headers, of all header blocks together, unless their block ends there too. A
    /// long line counts as another one for each 128 bytes.
    void limitHeaderLines(std::uint64_t most) { m_headerLinesLeft = most; }
    /// It ended there.
    bool isCutInHeaders() const { return m_isCutInHeaders; }

    /// Bytes of the medium lie behind the last one that is delivered.
    bool isCut() const;

    std::uint64_t lineBegin() const { return m_lineBegin; }
    std::uint64_t lineEnd() const { return m_position; }
    /// The line last read if it begins with "--", as delimiters do, with its line end; else "".
    std::string const& dashedLine() const { return m_dashedLine; }
    /// Whether the line last read holds anything but white space.
    bool lineIsBlank() const { return m_lineIsBlank; }

private:
    bool more();
    bool headersAreFull();
    void cutInHeaders();
    void note(Velmara::Buffer const& line);
    void noteHeader(Velmara::Buffer const& line);

    Velmara::MediaIn m_inner;
    std::uint64_t m_left; // bytes that may still be asked of it
    Deadline const& m_deadline;
    std::unique_ptr<unsigned char[]> m_block;
    unsigned char const *m_at, *m_end; // what is left of the block
    unsigned long m_position = 0;
    // of the line last read
    std::uint64_t m_lineBegin = 0;
    std::string m_dashedLine;
    bool m_lineIsBlank = true;
    bool m_lineIsWhole = true; // it had its line end, so the next one is another
    // of header lines
    bool m_notesStarts = false;
    std::vector<std::uint64_t> m_starts;
    std::string m_lineStart;
    std::uint64_t m_headerLinesLeft = std::numeric_limits<std::uint64_t>::max();
    bool m_isCutInHeaders = false;
};

} // namespace VelmaraCommand
