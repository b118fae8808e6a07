// Character sets and what is read from texts: conversion of bad and stateful input, names of folders,
// semantic tokens.
#include <velmara/Velmara.h>

#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

// Names that a template can be made for.
constexpr char _utf8[] = "utf-8", _utf16[] = "utf-16", _utf7[] = "utf-7", _iso2022jp[] = "iso-2022-jp",
               _gb18030[] = "gb18030", _shiftJis[] = "shift_jis", _latin1[] = "iso-8859-1", _hz[] = "hz",
               _iso2022kr[] = "iso-2022-kr", _koi8[] = "koi8-r", _unknown[] = "x-nobody-knows";

template <char const* charset, unsigned int block = 4096> void _convert(Input const& input, Sink& sink)
{
    writeThrough(
        input, sink,
        [](MediaOut const& out) -> MediaOut {
            VmaraConv converter(out, charset, "utf-8", true);
            converter.substitute_unknown(true);
            return converter;
        },
        block);
}

/// The forms that hold the whole result, with everything that is tried on failure.
template <char const* charset> void _convertWhole(Input const& input, Sink& sink)
{
    std::string const& text = input.text();
    auto const size = static_cast<unsigned int>(text.size());
    for (bool const flag : {false, true})
        sink.number(VmaraConv::toUtf8(charset, text.data(), size, 0, flag, flag).length());
    sink.number(VmaraConv::fromUtf8(charset, text.data(), size, 0).length());
    Buffer out;
    std::string used;
    std::list<std::string> const tried{"us-ascii", "utf-8", "shift_jis", "euc-jp", "gb18030", "iso-8859-1"};
    sink.number(VmaraConv::m_conv(out, used, text.data(), size, tried, "utf-8"));
    sink.text(used);
}

/// The plain C form, into a small buffer.
void _convertPlainly(Input const& input, Sink& sink)
{
    std::string text = input.text();
    cVmaraCnv* converter = vmaracnv_open("utf-8", "iso-8859-1");
    char* in = text.data();
    size_t left = text.size();
    while (left > 0) {
        char room[64];
        char* out = room;
        size_t outLeft = sizeof room;
        size_t const before = left;
        sink.number(vmaracnv(converter, &in, &left, &out, &outLeft));
        if (left != before) continue;
        ++in; // what stops it is stepped over
        --left;
    }
    vmaracnv_close(converter);
}

void _folderNames(Input const& input, Sink& sink)
{
    std::string const encoded = utf82utf7imap(input.text());
    sink.text(encoded);
    sink.text(utf7imp2utf8(encoded));
    sink.text(utf7imp2utf8(input.text()));
    std::vector<char> room(64);
    sink.number(vmaral_convert_to_utf7imap(input.text().c_str(), room.data(), static_cast<long>(room.size())));
}

template <char const* charset> void _tokens(Input const& input, Sink& sink)
{
    readTokens(input, sink, charset);
}

} // namespace

