// Hashers over growing prefixes of a body, as callers use them. Each prefix must give what a fresh hasher
// makes of it alone, and the flags must tell callers the truth, or a caller would wait for data that
// cannot come.
#include <velmara/Hasher.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/Writes.h"
#include "tests/hash/Fragments.h"
#include "tests/hash/ImagePieces.h"

namespace {

using namespace Velmara;

Hasher make(Hasher::DataType type)
{
    switch (type) {
    case Hasher::DataHtml:
    case Hasher::DataText:
        return TextHasher(type);
    case Hasher::DataBinary:
        return BinaryHasher();
    default:
        return ImageHasher(type);
    }
}

void require(bool holds)
{
    if (!holds) std::abort();
}

void checkFlags(Hasher const& hasher, bool isBinary)
{
    require(hasher.isValid() == (hasher.digest().size() == 16));
    require(hasher.isValid() == (hasher.digestAsHexString().size() == 32));
    bool const sourceIsLonger = hasher.dataSourceLength() > hasher.processedDataLength();
    // A binary hasher never takes back that it asked.
    if (hasher.isMoreDataRequired() && !isBinary) require(sourceIsLonger);
    if (!hasher.isValid() && sourceIsLonger) require(hasher.isMoreDataRequired());
}

/// The prefixes end anywhere, the last one at the end of the body.
void check(Hasher::DataType type, std::string const& body, std::uint8_t cuts)
{
    bool const isBinary = type == Hasher::DataBinary;
    Writes::Choice choice{cuts};
    auto const most = static_cast<std::uint32_t>(body.size() * 2 / (2 + cuts % 8u) + 1);
    Hasher hasher = make(type);
    for (size_t n = 0; n < body.size();) {
        n = std::min<size_t>(n + 1 + choice.below(most), body.size());
        Buffer const prefix(body.data(), static_cast<unsigned int>(n), true);
        Hasher fresh = make(type);
        fresh.dataType(hasher.dataType()); // an image may have changed it
        std::string const before = hasher.digest();
        fresh.process(prefix, static_cast<unsigned int>(body.size()));
        hasher.process(prefix, static_cast<unsigned int>(body.size()));
        require(hasher.digest() == (fresh.isValid() ? fresh.digest() : before));
        require(hasher.dataType() == fresh.dataType());
        require(hasher.processedDataLength() == prefix.length());
        checkFlags(hasher, isBinary);
        checkFlags(fresh, isBinary);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 3) return 0;
    auto const type = static_cast<Hasher::DataType>(data[0] % 7);
    std::string const rest(reinterpret_cast<char const*>(data) + 2, n - 2);
    std::string body = rest;
    switch (data[0] / 7 % 5) {
    case 1:
        body = textOfFragments(data + 2, n - 2);
        break;
    case 2:
        body = imagepieces::jpg(rest);
        break;
    case 3:
        body = imagepieces::gif(rest);
        break;
    case 4:
        body = imagepieces::png(rest);
        break;
    }
    // Long enough for what is no image at all.
    if (data[0] >= 128) body += std::string(1100, 'x');
    check(type, body, data[1]);
    return 0;
}
