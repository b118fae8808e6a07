// Messages that lie one behind the other in a stream: those of an mbox, or just one.
#include <algorithm>
#include <iterator>

#include "MboxReader.h"
#include "MessageSource.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

using namespace std::string_view_literals;

struct Magic {
    std::size_t at;
    std::string_view bytes;
};

/// Each with bytes that no header field begins with.
constexpr Magic _compressed[] = {
    {0, "PK\3\4"sv},           {0, "PK\5\6"sv},           // zip, and an empty one
    {0, "\x1F\x8B"sv},         {4, "1AY&SY"sv},           // gzip, bzip2
    {0, "\xFD\x37zXZ\0"sv},    {0, "\x28\xB5\x2F\xFD"sv}, // xz, zstd
    {0, "\x04\x22\x4D\x18"sv}, {0, "\x1F\x9D"sv},         // lz4, compress
};

/// The header of a tar member holds the sum of its bytes, with those of the sum itself read as blanks:
/// a mail that has "ustar" at the right place is still a mail.
bool _isTarHeader(std::string_view head)
{
    constexpr std::size_t size = 512, magicAt = 257, sumAt = 148, sumEnd = 156;
    if (head.size() < size || !startsWith(head.substr(magicAt), "ustar")) return false;
    unsigned long sum = 0, said = 0;
    for (std::size_t i = 0; i < size; ++i) sum += i >= sumAt && i < sumEnd ? ' ' : static_cast<unsigned char>(head[i]);
    for (char c : head.substr(sumAt, sumEnd - sumAt))
        if (c >= '0' && c <= '7') said = said * 8 + static_cast<unsigned long>(c - '0');
    return sum == said;
}

class StreamMessages : public MessageSource {
public:
    StreamMessages(ScanContext const& context, NamedStream stream) : m_context(context), m_stream(std::move(stream)) {}

    bool next(FoundMessage& message, bool keep) override
    {
        if (m_broken) return false;
        message.file = m_stream.file;
        message.entry = m_stream.entry;
        try {
            return read(message, keep);
        } catch (ScanFailure const& failure) {
            m_broken = true;
            message.failure = failure.what();
            return true;
        }
    }

protected:
    virtual bool read(FoundMessage& message, bool keep) = 0;

    ScanContext const& m_context;
    NamedStream m_stream;

private:
    bool m_broken = false;
};

class MboxMessages : public StreamMessages {
public:
    MboxMessages(ScanContext const& context, NamedStream stream)
        : StreamMessages(context, std::move(stream)), m_reader(*m_stream.bytes)
    {}

private:
    bool read(FoundMessage& message, bool keep) override
    {
        if (!m_reader.nextMessage()) return false;
        if (m_reader.separator().empty())
            m_context.complain(Severity::LeftOut, placeOf(m_stream.file, m_stream.entry),
                               "begins in the middle of an mbox; what stands in front of its first \"From \" line "
                               "is taken for a message");
        message.offset = m_reader.offset();
        ByteCollector collector(m_context.collect, m_stream.liesIn, message.offset);
        for (std::string_view bytes = m_reader.nextBytes(); !bytes.empty(); bytes = m_reader.nextBytes()) {
            message.length += bytes.size();
            if (keep) collector.add(bytes.data(), bytes.size());
        }
        message.bytes = collector.take();
        return true;
    }

    MboxReader m_reader;
};

class OneMessage : public StreamMessages {
public:
    using StreamMessages::StreamMessages;

private:
    bool read(FoundMessage& message, bool keep) override
    {
        if (m_done) return false;
        m_done = true;
        if (!keep) return true;
        if (m_stream.liesIn && m_stream.liesIn->size() > m_context.collect.largestInMemory) {
            message.length = m_stream.liesIn->size();
            message.bytes = MessageBytes::inFile(m_stream.liesIn, 0, message.length);
            return true;
        }
        ByteCollector collector(m_context.collect, nullptr, 0);
        char block[16 * 1024];
        while (std::size_t const got = m_stream.bytes->read(block, sizeof block)) {
            message.length += got;
            collector.add(block, got);
        }
        message.bytes = collector.take();
        return true;
    }

    bool m_done = false;
};

} // namespace

Content contentOf(std::string_view head)
{
    std::size_t const lineFeed = head.find('\n');
    if (looksLikeFromLine(head.substr(0, lineFeed == head.npos ? lineFeed : lineFeed + 1))) return Content::Mbox;
    bool const compressed = std::any_of(std::begin(_compressed), std::end(_compressed), [&](Magic const& magic) {
        return head.size() > magic.at && startsWith(head.substr(magic.at), magic.bytes);
    });
    return compressed || _isTarHeader(head) ? Content::Archive : Content::Message;
}

std::string placeOf(std::string const& file, std::string const& entry)
{
    return entry.empty() ? file : file + ": " + entry;
}

std::unique_ptr<MessageSource> messagesOfStream(ScanContext const& context, NamedStream stream, Content content)
{
    if (content == Content::Mbox) return std::make_unique<MboxMessages>(context, std::move(stream));
    return std::make_unique<OneMessage>(context, std::move(stream));
}

} // namespace VelmaraCommand