std::vector<Case> textCases()
{
    return {
        {"charset/bad-utf-8", [](size_t n) { return filled(n, "", "\xC3\x28\xF0\x9F\xFF", ""); }, _convert<_utf8>,
         true},
        {"charset/utf-8-in-single-bytes", [](size_t n) { return filled(n, "", "\xF0\x9F\x98\x80", ""); },
         _convert<_utf8, 1>, true},
        {"charset/bad-utf-8-whole", [](size_t n) { return filled(n, "", "\x80", ""); }, _convertWhole<_utf8>},
        {"charset/utf-16-of-lone-halves",
         [](size_t n) { return filled(n, "\xFF\xFE", std::string_view("\0\xD8", 2), ""); }, _convert<_utf16>, true},
        {"charset/utf-7-of-shifts", [](size_t n) { return filled(n, "", "+AOQ-+", ""); }, _convert<_utf7>, true},
        {"charset/iso-2022-of-escapes", [](size_t n) { return filled(n, "", "\x1B$B\x1B(B", ""); },
         _convert<_iso2022jp>, true},
        {"charset/iso-2022-of-escapes-in-single-bytes", [](size_t n) { return filled(n, "", "\x1B$B$\"\x1B(B", ""); },
         _convert<_iso2022jp, 1>, true},
        {"charset/iso-2022-of-bad-escapes", [](size_t n) { return filled(n, "", "\x1B%$", ""); }, _convert<_iso2022jp>,
         true},
        {"charset/iso-2022-kr-of-shifts", [](size_t n) { return filled(n, "\x1B$)C", "\x0E\x0F", ""); },
         _convert<_iso2022kr>, true},
        {"charset/hz-of-braces", [](size_t n) { return filled(n, "", "~{~}", ""); }, _convert<_hz>, true},
        {"charset/gb18030-of-cut-characters", [](size_t n) { return filled(n, "", "\x81\x30\x81", ""); },
         _convert<_gb18030>, true},
        {"charset/shift-jis-of-lead-bytes", [](size_t n) { return filled(n, "", "\x81\xFD", ""); }, _convert<_shiftJis>,
         true},
        {"charset/latin", [](size_t n) { return filled(n, "", "\xE4", ""); }, _convert<_latin1>, true},
        {"charset/unknown", [](size_t n) { return filled(n, "", "\xE4", ""); }, _convert<_unknown>, true},
        {"charset/many-tried-to-the-end", [](size_t n) { return filled(n, "", "a", "\xFF\xFF"); },
         _convertWhole<_shiftJis>},
        {"charset/what-the-target-lacks", [](size_t n) { return filled(n, "", "\xE4\xB8\x80", ""); },
         _convertWhole<_koi8>},
        {"charset/small-buffers", [](size_t n) { return filled(n, "", "\xC3\xA4\xE4\xB8\x80", ""); }, _convertPlainly},
        {"charset/folder-names-of-shifts",
         [](size_t n) {
             return filled(n, "",
                           "&AOQ-\xC3\xA4"
                           "a",
                           "");
         },
         _folderNames},
        {"charset/folder-names-without-end", [](size_t n) { return filled(n, "&", "AOQ", ""); }, _folderNames},
        {"charset/folder-names-of-ampersands", [](size_t n) { return filled(n, "", "&", ""); }, _folderNames},

        {"tokens/words-of-the-longest-that-nearly-match",
         [](size_t n) { return filled(n, "", repeated(150, repeated(49, "a") + "b ") + "\n", ""); }, _tokens<_latin1>},
        {"tokens/words-of-the-longest", [](size_t n) { return filled(n, "", repeated(49, "a") + " bbb\n", ""); },
         _tokens<_latin1>},
        {"tokens/lines-of-one-word", [](size_t n) { return filled(n, "", repeated(8000, "a") + "\n", ""); },
         _tokens<_latin1>},
        {"tokens/lines-of-blanks", [](size_t n) { return filled(n, "", repeated(8000, " ") + "\n", ""); },
         _tokens<_latin1>},
        {"tokens/one-letter-words", [](size_t n) { return filled(n, "", repeated(4000, "b ") + "\n", ""); },
         _tokens<_latin1>},
        {"tokens/short-lines", [](size_t n) { return filled(n, "", "a\n", ""); }, _tokens<_latin1>},
        {"tokens/punctuation", [](size_t n) { return filled(n, "", repeated(1000, "b,.:;-") + "\n", ""); },
         _tokens<_latin1>},
        {"tokens/beginnings-of-a-disclaimer",
         [](size_t n) { return filled(n, "", repeated(800, "disclaime ") + "\n", ""); }, _tokens<_latin1>},
        {"tokens/chinese-of-one-character",
         [](size_t n) { return filled(n, "", repeated(2000, "\xE4\xB8\x80") + "\n", ""); }, _tokens<_utf8>},
        {"tokens/chinese-words-that-nearly-match",
         [](size_t n) {
             return filled(n, "", repeated(50, "\xE4\xB8\x80") + repeated(1900, "\xE4\xB8\x81") + "\n", "");
         },
         _tokens<_utf8>},
        {"tokens/japanese-of-one-character",
         [](size_t n) { return filled(n, "", repeated(2000, "\xE3\x81\x82") + "\n", ""); }, _tokens<_utf8>},
        {"tokens/cyrillic-words-that-nearly-match",
         [](size_t n) { return filled(n, "", repeated(60, repeated(49, "\xD0\xB0") + "\xD0\xB1 ") + "\n", ""); },
         _tokens<_koi8>},
        {"tokens/bad-utf-8", [](size_t n) { return filled(n, "", repeated(2000, "\xE4\xB8") + "\n", ""); },
         _tokens<_utf8>},
    };
}

} // namespace Velmara::Hostile
