#include "TokenText.h"

#include <chrono>
#include <cstdint>
#include <thread>

#include <velmara/Md5Hasher.h>

namespace VelmaraCommand {

using namespace Velmara;

namespace {

constexpr char const* _languages[] = {"western",  "Arabic", "simplified Chinese", "traditional Chinese",
                                      "Cyrillic", "Hebrew", "Japanese",           "Korean",
                                      "Thai"};

bool _loaded()
{
    while (!TD::s_initConfig()) std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return true;
}

} // namespace

void waitForWordLists()
{
    static bool const loaded = _loaded();
    static_cast<void>(loaded);
}

char const* languageOf(TD const& tokens)
{
    return _languages[tokens.language()];
}

/// The numbers go in as four bytes each, the lowest first: wchar_t is not the same everywhere.
std::string signatureOf(std::wstring const& tokens)
{
    if (tokens.empty()) return std::string();
    std::string bytes;
    for (wchar_t token : tokens)
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(static_cast<std::uint32_t>(token) >> shift);
    Md5Hasher hasher;
    hasher.update(reinterpret_cast<unsigned char const*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    hasher.finalize();
    return hasher.digestAsHexString();
}

} // namespace VelmaraCommand
