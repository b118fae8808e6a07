// Transfer decoders and output filters, in large writes and in single bytes: cuts must cost nothing but
// the calls.
#include <velmara/Velmara.h>

#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

template <class Stage, unsigned int block = 4096> void _throughBlocks(Input const& input, Sink& sink)
{
    writeThrough(input, sink, through<Stage>, block);
}

template <class Stage> void _throughBytes(Input const& input, Sink& sink)
{
    writeThrough(input, sink, through<Stage>, 1);
}

template <class Stage> void _throughLines(Input const& input, Sink& sink)
{
    writeLinesThrough(input, sink, through<Stage>);
}

/// As one write, so that nothing but the output bounds what is kept.
template <class Stage> void _throughWhole(Input const& input, Sink& sink)
{
    Buffer decoded;
    Stage stage{BufferMediaOut(decoded)};
    std::string const& text = input.text();
    stage.write(reinterpret_cast<uchar_t const*>(text.data()), static_cast<uint_t>(text.size()));
    stage.end();
    sink.number(decoded.length());
}

using _Q = CodecQuotedPrintable;
using _B = CodecBase64;
using _U = CodecUUEncode;
using _H = CodecBinHex40;

constexpr char _binHexNotice[] = "(This file must be converted with BinHex 4.0)\n:";

} // namespace

std::vector<Case> decoderCases()
{
    return {
        {"decoder/quoted-printable-of-escapes", [](size_t n) { return filled(n, "", "=3D", ""); }, _throughBlocks<_Q>,
         true},
        {"decoder/quoted-printable-in-single-bytes", [](size_t n) { return filled(n, "", "=3D=\r\nx", ""); },
         _throughBytes<_Q>, true},
        {"decoder/quoted-printable-of-equal-signs", [](size_t n) { return filled(n, "", "=", ""); }, _throughBlocks<_Q>,
         true},
        {"decoder/quoted-printable-of-false-escapes", [](size_t n) { return filled(n, "", "=Z", ""); },
         _throughBlocks<_Q>, true},
        {"decoder/quoted-printable-redelivered-escapes", [](size_t n) { return filled(n, "=Z", "x", ""); },
         _throughBytes<_Q>, true, Output, "an escape that proves to be none is delivered again with each later write"},
        {"decoder/quoted-printable-of-blanks", [](size_t n) { return filled(n, "", " ", ""); }, _throughBlocks<_Q>,
         true},
        {"decoder/quoted-printable-of-soft-breaks", [](size_t n) { return filled(n, "", "=\r\n", ""); },
         _throughLines<_Q>, true},
        {"decoder/base64", [](size_t n) { return filled(n, "", "QUJD", ""); }, _throughBlocks<_B>, true},
        {"decoder/base64-whole", [](size_t n) { return filled(n, "", "QUJD", ""); }, _throughWhole<_B>},
        {"decoder/base64-in-single-bytes", [](size_t n) { return filled(n, "", "QUJD\r\n", ""); }, _throughBytes<_B>,
         true},
        {"decoder/base64-of-padding", [](size_t n) { return filled(n, "QUJD", "=", ""); }, _throughBlocks<_B>, true},
        {"decoder/base64-of-padded-groups", [](size_t n) { return filled(n, "", "QQ==", ""); }, _throughBlocks<_B>,
         true},
        {"decoder/base64-of-foreign-bytes", [](size_t n) { return filled(n, "QUJD", "!\x80", ""); }, _throughBlocks<_B>,
         true},
        {"decoder/base64-of-line-ends", [](size_t n) { return filled(n, "QUJD", "\r\n", ""); }, _throughLines<_B>,
         true},
        {"decoder/uuencode", [](size_t n) { return filled(n, "begin 644 a\n", "M" + repeated(60, "5") + "\n", ""); },
         _throughLines<_U>, true},
        {"decoder/uuencode-in-single-bytes", [](size_t n) { return filled(n, "begin 644 a\n", "#0V%T\n", "`\nend\n"); },
         _throughBytes<_U>, true},
        {"decoder/uuencode-of-begins", [](size_t n) { return filled(n, "", "begin 644 a\n", ""); }, _throughLines<_U>,
         true},
        {"decoder/uuencode-without-begin", [](size_t n) { return filled(n, "", "begi", ""); }, _throughLines<_U>, true},
        {"decoder/uuencode-line-without-end", [](size_t n) { return filled(n, "begin 644 a\n", "M", ""); },
         _throughLines<_U>, true},
        {"decoder/uuencode-of-short-lines", [](size_t n) { return filled(n, "begin 644 a\n", "M\n", ""); },
         _throughLines<_U>, true},
        {"decoder/binhex", [](size_t n) { return filled(n, _binHexNotice, repeated(63, "!") + "\n", ":"); },
         _throughBlocks<_H>, true},
        {"decoder/binhex-in-single-bytes",
         [](size_t n) { return filled(n, _binHexNotice, repeated(63, "$") + "\n", ":"); }, _throughBytes<_H>, true},
        {"decoder/binhex-of-runs", [](size_t n) { return filled(n, _binHexNotice, "j0m", ":"); }, _throughBlocks<_H>,
         true},
        {"decoder/binhex-without-notice", [](size_t n) { return filled(n, "", "(This file ", ""); }, _throughBlocks<_H>,
         true},
        {"decoder/binhex-of-blanks", [](size_t n) { return filled(n, "", " \n", ""); }, _throughBlocks<_H>, true},

        {"filter/line-ends-to-lf", [](size_t n) { return filled(n, "", "\r\n\r", ""); },
         _throughBlocks<FilterCRLFMediaOut>, true},
        {"filter/line-ends-in-single-bytes", [](size_t n) { return filled(n, "", "\r\n\n", ""); },
         _throughBytes<FilterLFCRLFMediaOut>, true},
        {"filter/line-ends-to-crlf", [](size_t n) { return filled(n, "", "\n", ""); },
         _throughBlocks<FilterLFCRLFMediaOut>, true},
        {"filter/markup-to-be-escaped", [](size_t n) { return filled(n, "", "<&>\"", ""); },
         _throughBlocks<FilterHtmlEscapeMediaOut>, true},
        {"filter/open-references", [](size_t n) { return filled(n, "", "&#", ""); },
         _throughBlocks<FilterHtmlEscapeMediaOut>, true},
        {"filter/reference-without-end", [](size_t n) { return filled(n, "&#", "1", ""); },
         _throughBlocks<FilterHtmlEscapeMediaOut>, true},
        {"filter/reference-without-end-in-single-bytes", [](size_t n) { return filled(n, "&#", "1", ""); },
         _throughBytes<FilterHtmlEscapeMediaOut>, true},
        {"filter/references", [](size_t n) { return filled(n, "", "&#228;", ""); },
         _throughBlocks<FilterHtmlEscapeMediaOut>, true},
        {"filter/utf-8-in-single-bytes", [](size_t n) { return filled(n, "", "\xE4\xB8\x80", ""); },
         _throughBytes<FilterUTF8MediaOut>, true},
        {"filter/line-ends-read-as-crlf", [](size_t n) { return filled(n, "", "\n\r", ""); },
         [](Input const& input, Sink& sink) {
             for (auto const type : {CRLFConvertor::ToCRLF, CRLFConvertor::ToLF}) {
                 CRLFConvertor in(input.media(), type);
                 Buffer block(8192, 0);
                 while (in.read(block, 8192) > 0)
                     sink.text(std::string_view(reinterpret_cast<char const*>(block.data()), block.length()));
             }
         },
         true},
    };
}

} // namespace Velmara::Hostile
