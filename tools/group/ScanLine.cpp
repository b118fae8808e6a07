// A line may be megabytes of text of which grouping wants a few names. So the JSON is not made into a
// tree: its events walk through the places of the table below, and only at a place that has a meaning is a
// text kept. An array is at the place of its elements.
#include "ScanLine.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <vector>

#include "facts/JsonLine.h"

namespace VelmaraCommand {

namespace {

enum Place : unsigned char {
    Elsewhere,
    Line,
    Schema,
    Fingerprint,
    Subject,
    Time,
    Sender,
    SenderAddress,
    Part,
    Signature,
    SignatureKind,
    SignatureDigits,
    TagTokens,
    Html,
    Link,
    LinkHost,
};

struct Step {
    Place from;
    char const* field;
    Place to;
};

constexpr Step _steps[] = {
    {Line, "schema", Schema},
    {Line, "fingerprint", Fingerprint},
    {Line, "subject", Subject},
    {Line, "time", Time},
    {Line, "from", Sender},
    {Sender, "address", SenderAddress},
    {Line, "parts", Part},
    {Part, "signature", Signature},
    {Signature, "kind", SignatureKind},
    {Signature, "signature", SignatureDigits},
    {Signature, "tagTokens", TagTokens},
    {Part, "html", Html},
    {Html, "links", Link},
    {Link, "host", LinkHost},
};

Place _placeOf(Place from, std::string const& field)
{
    for (Step const& step : _steps)
        if (step.from == from && field == step.field) return step.to;
    return Elsewhere;
}

struct Kind {
    char const* name;
    std::set<std::string> ScanLine::*signatures;
};

/// Signatures of other files are of no campaign: a picture or a text is what it repeats.
constexpr Kind _kinds[] = {
    {"html", &ScanLine::texts}, {"text", &ScanLine::texts},  {"png", &ScanLine::images},
    {"gif", &ScanLine::images}, {"jpeg", &ScanLine::images},
};

/// A time that no calendar of four digits has was not read from a mail.
constexpr std::int64_t _earliest = -62135596800; // year 1
constexpr std::uint64_t _latest = 253402300799;  // the end of year 9999

/// Takes the events of one line.
class LineEvents : public nlohmann::json_sax<Json> {
public:
    explicit LineEvents(ScanLine& line) : m_line(line) {}

    bool isObject() const { return m_isObject; }
    size_t errorPosition() const { return m_errorPosition; }

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_float(number_float_t, string_t const&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool number_integer(number_integer_t value) override
    {
        if (m_at == Time && value >= _earliest) m_line.time = value;
        return true;
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        if (m_at == Time && value <= _latest) m_line.time = static_cast<std::int64_t>(value);
        return true;
    }
    bool string(string_t& text) override
    {
        switch (m_at) {
        case Schema:
            m_line.schema = std::move(text);
            break;
        case Fingerprint:
            m_line.fingerprint = std::move(text);
            break;
        case Subject:
            m_line.subject = std::move(text);
            break;
        case SenderAddress:
            m_line.senders.insert(std::move(text));
            break;
        case SignatureKind:
            m_kind = std::move(text);
            break;
        case SignatureDigits:
            m_signature = std::move(text);
            break;
        case TagTokens:
            m_line.tags.insert(std::move(text));
            break;
        case LinkHost:
            m_line.hosts.insert(std::move(text));
            break;
        default:
            break;
        }
        return true;
    }
    bool start_object(size_t) override
    {
        if (m_within.empty()) {
            m_isObject = true;
            m_at = Line;
        }
        m_within.push_back(m_at);
        return true;
    }
    bool key(string_t& field) override
    {
        m_at = _placeOf(m_within.back(), field);
        return true;
    }
    bool end_object() override
    {
        leave();
        if (m_at == Signature) keepSignature();
        return true;
    }
    bool start_array(size_t) override
    {
        m_within.push_back(m_at);
        return true;
    }
    bool end_array() override
    {
        leave();
        return true;
    }
    bool parse_error(size_t position, std::string const&, nlohmann::detail::exception const&) override
    {
        m_errorPosition = position;
        return false;
    }

private:
    void leave()
    {
        m_at = m_within.back();
        m_within.pop_back();
    }
    /// The fields of an object are in no certain order.
    void keepSignature()
    {
        for (Kind const& kind : _kinds)
            if (m_kind == kind.name && !m_signature.empty()) (m_line.*kind.signatures).insert(m_signature);
        m_kind.clear();
        m_signature.clear();
    }

    ScanLine& m_line;
    Place m_at = Elsewhere;          // of the value that comes next
    std::vector<Place> m_within;     // of the objects and arrays around it
    std::string m_kind, m_signature; // of the signature that is being read
    bool m_isObject = false;
    size_t m_errorPosition = 0;
};

} // namespace

/// The bytes of the file; a line of them looks like a text to the parser.
class ScanLineReader::Bytes {
public:
    Bytes(int descriptor, std::uint64_t limit) : m_descriptor(descriptor), m_limit(limit), m_block(64u << 10) {}

