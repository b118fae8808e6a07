// What memory a message takes: none for the bytes of its bodies, and a bounded amount for each part,
// header, parameter and link.
#include <malloc.h>

#include <cstdio>
#include <functional>
#include <sstream>
#include <stdexcept>

#include <velmara/Velmara.h>

#include "hostile/Measure.h"
#include "hostile/Work.h"
#include "support/SmallStack.h"

namespace Velmara::Hostile {

namespace {

constexpr size_t _smallBody = size_t{1} << 20, _largeBody = size_t{64} << 20;
constexpr unsigned long _mostGrowth = 2048; // KiB from the small body to the large one
constexpr size_t _items = 100000;

struct BodyRow {
    char const* name;
    char const* head;
    std::string unit;
};

std::vector<BodyRow> const& _bodies()
{
    static std::vector<BodyRow> const rows{
        {"7bit", "A: 1\n\n", repeated(75, "x") + "\n"},
        {"one line without end", "A: 1\n\n", "x"},
        {"base64", "Content-Transfer-Encoding: base64\n\n", repeated(19, "QUJD") + "\n"},
        {"quoted-printable", "Content-Transfer-Encoding: quoted-printable\n\n", repeated(24, "=E4") + "=\n"},
        {"uuencode", "Content-Transfer-Encoding: x-uuencode\n\nbegin 644 a\n", "M" + repeated(60, "5") + "\n"},
        {"BinHex", "Content-Type: application/mac-binhex40\n\n(This file must be converted with BinHex 4.0)\n:",
         repeated(63, "!") + "\n"},
    };
    return rows;
}

unsigned long _peakOf(BodyRow const& row, size_t size)
{
    SharedFile const file(filled(size, row.head, row.unit, ""));
    return std::stoul(outputOf({"memory-of", "body", file.path()}));
}

bool _measureBodies()
{
    std::printf("%-24s %12s %12s %10s\n", "body", "KiB at 1 MB", "at 64 MB", "more");
    bool good = true;
    for (BodyRow const& row : _bodies()) {
        unsigned long const small = _peakOf(row, _smallBody), large = _peakOf(row, _largeBody);
        bool const flat = large <= small + _mostGrowth;
        std::printf("%-24s %12lu %12lu %10ld%s\n", row.name, small, large,
                    static_cast<long>(large) - static_cast<long>(small), flat ? "" : "  FAILED");
        good = good && flat;
    }
    return good;
}

struct ItemRow {
    char const* name;
    size_t text; // bytes of the item that have to be kept
    size_t most; // bytes beyond its text
    std::string (*make)();
    void (*hold)(std::string const& text, std::function<void()> const& measure);
};

void _holdMessage(std::string const& text, std::function<void()> const& measure)
{
    BufferMediaIn in(text.data(), text.size());
    Ref<Rfc822Msg> message = Rfc822Msg::parse(in);
    MimePartVisitor visitor;
    message->root()->visit(&visitor);
    measure();
}

constexpr char _multipart[] = "Content-Type: multipart/mixed; boundary=b\n\n";

ItemRow const _itemRows[] = {
    {"part", 0, 600, [] { return _multipart + repeated(_items, "--b\n\ntext\n"); }, _holdMessage},
    {"part with one header", 2, 900, [] { return _multipart + repeated(_items, "--b\nA: 1\n\ntext\n"); }, _holdMessage},
    {"header", 26, 300, [] { return repeated(_items, "X-Header-Name: value of it\n") + "\n"; }, _holdMessage},
    {"header, other reader", 26, 300, [] { return repeated(_items, "X-Header-Name: value of it\n") + "\n"; },
     [](std::string const& text, std::function<void()> const& measure) {
         BufferMediaIn in(text.data(), text.size());
         HeaderContainer const headers(in);
         measure();
     }},
    {"parameter", 2, 250, [] { return "text/plain" + repeated(_items, "; a=b"); },
     [](std::string const& text, std::function<void()> const& measure) {
         ContentType const type(text);
         type.parameters();
         measure();
     }},
    {"address", 12, 250, [] { return repeated(_items, "N <a@b.example>, "); },
     [](std::string const& text, std::function<void()> const& measure) {
         HeaderTo const to(text);
         to.addresses();
         measure();
     }},
    {"link", 26, 400,
     [] {
         std::string text;
         for (size_t i = 0; i < _items; ++i) text += "http://a.example/" + std::to_string(100000000 + i) + " ";
         return text;
     },
     [](std::string const& text, std::function<void()> const& measure) {
         UriContainer links;
         UriSniffer::search(links, text, 0, false);
         measure();
     }},
};

size_t _inUse()
{
    struct mallinfo2 const all = mallinfo2();
    return all.uordblks + all.hblkhd;
}

bool _measureItems()
{
    std::printf("\n%-24s %12s %12s %10s\n", "100000 times a", "bytes each", "its text", "at most");
    bool good = true;
    for (ItemRow const& row : _itemRows) {
        std::string const text = row.make();
        size_t const before = _inUse();
        size_t taken = 0;
        row.hold(text, [&] { taken = _inUse() - before; });
        size_t const each = taken / _items;
        bool const small = each <= row.most + row.text && each > 0;
        std::printf("%-24s %12zu %12zu %10zu%s\n", row.name, each, row.text, row.most + row.text,
                    small ? "" : "  FAILED");
        good = good && small;
    }
    return good;
}

} // namespace

int runMemory(std::string const& what, std::string const& path)
{
    if (what != "body") throw std::runtime_error("no measure " + what);
    onSmallStack([&] {
        Sink sink(Sink::Nothing);
        readBodies(Input::ofFile(path), sink);
    });
    std::printf("%lu\n", peakMemory());
    return 0;
}

int measureMemory()
{
    bool const bodies = _measureBodies();
    bool const items = _measureItems();
    return bodies && items ? 0 : 1;
}

} // namespace Velmara::Hostile
