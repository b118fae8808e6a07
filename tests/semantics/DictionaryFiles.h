#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <stdlib.h>

namespace Velmara {

/// A folder of word lists, gone with its owner.
class DictionaryFiles {
public:
    DictionaryFiles()
    {
        char path[] = "/tmp/velmara-dict-XXXXXX";
        m_dir = mkdtemp(path);
    }
    ~DictionaryFiles() { std::filesystem::remove_all(m_dir); }

    std::string const& dir() const { return m_dir; }

    void write(std::string const& name, std::string const& bytes) const
    {
        std::ofstream(m_dir + "/" + name, std::ios::binary) << bytes;
    }
    void writeWords(std::string const& name, std::vector<std::wstring> const& words) const
    {
        std::string bytes;
        for (std::wstring const& word : words) bytes += record(word);
        write(name, bytes);
    }

    static std::string number(std::uint32_t value)
    {
        return std::string(reinterpret_cast<char*>(&value), sizeof value);
    }
    /// The word in UTF-32, a zero and an LF.
    static std::string record(std::wstring const& word)
    {
        std::string bytes;
        for (wchar_t c : word) bytes += number(static_cast<std::uint32_t>(c));
        return bytes + number(0) + "\n";
    }
    /// A record of html.dict.
    static std::string tag(std::string const& name, std::uint32_t value)
    {
        return number(static_cast<std::uint32_t>(name.size())) + name + number(value);
    }

private:
    std::string m_dir;
};

} // namespace Velmara
