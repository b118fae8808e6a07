#pragma once

#include <list>
#include <map>
#include <string>

#include <velmara/MediaOut.h>
#include <velmara/VMRStaticCharSetFallbacks.h>

namespace Velmara {

class VmaraConvImpl;

/// The one way to change character sets: bytes written in one set go downstream in another.
///
/// Names are those of ICU, in any case; "GB2312" and "GBK" are read as GB18030, which mail so labelled
/// really is. Conversion never fails a message:
///   - An unknown name leaves the converter closed: ok() is false and bytes are copied as they are.
///   - Equal names copy too, unvalidated; `force` makes such a pair convert, which validates UTF-8.
///   - A bad byte vanishes, or gives U+FFFD and counts in ferrCnt() once substitute_unknown(true) is
///     set. A bad ISO-2022 escape vanishes in either mode.
///   - A character that the target lacks is dropped and counts in terrCnt().
///
/// Writes may cut characters and shift sequences anywhere; what is unfinished waits inside. What
/// arrives downstream does so within the same write, at most 1064 bytes at a time.
///
/// end() gives out what waits, a cut character as a bad byte, and closes: later writes are copied raw.
/// The last handle to go ends the converter once more, so a downstream sees a second end(); a converter
/// that is to go without a trace is detached first. An object belongs to one thread at a time. Each operation named
/// here throws MediaException (code 1) on a null handle.
class VELMARA_EXPORT VmaraConv : public MediaOutDecorator {
public:
    /// A null handle.
    VmaraConv();
    /// An empty `from` means ISO-8859-1, an empty `to` UTF-8.
    VmaraConv(MediaOut const& out, std::string const& from, std::string const& to, bool force);
    VmaraConv(VmaraConv const&) = default;
    VmaraConv& operator=(VmaraConv const&) = default;
    ~VmaraConv() override;

    /// Gives out what waits inside as if the text ended here; the converter stays open.
    void flush();
    /// flush(), then the bytes downstream as they are.
    void writeThrough(uchar_t const* bytes, uint_t n);

    /// True if bytes are converted, or copied because the names are equal. False once ended.
    bool ok() const;
    /// Source bytes that were bad, counted only while bad bytes are substituted.
    unsigned int ferrCnt() const;
    /// UTF-16 units that the target set could not show.
    unsigned int terrCnt() const;

    /// False keeps an ISO-2022-JP text from being read on as Shift_JIS when ICU gives it up, a retry
    /// that is armed at construction; true arms nothing.
    void retry_on_failure(bool on);
    /// True: U+FFFD for each bad sequence. False, the initial state: nothing.
    void substitute_unknown(bool on);

    /// Converts a whole text into `out` (the target's name comes first). A `maxSize` other than 0
    /// becomes the limit of `out`; what lies beyond is not even converted. False, with nothing
    /// written, if a name is unknown.
    static bool conv(Buffer& out, std::string const& to, std::string const& from, char const* data, unsigned int len,
                     unsigned int maxSize, bool retry, bool substitute);
    /// As conv; an unknown name gives an empty buffer. Text in "UTF-8" is copied unvalidated.
    static Buffer toUtf8(std::string const& charset, char const* data, unsigned int len, unsigned int maxSize,
                         bool retry, bool substitute);
    static Buffer fromUtf8(std::string const& charset, char const* data, unsigned int len, unsigned int maxSize);

    /// Trial conversion: the first character set of the list that reads the text without one bad byte
    /// wins, replaces `out` and is named in `usedCharset`. Empty and unknown names are passed over.
    /// False, with `out` left alone, if none does; characters missing in `to` play no part.
    static bool m_conv(Buffer& out, std::string& usedCharset, char const* data, unsigned int len,
                       std::list<std::string> const& charsets, std::string const& to);
    static bool m_conv(Buffer& out, std::string& usedCharset, char const* data, unsigned int len,
                       VMRStaticCharSetFallbacks const& fallbacks, std::string const& to);

    /// The numbers by which configuration names character sets.
    static std::map<int, std::string> const& getFallbackCharMap();

private:
    VmaraConvImpl& converter(unsigned int line) const;
};

/// IMAP mailbox names (modified UTF-7, RFC 3501 5.1.3) from and to UTF-8. Bytes that are no UTF-8
/// vanish; a bad sequence in a mailbox name gives U+FFFD.
VELMARA_EXPORT std::string utf82utf7imap(std::string const& text);
VELMARA_EXPORT std::string utf7imp2utf8(std::string const& name);

} // namespace Velmara

/// The C form of utf82utf7imap. At most `dstSize` bytes are copied and the last of them is then set to
/// NUL, so a shorter name is not terminated at its own end: callers clear `dst` first or use the
/// result, which is the length of the whole name. With a `dstSize` of 0 or less nothing is written.
extern "C" VELMARA_EXPORT long vmaral_convert_to_utf7imap(char const* src, char* dst, long dstSize);

namespace Velmara {
using ::vmaral_convert_to_utf7imap;
} // namespace Velmara
