#pragma once

#include <cstdint>
#include <string>

#include <velmara/MediaOut.h>

#include "charset/IcuConverter.h"

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

    bool ok() const { return m_passThrough || (m_fromConverter && m_toConverter); }
    std::uint32_t ferrCnt() const { return m_ferrCnt; }
    std::uint32_t terrCnt() const { return m_terrCnt; }
    void retry_on_failure(bool on);
    void substitute_unknown(bool on) { m_substituteUnknown = on; }

private:
    enum RetryState : std::uint8_t { SecondSetAvailable = 0, InSecondSet = 1, NoRetry = 2 };
    struct Source;
    struct Units;

    void try_open();
    std::string nameToOpen() const;
    void setCallbacks();
    void setToUnicodeCallback();
    void retry(bool& progressInRetry);

    void toUnicode(Source& source, Units& units, bool flush);
    bool fromUnicodeOnce(UChar const*& at, UChar const* end, bool flush);
    void fromUnicode(Units const& units);
    bool writeValidPiece(Source& source);
    bool somethingWaits(Units const& units) const;

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

    // both open or both closed
    IcuConverter m_fromConverter; // bytes to UTF-16
    IcuConverter m_toConverter;   // UTF-16 to bytes

    std::uint32_t m_ferrCnt = 0;        // source bytes that were bad
    std::uint32_t m_terrCnt = 0;        // units that the target set could not show
    std::uint32_t m_unitsConverted = 0; // units produced so far
    bool m_passThrough = false;         // copy bytes; once set it stays
    bool m_substituteUnknown = false;   // U+FFFD for bad bytes
    RetryState m_retryState = NoRetry;
    unsigned int m_fruitless = 0; // failures in a row that read and gave nothing

    // what waits inside ICU; the short way of valid UTF-8 must not overtake it
    bool m_validates = false; // both sets are UTF-8
    bool m_markWaits = false; // U+FFFD, as the last call left no room
    bool m_bytesWait = false; // the rest of a character
    bool m_waiting = false;   // any of these, or the beginning of a character
};

} // namespace Velmara
