#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "File.h"

namespace VelmaraCommand {

/// What is the matter with one of the scan's own files.
struct FileFailure : ScanFailure {
    FileFailure(std::string file, std::string const& reason) : ScanFailure(reason), place(std::move(file)) {}
    std::string place;
};

/// The lines of a scan on their way to a file, which takes its name only when it is whole.
///
/// "FILE" is written as "FILE.part", with "FILE.part.json" beside it, which tells how the scan was begun.
/// Both are gone once the scan is finished. What an interruption of any kind leaves can be gone on
/// with: up to the last line that ends, which is where the next run begins to write. Where the disk is
/// full, what was written of a line is taken back.
///
/// A path that leads to something else than a file, such as "/dev/stdout", is written to directly, and
/// nothing of it can be gone on with. Every failure is an FileFailure.
class LineOutput {
public:
    /// Standard output.
    LineOutput();
    /// `settings` is one line, JSON, that two runs must have in common for the second one to go on with
    /// what the first one wrote; `resume` asks for that. Without anything to go on with, it begins.
    LineOutput(std::string const& path, std::string const& settings, bool resume);
    ~LineOutput();
    LineOutput(LineOutput const&) = delete;
    LineOutput& operator=(LineOutput const&) = delete;

    /// The last line of those that were written by an earlier run; "" if there are none.
    std::string const& lastLine() const { return m_lastLine; }
    /// A line with its LF.
    void write(std::string_view line);
    /// Hands over what has been written so far.
    void flush();
    void finish();

private:
    void open();
    void begin(std::string const& settings);
    void goOn(std::string const& settings);
    [[noreturn]] void fail(std::string const& path) const;

    std::string m_target; // "" if there is none to rename to
    std::string m_path;   // that is being written
    int m_descriptor = 1;
    std::uint64_t m_wholeLines = 0; // bytes of the file up to where its last line ends
    std::string m_buffer;
    std::string m_lastLine;
};

} // namespace VelmaraCommand
