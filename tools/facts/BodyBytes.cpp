#include "BodyBytes.h"

#include <algorithm>
#include <cstring>

#include <velmara/Buffer.h>
#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/DecodeMediaIn.h>

#include "Text.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

constexpr std::uint64_t _mostKept = 16u << 20;
constexpr int _lineSize = 4096; // that of DecodeMediaIn

/// Where decoded bytes go.
class Kept : public MediaOutImpl {
public:
    Kept(BodyBytes& body, Deadline const& deadline) : m_body(body), m_deadline(deadline) {}

    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t n) override
    {
        if (m_sinceCheck += n; m_sinceCheck > _checkedEvery) {
            m_sinceCheck = 0;
            m_deadline.check(); // a decoder can give more than it gets
        }
        m_body.decodedBytes += n;
        if (!closed)
            m_body.bytes.append(reinterpret_cast<char const*>(bytes),
                                std::min<std::uint64_t>(n, _mostKept - m_body.bytes.size()));
    }

    bool closed = false; // nothing more is kept

private:
    static constexpr std::uint64_t _checkedEvery = 64u << 10;

    BodyBytes& m_body;
    Deadline const& m_deadline;
    std::uint64_t m_sinceCheck = 0;
};

bool _isForeign(unsigned char c)
{
    return !Buffer::isValidBase64Char(c) && !isSpace(static_cast<char>(c));
}

/// Looks at the raw bytes of one line, which lies at `position`.
void _look(Buffer const& line, std::uint64_t position, bool isBase64, BodyBytes& body)
{
    unsigned char const* const begin = line.data();
    if (!body.firstNul)
        if (auto const* nul = static_cast<unsigned char const*>(std::memchr(begin, 0, line.length())))
            body.firstNul = position + static_cast<std::uint64_t>(nul - begin);
    if (!isBase64 || body.firstForeign) return;
    unsigned char const* const foreign = std::find_if(begin, begin + line.length(), _isForeign);
    if (foreign != begin + line.length()) body.firstForeign = position + static_cast<std::uint64_t>(foreign - begin);
}

MediaOut _decoderOf(HeaderContainer const& headers, MediaOut const& out)
{
    ContentEncoding const encoding(headers.find(ContentEncoding::htype));
    ContentType const type(headers.find(ContentType::htype));
    return get_decoder(out, encoding, &type);
}

} // namespace

BodyCodec codecOf(HeaderContainer const& headers)
{
    ContentEncoding const encoding(headers.find(ContentEncoding::htype));
    ContentType const type(headers.find(ContentType::htype));
    if (!have_encoder(encoding, &type)) return BodyCodec();
    ContentEncoding::EncodingType const code =
        encoding.isNull() ? ContentEncoding::EncodingUnknown : encoding.encoding();
    BodyCodec codec;
    codec.applies = true;
    codec.isBase64 = code == ContentEncoding::EncodingBase64;
    bool const byEncoding =
        codec.isBase64 || code == ContentEncoding::EncodingQuotedPrintable || code == ContentEncoding::EncodingUUEncode;
    codec.name = byEncoding ? ContentEncoding::encodingAsString(code) : "binhex";
    return codec;
}

void readBody(MimePart& part, BodyCodec const& codec, CappedSource const& source, Deadline const& deadline,
              BodyBytes& into)
{
    into.bytes.clear();
    into.decodedBytes = into.rawBytes = 0;
    into.firstNul.reset();
    into.firstForeign.reset();
    auto* kept = new Kept(into, deadline);
    MediaOut const out(kept, false);
    MediaOut decoder = codec.applies ? _decoderOf(part.headers(), out) : out;
    MediaIn body = part.body(false);
    Buffer line(_lineSize, 0);
    for (body.readline(line); !line.isEmpty(); body.readline(line)) {
        _look(line, source.lineBegin(), codec.isBase64, into);
        into.rawBytes += line.length();
        decoder.write(line);
    }
    kept->closed = true; // what readers of a body get ends ahead of what a decoder holds back
    decoder.end();
}

} // namespace VelmaraCommand
