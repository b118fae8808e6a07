#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// What benchmarks read: generated texts, or the files of a folder that the environment names.

inline std::string repeated(std::size_t n, std::string const& text)
{
    std::string all;
    all.reserve(n * text.size());
    while (n-- > 0) all += text;
    return all;
}

/// The contents of all files below a folder, in the order of their paths, so that runs can be compared.
inline std::vector<std::string> filesBelow(std::string const& folder)
{
    std::vector<std::string> paths;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> contents;
    for (std::string const& path : paths) {
        std::ifstream in(path, std::ios::binary);
        contents.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return contents;
}

inline std::size_t bytesOf(std::vector<std::string> const& texts)
{
    std::size_t bytes = 0;
    for (std::string const& text : texts) bytes += text.size();
    return bytes;
}
