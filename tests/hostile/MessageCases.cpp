// Messages: the depth and number of parts, delimiters and what only looks like one, lines of every kind,
// header blocks without end.
#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

namespace {

constexpr char _multipart[] = "Content-Type: multipart/mixed; boundary=b\n\n";

std::string _plain(std::string_view head, size_t size, std::string_view unit, std::string_view tail = "")
{
    return filled(size, head, unit, tail);
}

/// Multiparts in each other, each with a boundary of its own.
std::string _nested(size_t size)
{
    return counted(size, "", "Content-Type: multipart/mixed; boundary=b{}\n\n--b{}\n", "\ntext\n");
}

/// The deepest tree that is still parsed, with many leaves at its bottom.
std::string _deepWithManyLeaves(size_t size)
{
    std::string head;
    for (int level = 0; level < 99; ++level) {
        std::string const boundary = "level-" + std::to_string(level);
        head += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
    }
    return filled(size, head + _multipart, "--b\n\nx\n", "--b--\n");
}

/// The deepest tree again, whose text is all lines that could be a delimiter of one of its levels.
std::string _deepWithNearDelimiters(size_t size)
{
    std::string head;
    for (int level = 0; level < 99; ++level) {
        std::string const boundary = repeated(60, "-") + std::to_string(level);
        head += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\n\n--" + boundary + "\n";
    }
    return filled(size, head + "\n", repeated(62, "-") + "x\n", "");
}

std::string _base64(size_t size)
{
    return filled(size, "Content-Transfer-Encoding: base64\n\n", repeated(19, "VGV4") + "\r\n", "");
}

} // namespace

