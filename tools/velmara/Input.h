#pragma once

#include <functional>
#include <string>
#include <vector>

#include <velmara/Exception.h>
#include <velmara/MediaIn.h>

namespace VelmaraCommand {

/// A path of the command line as people should see it; "-" is standard input.
std::string nameOfInput(std::string const& path);

/// A file of the command line as a stream; "-" is standard input.
class Input {
public:
    /// Throws Velmara::Exception if the file cannot be read.
    explicit Input(std::string const& path);

    Velmara::MediaIn& media() { return m_media; }
    std::string const& name() const { return m_name; }
    /// The last part of the path; "" for standard input.
    std::string const& fileName() const { return m_fileName; }

private:
    std::string m_name; // as people should see it
    std::string m_fileName;
    std::string m_held; // the bytes of a pipe or of standard input, for the parser goes back and forth
    Velmara::MediaIn m_media;
};

/// Does `work` with each file in order. A file that cannot be read gets one line on standard error that
/// names it and the reason, and the others are still done. Gives the highest status.
int forEachInput(std::vector<std::string> const& paths, std::function<int(Input&)> const& work);

/// All of standard input.
std::string readStandardIn();

/// Does `work` with each text of the command line; where none or just "-" was given, with each line of
/// standard input as it arrives, without its line end. Standard input that cannot be read gets a line on
/// standard error.
int forEachLine(std::vector<std::string> const& texts, std::function<void(std::string const&)> const& work);

/// Why a file could not be read or written, without the path ahead of it that the library puts there.
std::string reasonOf(Velmara::Exception const& failure, std::string const& path);

/// One line on standard error: "velmara: PLACE: REASON". Control characters are shown as in all output,
/// for file names are chosen by others too.
void complain(std::string const& place, std::string const& reason);

} // namespace VelmaraCommand
