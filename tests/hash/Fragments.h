#pragma once

#include <cstddef>
#include <string>

/// Text that a scanner of HTML has something to do with, made of any bytes: each picks a fragment, and
/// every fourth stands for itself. Short lines, open words and half tags are frequent on purpose.
inline std::string textOfFragments(unsigned char const* bytes, std::size_t n)
{
    static char const* const fragments[] = {"\n",
                                            "\n",
                                            " ",
                                            "a",
                                            "ab",
                                            "abc",
                                            "1",
                                            "123",
                                            "1234",
                                            ".",
                                            ".",
                                            ".",
                                            "&",
                                            "<",
                                            ">",
                                            "/",
                                            "!",
                                            "-",
                                            "--",
                                            "%",
                                            "<!--",
                                            "-->",
                                            "<!-->",
                                            "<!",
                                            "<!DOCTYPE",
                                            "&lt;",
                                            "&LT",
                                            "&gt;",
                                            "&GT",
                                            "&amp;",
                                            "&AMP",
                                            "&quot;",
                                            "&QUOT",
                                            "&nbsp;",
                                            "&emsp;",
                                            "&ensp;",
                                            "&ensp",
                                            "&Amp;",
                                            "&#65;",
                                            "<BR>",
                                            "<br/>",
                                            "</BR>",
                                            "<P>",
                                            "</p>",
                                            "<TABLE>",
                                            "</TABLE",
                                            "<TR>",
                                            "</tr>",
                                            "<TD>",
                                            "<script>",
                                            "</SCRIPT>",
                                            "<STYLE x",
                                            "</style>",
                                            "<title>",
                                            "</title>",
                                            "<b",
                                            "<i>",
                                            "<1",
                                            "<P x=y>",
                                            "\r",
                                            "www.a.example",
                                            "10.0.0.1",
                                            "e.g",
                                            "http://",
                                            "$",
                                            "|",
                                            "\"",
                                            "some words of text",
                                            "\t",
                                            "\v"};
    constexpr std::size_t count = sizeof fragments / sizeof *fragments;
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        if (bytes[i] % 4 == 3)
            text += static_cast<char>(bytes[i]);
        else
            text += fragments[(bytes[i] / 4 * 3 + bytes[i] % 4) % count];
    }
    return text;
}
