#pragma once

#include <string>
#include <string_view>

namespace VelmaraCommand {

/// The file that a path leads to, so that replacing it leaves links as they are. Of a link to nothing it is
/// the link itself.
std::string behindLinks(std::string const& path);

/// A file that is there in full or not at all: it is written beside the one that it is to be and takes
/// its place at `finish`. What is not finished leaves nothing behind, and what was there before stays.
///
/// A path that leads to something else than a file, such as "/dev/stdout" or a pipe, is written to
/// directly; a link keeps pointing to the file that is replaced. Every failure throws
/// Velmara::Exception (code 6) with "PATH: REASON" as string parameter.
class OutputFile {
public:
    explicit OutputFile(std::string const& path);
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    void write(std::string_view bytes);
    /// Puts it on the disk and in its place. To be called once, at the end.
    void finish();

private:
    [[noreturn]] void fail(int error) const;
    void openBeside();

    std::string m_path;   // as the caller wrote it
    std::string m_target; // with links followed
    std::string m_beside; // what is written; "" once nothing is to be removed
    int m_file = -1;
};

} // namespace VelmaraCommand
