// Attachment names against a plain second reading of the parameter list, one escape at a time; a plain
// name beats all segments, and asking twice changes nothing.
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <velmara/ContentDisposition.h>
#include <velmara/ContentType.h>
#include <velmara/EncodedWord.h>
#include <velmara/Logger.h>
#include <velmara/VmaraConv.h>

using namespace Velmara;

namespace {

void claim(bool holds, char const* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

std::string text(Buffer const& buffer)
{
    return std::string(reinterpret_cast<char const*>(buffer.data()), buffer.length());
}

bool isHex(std::string const& bytes, size_t at)
{
    return at < bytes.size() && std::isxdigit(static_cast<unsigned char>(bytes[at]));
}

/// Cuts one escape after the other out of the front.
std::string plainlyUnescaped(std::string rest)
{
    std::string bytes;
    while (!rest.empty()) {
        size_t taken = 1;
        if (rest[0] != '%') {
            bytes += rest[0];
        } else if (!isHex(rest, 1)) {
            taken = 2;
        } else {
            taken = 3;
            if (isHex(rest, 2))
                bytes += static_cast<char>(std::stoi(rest.substr(1, 2), nullptr, 16));
            else if (rest.size() > 2)
                bytes += rest[2];
        }
        rest.erase(0, taken);
    }
    return bytes;
}

std::string plainlyDecoded(std::string const& all)
{
    std::string charset = "us-ascii", data = all;
    size_t const first = all.find('\'');
    size_t const second = first == std::string::npos ? first : all.find('\'', first + 1);
    if (second != std::string::npos) {
        if (first != 0) charset = all.substr(0, first);
        data = all.substr(second + 1);
    }
    data = plainlyUnescaped(data);
    return text(VmaraConv::toUtf8(charset, data.data(), static_cast<unsigned int>(data.size()), 0, true, true));
}

std::string plainlyNamed(std::list<TypeAndValue> const& parameters, std::string const& name)
{
    for (TypeAndValue const& parameter : parameters)
        if (parameter.type() == name) return text(stringToUtf8(parameter.value(), nullptr));
    std::string all;
    bool extended = false;
    for (TypeAndValue const& parameter : parameters) {
        std::string const& type = parameter.type();
        if (type.find(name + '*') != 0) continue;
        all += parameter.value();
        if (type.back() == '*') extended = true;
    }
    return extended ? plainlyDecoded(all) : text(stringToUtf8(all, nullptr));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Logger::setSink([](unsigned int, std::string const&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    std::string const parameters(reinterpret_cast<char const*>(data), n);
    ContentType const type("a/b; " + parameters);
    std::string const name = type.utf8name();
    claim(name == plainlyNamed(type.parameters(), "name"), "name");
    claim(name == type.utf8name(), "the same name again");

    ContentDisposition const disposition("inline; file" + parameters); // "name=" becomes "filename="
    std::string const fileName = disposition.utf8fileName();
    claim(fileName == plainlyNamed(disposition.parameters(), "filename"), "file name");
    claim(fileName == disposition.utf8fileName(), "the same file name again");
    return 0;
}
