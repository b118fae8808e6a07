#pragma once

#include <cstddef>
#include <string>

namespace Velmara {

/// Text that readers of headers have something to do with, made of any bytes: each picks a fragment.
inline std::string headerText(unsigned char const* bytes, std::size_t n)
{
    static std::string const fragments[] = {"\r\n",
                                            "\n",
                                            "\n",
                                            "\r",
                                            " ",
                                            " ",
                                            "\t",
                                            ":",
                                            ":",
                                            ";",
                                            ";",
                                            "=",
                                            "=",
                                            "\"",
                                            "\"",
                                            "/",
                                            "a",
                                            "B",
                                            "\\",
                                            "(",
                                            ")",
                                            "'",
                                            "*",
                                            "%41",
                                            std::string(1, '\0'),
                                            "\v",
                                            "\xe9",
                                            "charset",
                                            "Charset=",
                                            "boundary=",
                                            "BOUNDARY",
                                            "name*0*=",
                                            "text/",
                                            "TEXT",
                                            "plain",
                                            "inline",
                                            "INLINE",
                                            "attachment",
                                            "base64",
                                            "x-uue",
                                            "X-YENC",
                                            "1.0",
                                            "A: 1\n",
                                            "Subject: ",
                                            "\n folded",
                                            "\n\n",
                                            "\r\n\r\n",
                                            "no colon\n",
                                            ": \n",
                                            std::string(1000, 'x'),
                                            std::string(24, ' ')};
    constexpr std::size_t count = sizeof fragments / sizeof *fragments;
    std::string text;
    for (std::size_t i = 0; i < n; ++i) text += fragments[bytes[i] % count];
    return text;
}

} // namespace Velmara
