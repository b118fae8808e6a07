#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder that is gone with the object.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "velmara-test.XXXXXX").string();
        if (::mkdtemp(name.data())) m_path = name;
    }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::string at(std::string const& name) const { return (m_path / name).string(); }
    /// Makes the folders above it too.
    std::string put(std::string const& name, std::string const& bytes) const
    {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return at(name);
    }
    std::string read(std::string const& name) const
    {
        std::ifstream in(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool has(std::string const& name) const { return std::filesystem::exists(m_path / name); }

private:
    std::filesystem::path m_path;
};
