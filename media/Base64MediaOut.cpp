#include <velmara/Base64MediaOut.h>

#include "media/LineEncoder.h"
#include "runtime/Base64.h"

namespace Velmara {

namespace {

constexpr uint_t _bytesPerLine = 76 / 4 * 3;

class Base64MediaOutImpl : public LineEncoderImpl {
public:
    explicit Base64MediaOutImpl(MediaOut const& out) : LineEncoderImpl(out, _bytesPerLine) {}

private:
    void appendLine(uchar_t const* bytes, uint_t n, std::string& text) override
    {
        base64Encode(bytes, n, text);
        text += "\r\n";
    }
};

} // namespace

Base64MediaOut::Base64MediaOut(MediaOut const& out) : MediaOutDecorator(new Base64MediaOutImpl(out), false)
{}

} // namespace Velmara
