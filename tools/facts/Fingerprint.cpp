#include "Fingerprint.h"

#include <filesystem>
#include <fstream>

#include <velmara/Config.h>
#include <velmara/Installation.h>
#include <velmara/Md5Hasher.h>

#include "SelfTest.h"

namespace VelmaraCommand {
namespace {

using Velmara::Config;
using Velmara::Installation;
using Velmara::Md5Hasher;

std::string _digestOf(Md5Hasher& md5)
{
    md5.finalize();
    return md5.digestAsHexString();
}

/// Each compiler of magic files writes another compiled one, so the source tells more, where it is there.
std::string _digestOfMagic(std::string const& path)
{
    std::string const source = digestOfFile(path);
    return source == "absent" ? digestOfFile(path + ".mgc") : source;
}

std::string _digestOf(std::vector<Component> const& all)
{
    Md5Hasher md5;
    for (Component const& one : all) {
        std::string const line = one.name + '\t' + one.value + '\n';
        md5.update(reinterpret_cast<unsigned char const*>(line.data()), static_cast<unsigned int>(line.size()));
    }
    return _digestOf(md5);
}

/// Of what they gave, right or wrong: both sites may be wrong alike.
std::string _digestOfVectors()
{
    std::vector<Component> given;
    for (VectorOutcome const& outcome : runVectors()) given.push_back({outcome.name, outcome.given});
    return _digestOf(given);
}

std::vector<Component> _lookUp()
{
    std::vector<Component> all{
        {"library", Installation::version()},
        {"ICU", Installation::icuVersion()},
        {"libxml2", Installation::libxml2Version()},
        {"type database", digestOfFile(Installation::typeDatabase())},
        {"magic file", _digestOfMagic(Installation::magicFile())},
    };
    char const* kind = "tags "; // the first file
    for (std::string const& name : Config::fileNames()) {
        all.push_back({kind + name, digestOfFile(Installation::wordDirectory() + '/' + name)});
        kind = "words ";
    }
    all.push_back({"vectors", _digestOfVectors()});
    return all;
}

} // namespace

/// Only a regular file: nobody waits for the writer of a pipe.
std::string digestOfFile(std::string const& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return "absent";
    std::ifstream file(path, std::ios::binary);
    std::vector<char> block(1 << 16);
    Md5Hasher md5;
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0)
        md5.update(reinterpret_cast<unsigned char const*>(block.data()), static_cast<unsigned int>(file.gcount()));
    return file.eof() ? _digestOf(md5) : "unreadable";
}

std::vector<Component> const& components()
{
    static std::vector<Component> const all = _lookUp();
    return all;
}

std::string const& fingerprint()
{
    static std::string const digest = _digestOf(components());
    return digest;
}

} // namespace VelmaraCommand
