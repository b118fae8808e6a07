#pragma once

#include <string>

#include <velmara/Buffer.h>
#include <velmara/Export.h>

namespace Velmara {

/// Tells to which of four script families a UTF-8 text mostly belongs. Only the first 500 characters
/// are looked at. A scan sets at most one flag and never clears one, so an object is for one text.
/// Text that cannot be read leaves the flags unset; nothing is reported.
class VELMARA_EXPORT Utf2lang {
public:
    Utf2lang();

    /// What the scan found; at most one is set.
    bool chinese = false;
    bool japanese = false;
    bool korean = false;
    bool russian = false;

    /// Whether one of the first three is set.
    bool isCJK() const { return chinese || japanese || korean; }

    /// Ideographs, which Japanese and Chinese share.
    static bool isCN(wchar_t c);
    /// Kana, which tell Japanese from Chinese.
    static bool isJP(wchar_t c);
    /// Hangul, and what lies behind its block up to U+DFAF: stored statistics count it so.
    static bool isKR(wchar_t c);
    /// Cyrillic.
    static bool isRU(wchar_t c);

    /// Counts the characters of each family and sets the flag of one: Chinese if there is nothing else
    /// of East Asia; else Japanese, unless there is more Korean; Russian only without any of those.
    void scan(wchar_t const* text, int count);

    /// Converts to UTF-32 in the byte order of the machine: at most 500 characters, bad bytes as U+FFFD.
    /// Always gives 0.
    int str2wc(char const* text, unsigned long length, Buffer& out, char const* charset);
    /// The same into an array of `capacity` characters, the last of them a 0; nothing is written with a
    /// capacity of 0.
    int str2wc(char const* text, unsigned long length, wchar_t* out, unsigned long capacity, char const* charset);

    /// Converts UTF-8 and scans.
    void proc(char const* text, unsigned long length);
    void proc(std::string const& text);
};

} // namespace Velmara
