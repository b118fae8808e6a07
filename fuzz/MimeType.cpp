// The quick answer is that of the plain walk, whatever the database, the content and the name. All
// three are drawn from the input, over few letters and small numbers, so that much of one fits the
// others.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "fuzz/Writes.h"
#include "tests/support/PlainMimeType.h"
#include "tests/support/TypeDatabase.h"

using namespace Velmara;

namespace {

constexpr char const* types[] = {"application/zip", "application/gzip", "text/a", "inode/b", "x/c", "x/d"};
constexpr char const* kinds[] = {"string", "big16", "big32", "host16", "host32", "little16", "little32", "byte"};

template <size_t n> std::string one(FuzzedDataProvider& input, char const* const (&words)[n])
{
    return words[input.ConsumeIntegralInRange<size_t>(0, n - 1)];
}

/// Characters of an alphabet, as many as the input wants.
std::string text(FuzzedDataProvider& input, std::string const& alphabet, size_t most)
{
    std::string word(input.ConsumeIntegralInRange<size_t>(0, most), '\0');
    for (char& c : word) c = alphabet[input.ConsumeIntegralInRange<size_t>(0, alphabet.size() - 1)];
    return word;
}

std::string number(FuzzedDataProvider& input, int most)
{
    return std::to_string(input.ConsumeIntegralInRange<int>(0, most));
}

std::string attribute(char const* name, std::string const& value)
{
    return std::string(" ") + name + "=\"" + value + "\"";
}

/// The plain walk tries a nested test again wherever its parent stands, so there are two levels.
std::string match(FuzzedDataProvider& input, bool outermost)
{
    std::string const start = number(input, 5);
    std::string const end = input.ConsumeBool() ? start : number(input, input.ConsumeBool() ? 9 : 700);
    std::string xml = "<match" + attribute("type", one(input, kinds)) +
                      attribute("value", text(input, "aabB0011234568X\\xn", 9)) +
                      attribute("offset", start + ":" + end);
    if (input.ConsumeIntegralInRange(0, 3) == 0) xml += attribute("mask", text(input, "0fFd8z", 9));
    xml += ">";
    for (int nested = outermost ? input.ConsumeIntegralInRange(0, 2) : 0; nested > 0; --nested)
        xml += match(input, false);
    return xml + "</match>";
}

std::string type(FuzzedDataProvider& input)
{
    std::string xml = "<mime-type" + attribute("type", one(input, types)) + ">";
    if (input.ConsumeBool()) xml += "<sub-class-of" + attribute("type", one(input, types)) + "/>";
    for (int globs = input.ConsumeIntegralInRange(0, 3); globs > 0; --globs)
        xml += "<glob" + attribute("pattern", (input.ConsumeBool() ? "*" : "") + text(input, "aabA..*?[]-!", 6)) +
               attribute("weight", number(input, 2)) +
               attribute("case-sensitive", input.ConsumeBool() ? "true" : "false") + "/>";
    for (int magics = input.ConsumeIntegralInRange(0, 2); magics > 0; --magics) {
        xml += "<magic" + attribute("priority", number(input, 2)) + ">";
        for (int tests = input.ConsumeIntegralInRange(0, 3); tests > 0; --tests) xml += match(input, true);
        xml += "</magic>";
    }
    return xml + "</mime-type>";
}

/// The kinds of one type, in either direction.
void checkKinds(SharedMimeInfoImpl const& database, PlainMimeType const& plain, std::string const& one)
{
    for (char const* other : types) {
        if (database.isMimeTypeEqualOrSubclassOf(one, other) != plain.isKindOf(one, other)) std::abort();
        if (database.isMimeTypeEqualOrSubclassOf(other, one) != plain.isKindOf(other, one)) std::abort();
    }
}

std::string databaseText(FuzzedDataProvider& input)
{
    std::string xml;
    for (int count = input.ConsumeIntegralInRange(0, 4); count > 0; --count) xml += type(input);
    return xml;
}

/// A database and its plain walk.
struct Reading {
    explicit Reading(std::string const& xml) : database(databaseWith(xml)), plain(*database) {}
    std::unique_ptr<SharedMimeInfoImpl const> const database;
    PlainMimeType const plain;
};

/// Databases that are made once, drawn like the others: making one costs ten times as much as all questions.
std::vector<std::unique_ptr<Reading const>> const& prepared()
{
    static auto const* const all = [] {
        auto* readings = new std::vector<std::unique_ptr<Reading const>>;
        Writes::Choice choice{1};
        for (int i = 0; i < 64; ++i) {
            std::vector<std::uint8_t> bytes(1000);
            for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(choice.below(256));
            FuzzedDataProvider input(bytes.data(), bytes.size());
            readings->push_back(std::make_unique<Reading const>(databaseText(input)));
        }
        return readings;
    }();
    return *all;
}

void check(Reading const& reading, unsigned claim, FuzzedDataProvider& input)
{
    auto const& [database, plain] = reading;
    if (claim % 3 == 2) return checkKinds(*database, plain, one(input, types));
    std::string const name = text(input, "aabA..-[", 6);
    std::string data = text(input, std::string("aabX\0\x12\x34\xff", 8), 12);
    if (input.ConsumeBool()) data += std::string(600, 'a') + text(input, "abX", 4);
    data += input.ConsumeRemainingBytesAsString().substr(0, 64);

    Buffer const content(data.data(), static_cast<unsigned int>(data.size()), true);
    std::string const expected = plain(data, name);
    if (claim % 3 == 0 && database->mimeType(content, name) != expected) std::abort();
    if (claim % 3 == 1 && *database->explain(content, name).mimeType != expected) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    prepared();
    return 0;
}

// The last byte, which is the first that the provider hands out, chooses the claim and whether the database
// may be drawn too.
extern "C" int LLVMFuzzerTestOneInput(unsigned char const* bytes, size_t size)
{
    FuzzedDataProvider input(bytes, size);
    unsigned const how = input.ConsumeIntegral<std::uint8_t>();
    if (how < 64 && Writes::oneIn(4, bytes, size))
        check(Reading(databaseText(input)), how, input);
    else
        check(*prepared()[input.ConsumeIntegral<std::uint8_t>() % prepared().size()], how, input);
    return 0;
}
