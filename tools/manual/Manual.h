#pragma once

#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

/// What a package installs beside a program to tell of it, made from its command line, so that neither
/// can lag behind the options: `PROGRAM --manual` and `PROGRAM --completion` print them for the build.
namespace VelmaraManual {

/// What no command line knows.
struct Manual {
    std::string version;
    /// Sections behind the options: a heading with its terms, each with a text.
    std::vector<std::pair<std::string, std::vector<std::pair<std::string, std::string>>>> sections;
};

/// In the man macros of roff.
std::string pageOf(CLI::App const& program, Manual const& manual);

/// A completion for bash of verbs, options and values of options; everything else is a file.
std::string completionOf(CLI::App const& program);

/// Prints one of them if the words of the command line ask for it; false if they do not.
bool printed(CLI::App const& program, Manual const& manual, int argc, char const* const* argv);

} // namespace VelmaraManual
