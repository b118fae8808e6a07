// A type database made of any bytes is read or refused; what is read keeps to the rules that the tests
// of the content rely on.
#include <cstdlib>

#include "tests/support/TypeDatabase.h"

using namespace Velmara;
using Match = SharedMimeType::Magic::Match;

namespace {

void require(bool condition)
{
    if (!condition) std::abort();
}

void check(Match const& match)
{
    require(match.type >= Match::String && match.type <= Match::Byte);
    require(match.offsetStart >= 0 && match.offsetStart <= match.offsetEnd);
    require(match.hasMask != match.mask.empty());
    bool const zerosAreX = match.hasMask || match.type != Match::String;
    require(!zerosAreX || match.value.find('\0') == std::string::npos);
    require(match.type != Match::Byte || match.value.size() <= 1);
    require(!match.hasMask || match.type != Match::String || match.value.size() <= match.mask.size() / 2);
    for (Match const& nested : match.matches) check(nested);
}

void check(SharedMimeInfoImpl const& database)
{
    std::set<std::string> names;
    for (SharedMimeType const& type : database.types()) {
        names.insert(type.mimeType);
        for (auto const& magic : type.magics)
            for (Match const& match : magic.matches) check(match);
    }
    require(names.count("") == 0 && names == database.mimeTypeList());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* bytes, size_t size)
{
    std::string_view const text(reinterpret_cast<char const*>(bytes), size);
    try {
        check(*databaseOf(text));
    } catch (Exception const& failure) {
        require(failure.code() == 6);
    }
    return 0;
}