std::vector<Case> messageCases()
{
    return {
        {"message/one-leaf-of-short-lines", [](size_t n) { return _plain("A: 1\n\n", n, "x\n"); }, readBodies, true},
        {"message/one-leaf-of-empty-lines", [](size_t n) { return _plain("A: 1\n\n", n, "\n"); }, readBodies, true},
        {"message/one-leaf-of-cr", [](size_t n) { return _plain("A: 1\n\n", n, "\r"); }, readBodies, true},
        {"message/one-leaf-of-nul", [](size_t n) { return _plain("A: 1\n\n", n, std::string(1, '\0')); }, readBodies,
         true},
        {"message/one-line-without-end", [](size_t n) { return _plain("A: 1\n\n", n, "x"); }, readBodies, true},
        {"message/base64-body", _base64, readBodies, true},
        {"message/quoted-printable-body",
         [](size_t n) {
             return _plain("Content-Transfer-Encoding: quoted-printable\n\n", n, "=3D=\r\n=e4 \t \r\n=XY=\n");
         },
         readBodies, true},
        {"message/quoted-printable-line-cut-in-an-escape",
         [](size_t n) {
             return _plain("Content-Transfer-Encoding: quoted-printable\n\n" + repeated(4094, "x") + "=Z", n,
                           repeated(63, "x") + "\n");
         },
         readBodies, false, Output, "an escape that a cut line ends with is delivered again with each line behind it"},
        {"message/uuencoded-body",
         [](size_t n) {
             return _plain("Content-Transfer-Encoding: x-uuencode\n\nbegin 644 a\n", n, "M" + repeated(60, "5") + "\n");
         },
         readBodies, true},
        {"message/binhex-body",
         [](size_t n) {
             return _plain("Content-Type: application/mac-binhex40\n\n(This file must be converted with BinHex 4.0)\n:",
                           n, "!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!!\n");
         },
         readBodies, true},
        {"message/preamble-without-end", [](size_t n) { return _plain(_multipart, n, "text\n"); }, readBodies, true},
        {"message/epilogue-without-end",
         [](size_t n) { return _plain(std::string(_multipart) + "--b\n\nx\n--b--\n", n, "text\n"); }, readBodies, true},
        {"message/near-delimiters", [](size_t n) { return _plain(_multipart, n, "--\n--a\n-b\n --b\n"); }, readBodies,
         true},
        {"message/near-delimiters-of-all-levels", _deepWithNearDelimiters, readBodies, true},
        {"message/line-of-dashes", [](size_t n) { return _plain(_multipart, n, "-"); }, readBodies, true},
        {"message/delimiters-in-one-line", [](size_t n) { return _plain(_multipart, n, "--b"); }, readBodies, true},

        {"message/empty-parts", [](size_t n) { return _plain(_multipart, n, "--b\n"); }, analyseMessage},
        {"message/small-parts", [](size_t n) { return _plain(_multipart, n, "--b\n\nx\n"); }, analyseMessage},
        {"message/small-parts-of-html",
         [](size_t n) {
             return _plain(_multipart, n, "--b\nContent-Type: text/html\n\n<p>x<a href=http://a.example/>y\n");
         },
         analyseMessage},
        {"message/small-attachments",
         [](size_t n) {
             return counted(n, _multipart,
                            "--b\nContent-Type: application/pdf; name=\"{}.pdf\"\nContent-Disposition: attachment; "
                            "filename=\"=?utf-8?B?w6Q=?={}.pdf\"\nContent-Transfer-Encoding: base64\n\nJVBERi0=\n",
                            "--b--\n");
         },
         analyseMessage},
        {"message/empty-multiparts-side-by-side",
         [](size_t n) { return _plain(_multipart, n, "--b\nContent-Type: multipart/mixed; boundary=c\n\n--c--\n"); },
         walkTree},
        {"message/messages-side-by-side",
         [](size_t n) { return _plain(_multipart, n, "--b\nContent-Type: message/rfc822\n\nA: 1\n\nx\n"); }, walkTree},
        {"message/multiparts-in-each-other", _nested, walkTree},
        {"message/messages-in-each-other", [](size_t n) { return _plain("", n, "Content-Type: message/rfc822\n\n"); },
         readBodies, true},
        {"message/messages-and-multiparts-in-turn",
         [](size_t n) {
             return counted(n, "",
                            "Content-Type: message/rfc822\n\nContent-Type: multipart/digest; "
                            "boundary=b{}\n\n--b{}\n",
                            "\ntext\n");
         },
         walkTree},
        {"message/many-leaves-at-the-deepest-level", _deepWithManyLeaves, readBodies},
        {"message/the-same-boundary-at-all-levels",
         [](size_t n) { return _plain("", n, std::string(_multipart) + "--b\n", "\ntext\n--b--\n"); }, walkTree},
        {"message/outer-delimiters-that-end-inner-parts",
         [](size_t n) {
             return _plain(_multipart, n,
                           "--b\nContent-Type: multipart/mixed; boundary=c\n\n--c\nContent-Type: "
                           "multipart/mixed; boundary=d\n\n--d\n\nx\n");
         },
         walkTree},
        {"message/boundary-without-end",
         [](size_t n) { return _plain("Content-Type: multipart/mixed; boundary=", n, "b", "\n\ntext\n"); }, walkTree},
        {"message/header-without-end", [](size_t n) { return _plain("A: ", n, "x"); }, walkTree},
        {"message/headers-without-end", [](size_t n) { return counted(n, "", "X-{}: value\n", ""); }, walkTree},
        {"message/headers-of-one-name", [](size_t n) { return _plain("", n, "Received: x\n", "\n"); }, walkTree},
        {"message/empty-headers", [](size_t n) { return _plain("", n, ":\n", "\n"); }, readBodies, true},
        {"message/header-of-folds", [](size_t n) { return _plain("Subject: x\n", n, " \n", "\n"); }, walkTree},
        {"message/header-of-crlf-folds", [](size_t n) { return _plain("Subject: x\r\n", n, "\ta\r\n", "\r\n"); },
         walkTree},
        {"message/lines-without-colon", [](size_t n) { return _plain("A: 1\n", n, "x\n"); }, readBodies, true},
        {"message/name-without-colon", [](size_t n) { return _plain("", n, "x"); }, readBodies, true},
        {"message/blanks-ahead-of-colons", [](size_t n) { return _plain("", n, "A   \t : 1\n", "\n"); }, readBodies,
         true},
        {"message/typed-headers-without-end",
         [](size_t n) {
             return _plain("", n,
                           "Received: from a (b [192.0.2.1]) by c; d\nTo: a@b.example\nReferences: <a@b> <c@d>\n"
                           "Subject: =?utf-8?Q?x?=\nContent-Disposition: x\n",
                           "\n");
         },
         analyseMessage},
        {"message/text-collected-of-many-parts",
         [](size_t n) { return _plain(_multipart, n, "--b\n\nx\n--b\nContent-Type: text/html\n\n<p>y\n"); },
         collectText},
        {"message/text-of-line-ends", [](size_t n) { return _plain("A: 1\n\n", n, "\r\n\r\r\n\n"); }, collectText,
         true},
    };
}

} // namespace Velmara::Hostile
