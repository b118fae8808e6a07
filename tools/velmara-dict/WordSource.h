#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace VelmaraDict {

/// A file that cannot be read as what it was said to be; the text names the file, the line and the reason.
class BadInput : public std::runtime_error {
public:
    BadInput(std::string const& file, size_t line, std::string const& reason);
    BadInput(std::string const& file, std::string const& reason);
};

/// The head words of a file in its order. Formats:
///   plain    one word a line, UTF-8
///   hunspell a .dic file: a count, then a word a line, with flags behind "/" and fields behind a tab;
///            the character set is what the .aff file beside it says ("SET ..."), else UTF-8
///   dictd    an index of dictd: a word, an offset and a length in Base64 digits, with tabs between
///   edict    "word [reading] /meaning/.../", UTF-8 or EUC-JP; the reading is a word too
/// Throws BadInput for a file that cannot be read, an unknown format and a line that does not fit it.
std::vector<std::wstring> readWords(std::string const& format, std::string const& file);

/// One name a line; lines that start with "#" are comments. The numbers are the places, from 1 on.
std::vector<std::string> readTags(std::string const& file);

} // namespace VelmaraDict
