// The header block of a message, which the parser reads by rules of its own, against a plain second
// reading, on raw bytes and on text made of fragments: the headers, how long the block is, and that what
// follows is the body.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/header/HeaderFragments.h"
#include "tests/message/PlainMessageHeaders.h"
#include "tests/support/Shape.h"

using namespace Velmara;

namespace {

void claim(bool holds, char const* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void check(std::string const& text)
{
    PlainMessageHeaders::Block const expected = PlainMessageHeaders::read(text);
    Mail const mail(text);
    PlainMessageHeaders::Pairs found;
    for (Header const& header : mail.root().headers().headers()) found.emplace_back(header.type(), header.value());
    claim(found == expected.headers, "headers");
    claim(mail.root().hlen() == expected.length, "length of the block");
    auto* const leaf = dynamic_cast<MimeRfc822Msg*>(&mail.root());
    if (leaf) claim(textOf(leaf->body(false)) == text.substr(expected.length), "the rest is the body");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    check(std::string(reinterpret_cast<char const*>(data), n));
    check(headerText(data, n));
    return 0;
}