    /// To be asked first: whether there is a byte.
    bool more()
    {
        if (m_at < m_end) return true;
        m_end = fill();
        m_at = 0;
        return m_end > 0;
    }
    char now() const { return m_block[m_at]; }
    void step() { ++m_at; }

    /// Goes to the first byte of a line that is not blank; false at the end of the file.
    bool beginLine()
    {
        for (++number; more(); step()) {
            if (now() == '\n')
                ++number;
            else if (now() != ' ' && now() != '\t' && now() != '\r') {
                length = 0;
                return true;
            }
        }
        return false;
    }
    bool lineHasMore() { return length < m_limit && more() && now() != '\n'; }
    void stepInLine()
    {
        step();
        ++length;
    }
    bool isTooLong() const { return length > m_limit; }
    std::uint64_t limit() const { return m_limit; }
    void endLine()
    {
        while (more() && now() != '\n') stepInLine();
        if (more()) step();
    }

    std::uint64_t number = 0; // of the line
    std::uint64_t length = 0; // of what was read of it

private:
    size_t fill()
    {
        for (;;) {
            ssize_t const got = ::read(m_descriptor, m_block.data(), m_block.size());
            if (got >= 0) return static_cast<size_t>(got);
            if (errno != EINTR) throw std::system_error(errno, std::generic_category());
        }
    }

    int const m_descriptor;
    std::uint64_t const m_limit;
    std::vector<char> m_block;
    size_t m_at = 0, m_end = 0;
};

namespace {

/// What the parser reads a line through; the end of the line equals an iterator over nothing.
template <class Bytes> class InLine {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = char const*;
    using reference = char;

    explicit InLine(Bytes* bytes) : m_bytes(bytes) {}
    char operator*() const { return m_bytes->now(); }
    InLine& operator++()
    {
        m_bytes->stepInLine();
        return *this;
    }
    bool operator!=(InLine const& end) const { return !(*this == end); }
    bool operator==(InLine const&) const { return !m_bytes->lineHasMore(); }

private:
    Bytes* m_bytes;
};

} // namespace

ScanLineReader::ScanLineReader(int descriptor, std::uint64_t limit)
    : m_bytes(std::make_unique<Bytes>(descriptor, limit))
{}

ScanLineReader::~ScanLineReader() = default;

std::uint64_t ScanLineReader::number() const
{
    return m_bytes->number;
}

ScanLineReader::Outcome ScanLineReader::next(ScanLine& line, std::string& reason)
{
    line = ScanLine();
    if (!m_bytes->beginLine()) return AtEnd;
    LineEvents events(line);
    bool const isJson = Json::sax_parse(InLine<Bytes>(m_bytes.get()), InLine<Bytes>(m_bytes.get()), &events);
    m_bytes->endLine();
    if (m_bytes->isTooLong())
        reason = "is longer than " + std::to_string(m_bytes->limit()) + " bytes";
    else if (!isJson)
        reason = "is no JSON, from byte " + std::to_string(events.errorPosition()) + " on";
    else if (!events.isObject())
        reason = "is no line of velmara scan: no JSON object";
    else if (line.schema.empty() || line.fingerprint.empty())
        reason = "is no line of velmara scan: \"schema\" or \"fingerprint\" is missing";
    else
        return Read;
    return Broken;
}

} // namespace VelmaraCommand
