// Addresses, lists of them, host names and links.
#include "hostile/Case.h"
#include "hostile/Work.h"

namespace Velmara::Hostile {

std::vector<Case> addressCases()
{
    return {
        {"address/list", [](size_t n) { return counted(n, "", "\"N {}\" <n{}@a.example>, ", ""); }, readAddresses},
        {"address/commas", [](size_t n) { return filled(n, "", ",", ""); }, readAddresses},
        {"address/nested-comments", [](size_t n) { return filled(n, "a@b.example ", "(", ""); }, readAddresses},
        {"address/closed-nested-comments",
         [](size_t n) { return filled(n / 2, "a@b.example ", "(", "") + filled(n / 2, "", ")", ""); }, readAddresses},
        {"address/comments-between-all", [](size_t n) { return filled(n, "", "(c)a(c)@(c)b(c).(c)example(c),", ""); },
         readAddresses},
        {"address/open-quotes", [](size_t n) { return filled(n, "", "\"", ""); }, readAddresses},
        {"address/quotes-without-end", [](size_t n) { return filled(n, "", "\"a ", ""); }, readAddresses},
        {"address/open-brackets", [](size_t n) { return filled(n, "", "<", ""); }, readAddresses},
        {"address/open-bracket-in-each", [](size_t n) { return filled(n, "", "a <b@c.example, ", ""); }, readAddresses},
        {"address/open-literals", [](size_t n) { return filled(n, "", "a@[", ""); }, readAddresses},
        {"address/at-signs", [](size_t n) { return filled(n, "", "@", ""); }, readAddresses},
        {"address/dots", [](size_t n) { return filled(n, "a@b", ".", "example"); }, readAddresses},
        {"address/source-route", [](size_t n) { return filled(n, "<", "@a.example,", ":b@c.example>"); },
         readAddresses},
        {"address/groups", [](size_t n) { return filled(n, "", "g: a@b.example, c@d.example; ", ""); }, readAddresses},
        {"address/groups-without-end", [](size_t n) { return filled(n, "", "g:", ""); }, readAddresses},
        {"address/bare-words", [](size_t n) { return filled(n, "", "word ", ""); }, readAddresses},
        {"address/folds", [](size_t n) { return filled(n, "a@b.example", "\r\n ", ""); }, readAddresses},
        {"address/escapes", [](size_t n) { return filled(n, "\"", "\\", ""); }, readAddresses},
        {"address/encoded-names", [](size_t n) { return filled(n, "", "=?utf-8?Q?=C3=A4?= <a@b.example>, ", ""); },
         readAddresses},
        {"address/raw-8-bit", [](size_t n) { return filled(n, "", "\xE4\xF6 <a@b.example>, ", ""); }, readAddresses},

        {"link/list", [](size_t n) { return counted(n, "", "http://a{}.example/x ", ""); }, findLinks},
        {"link/one-without-end", [](size_t n) { return filled(n, "http://a.example/", "x", ""); }, findLinks},
        {"link/schemes-without-host", [](size_t n) { return filled(n, "", "http://", ""); }, findLinks},
        {"link/colons", [](size_t n) { return filled(n, "", "a:", ""); }, findLinks},
        {"link/bare-names", [](size_t n) { return filled(n, "", "www.a.example ", ""); }, findLinks},
        {"link/dots", [](size_t n) { return filled(n, "", "a.", ""); }, findLinks},
        {"link/www", [](size_t n) { return filled(n, "", "www.", ""); }, findLinks},
        {"link/open-brackets-at-the-end", [](size_t n) { return filled(n, "http://a.example/", "(", ""); }, findLinks},
        {"link/punctuation-at-the-end", [](size_t n) { return filled(n, "http://a.example/", ")", "."); }, findLinks},
        {"link/brackets-in-each", [](size_t n) { return filled(n, "", "(http://a.example/(x)), ", ""); }, findLinks},
        {"link/user-information", [](size_t n) { return filled(n, "http://", "a@", "b.example/"); }, findLinks},
        {"link/percent-escapes-in-a-host", [](size_t n) { return filled(n, "http://", "%61", ".example/"); },
         findLinks},
        {"link/mail-addresses", [](size_t n) { return filled(n, "", "mailto:a@b.example ", ""); }, findLinks},
        {"link/international-hosts", [](size_t n) { return counted(n, "", "http://\xC3\xA4{}.example/ ", ""); },
         findLinks},

        {"name/host-of-labels", [](size_t n) { return filled(n, "", "a.", "example"); }, readNames},
        {"name/host-of-one-label", [](size_t n) { return filled(n, "", "a", ".example"); }, readNames},
        {"name/international-label", [](size_t n) { return filled(n, "http://", "\xC3\xA4", ".example/"); }, readNames},
        {"name/ipv6-of-colons", [](size_t n) { return filled(n, "", ":", "1"); }, readNames},
        {"name/ipv4-of-digits", [](size_t n) { return filled(n, "", "1", ".2.3.4"); }, readNames},
        {"name/uri-of-back-slashes", [](size_t n) { return filled(n, "http:", "\\", "a.example"); }, readNames},
        {"name/uri-of-control-characters", [](size_t n) { return filled(n, "http://a", "\t\x01", ".example"); },
         readNames},
        {"name/numeric-hosts", [](size_t n) { return filled(n, "http://", "0x7f.", "1/"); }, readNames},
    };
}

} // namespace Velmara::Hostile
