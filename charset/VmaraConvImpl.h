#pragma once

#include <cstdint>
#include <string>

#include <velmara/MediaOut.h>

#include "charset/IcuConverter.h"
#include "charset/Utf8Writer.h"

namespace Velmara {

/// What stands behind VmaraConv: bytes to UTF-16 and on to bytes, through two ICU converters and two
/// buffers on the stack. It never holds bytes of its own: cut characters wait inside ICU.
class VmaraConvImpl : public MediaOutDecoratorImpl {
public:
    VmaraConvImpl(MediaOut const& out, std::string const& from, std::string const& to, bool force);
    ~VmaraConvImpl() override;

    using MediaOutDecoratorImpl::write;
    void write(uchar_t const* bytes, uint_t n) override;
    void end() override;

    /// Gives out what waits inside; true closes the converters as well.
    void flush(bool close);
    void close();
    void writeThrough(uchar_t const* bytes, uint_t n);

    bool ok() const { return m_passThrough || bool(m_fromConverter); }
    std::uint32_t ferrCnt() const { return m_ferrCnt; }
    std::uint32_t terrCnt() const { return m_terrCnt + m_utf8.dropped(); }
    void retry_on_failure(bool on);
    void substitute_unknown(bool on) { m_substituteUnknown = on; }

protected:
    /// Where the bytes go: downstream, if there is one.
    virtual bool isAttached();
    virtual void put(char const* bytes, size_t n);

private:
    enum RetryState : std::uint8_t { SecondSetAvailable = 0, InSecondSet = 1, NoRetry = 2 };
    struct Source;
    struct Units;

    void try_open();
    std::string nameToOpen() const;
    void setToUnicodeCallback();
    void setFromUnicodeCallback();
    void retry(bool& progressInRetry);

    void convert(Source source);
    void toUnicode(Source& source, Units& units, bool flush);
    void fromUnicode(Units const& units);
    void drain(Units const& units, bool last);
    bool fromUnicodeOnce(UChar const*& at, UChar const* end, bool flush);
    void toUtf8(Units const& units, bool all);
    bool writeValidPiece(Source& source);
    bool somethingWaits() const;

    UErrorCode ferror(UConverterToUnicodeArgs* args, std::int32_t length, UConverterCallbackReason reason,
                      UErrorCode status);
    UErrorCode terror(std::int32_t length, UConverterCallbackReason reason);
    static void U_CALLCONV s_ignore_convert_ferror(void const* self, UConverterToUnicodeArgs* args, char const* bytes,
                                                   std::int32_t length, UConverterCallbackReason reason,
                                                   UErrorCode* status);
    static void U_CALLCONV s_ignore_convert_terror(void const* self, UConverterFromUnicodeArgs* args,
                                                   UChar const* units, std::int32_t length, UChar32 character,
                                                   UConverterCallbackReason reason, UErrorCode* status);

    // set by the constructor
    std::string m_from;
    std::string m_to;
    bool const m_toUtf8; // written by m_utf8

    // open while m_fromConverter is
    IcuConverter m_fromConverter; // bytes to UTF-16
    IcuConverter m_toConverter;   // UTF-16 to bytes, where the target is not UTF-8
    Utf8Writer m_utf8;

    std::uint32_t m_ferrCnt = 0;        // source bytes that were bad
    std::uint32_t m_terrCnt = 0;        // units that the target set could not show
    std::uint32_t m_unitsConverted = 0; // units produced so far
    bool m_passThrough = false;         // copy bytes; once set it stays
    bool m_substituteUnknown = false;   // U+FFFD for bad bytes
    RetryState m_retryState = NoRetry;
    unsigned int m_fruitless = 0; // failures in a row that read and gave nothing

    // what waits; the short way of valid UTF-8 must not overtake it
    char m_rest[3];                // bytes of a last character that found no room
    std::uint8_t m_restLength = 0; // how many they are
    bool m_markWaits = false;      // U+FFFD inside ICU, as the last call left no room
    bool m_waiting = false;        // any of these, or the beginning of a character
    bool m_validates = false;      // both sets are UTF-8
};

/// A conversion into a buffer, for a whole text: it lives on the stack and takes no handles.
class BufferConv final : public VmaraConvImpl {
public:
    BufferConv(Buffer& target, std::string const& from, std::string const& to, bool force)
        : VmaraConvImpl(MediaOut(), from, to, force), m_target(target)
    {}

protected:
    bool isAttached() override { return true; }
    void put(char const* bytes, size_t n) override
    {
        m_target.append(reinterpret_cast<uchar_t const*>(bytes), static_cast<uint_t>(n));
    }

private:
    Buffer& m_target; // not owned
};

} // namespace Velmara
