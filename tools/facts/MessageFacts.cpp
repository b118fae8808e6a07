// One walk over the message, in which every body is read while the parser is in it: the source moves
// forward only, and each byte is decoded once. The walk is ours and not that of a visitor, because a
// visitor is not told which container a part stands in.
//
// What a cap ends early ends as the exception of a source does: the message is of no further use, and
// what was noted of it stays.
#include "MessageFacts.h"

#include <algorithm>

#include <velmara/ContentType.h>
#include <velmara/EmailAddress.h>
#include <velmara/MimePart.h>
#include <velmara/Rfc822Msg.h>
#include <velmara/StringOperations.h>

#include "BodyBytes.h"
#include "CappedSource.h"
#include "Findings.h"
#include "LeafFacts.h"
#include "MailDate.h"
#include "PartLabels.h"
#include "Text.h"

namespace VelmaraCommand {

using namespace Velmara;

namespace {

struct BeyondLimit {
    char const* name;
};

// ---- headers ----------------------------------------------------------------------------------

std::vector<Address> _addressesOf(HeaderContainer const& headers, char const* name)
{
    std::vector<Address> addresses;
    for (Header const& header : headers.headers())
        if (stringCompareNoCase(header.type(), name))
            for (EmailAddress const& address : EmailAddress::rfc5322ParseList(header.value(), true))
                addresses.push_back(Address{address.address(), decoded(address.displayName())});
    return addresses;
}

std::string _valueOf(HeaderContainer const& headers, char const* name)
{
    Header const& header = headers.find(name);
    return header.isNull() ? std::string() : header.value();
}

std::string _messageId(HeaderContainer const& headers)
{
    std::string const value = _valueOf(headers, "Message-ID");
    std::list<EmailAddress> const ids = EmailAddress::rfc5322ParseList(value, " ");
    return ids.empty() ? value : ids.front().address();
}

void _readHeaders(HeaderContainer const& headers, MessageFacts& facts)
{
    facts.subject = decoded(_valueOf(headers, "Subject"));
    facts.messageId = _messageId(headers);
    facts.date = _valueOf(headers, "Date");
    facts.time = readMailDate(facts.date);
    facts.from = _addressesOf(headers, "From");
    facts.sender = _addressesOf(headers, "Sender");
    facts.replyTo = _addressesOf(headers, "Reply-To");
    facts.to = _addressesOf(headers, "To");
    facts.cc = _addressesOf(headers, "Cc");
    facts.route = routeOf(headers);
}

// ---- delimiters -------------------------------------------------------------------------------

/// Finds whose delimiter a line is, as the parser does: the innermost that the line begins with.
std::optional<Ending> _endingOf(std::string const& dashedLine, std::vector<OpenMultipart> const& open)
{
    for (size_t i = open.size(); i-- > 0;) {
        OpenMultipart const& multipart = open[i];
        if (!startsWith(dashedLine, multipart.delimiter)) continue;
        Ending ending;
        ending.text = dashedLine.substr(0, dashedLine.find_last_not_of("\r\n") + 1);
        ending.path = multipart.path;
        ending.closing = startsWith(dashedLine, multipart.delimiter + "--");
        ending.delimiter = multipart.delimiter + (ending.closing ? "--" : "");
        ending.exact = ending.text.find_first_not_of(" \t", ending.delimiter.size()) == std::string::npos;
        return ending;
    }
    return std::nullopt;
}

// ---- the walk ---------------------------------------------------------------------------------

class Reader {
public:
    Reader(CappedSource& source, Deadline const& deadline, Limits const& limits, Wanted const& wanted,
           MessageFacts& facts)
        : m_source(source), m_deadline(deadline), m_limits(limits), m_wanted(wanted), m_facts(facts)
    {}

    /// The last that the parser has read is the header block of the part.
    void read(MimePart& part, std::string const& path, unsigned int depth)
    {
        m_deadline.check();
        size_t const index = start(part, path, depth);
        PartContext context;
        if (m_wanted.findings) context = contextOf(part, m_facts.parts[index]);
        PartKind const kind = m_facts.parts[index].kind;
        if (kind == PartKind::Multipart)
            readChildren(static_cast<MimeRfc822MPart&>(part), index, context);
        else if (kind == PartKind::Message)
            readNested(static_cast<MimeRfc822SPart&>(part), index);
        else
            readText(part, index, context);
        settle(m_facts.parts[index]);
        if (m_wanted.findings) addPartFindings(m_facts.parts[index], context, part.headers(), m_facts.findings);
    }

    /// What a cap left open reaches as far as was read.
    void finish()
    {
        for (PartFacts& part : m_facts.parts)
            if (!part.bodyLengthKnown) part.body.end = std::max(part.body.end, m_source.lineEnd());
    }

private:
    size_t start(MimePart& part, std::string const& path, unsigned int depth)
    {
        if (m_limits.parts != 0 && m_facts.parts.size() >= m_limits.parts) throw BeyondLimit{"parts"};
        if (m_limits.items != 0 && m_items >= m_limits.items) throw BeyondLimit{"items"};
        m_facts.parts.emplace_back();
        PartFacts& facts = m_facts.parts.back();
        facts.path = path;
        facts.kind = kindOf(&part);
        facts.depth = depth;
        if (hasHeaders(facts.kind)) describe(part, facts);
        facts.bodyLengthKnown = false;
        return m_facts.parts.size() - 1;
    }

    void describe(MimePart& part, PartFacts& facts)
    {
        facts.header = Span{part.sourcePosition(), part.sourcePosition() + part.hlen()};
        facts.body = Span{facts.header.end, facts.header.end};
        for (Header const& header : part.headers().headers()) facts.headers.emplace_back(header.type(), header.value());
        PartLabels labels = labelsOf(part.headers());
        facts.mediaType = std::move(labels.mediaType);
        facts.charset = std::move(labels.charset);
        facts.encoding = std::move(labels.encoding);
        facts.disposition = std::move(labels.disposition);
        facts.name = std::move(labels.name);
        facts.contentId = std::move(labels.contentId);
    }

    PartContext contextOf(MimePart& part, PartFacts const& facts) const
    {
        PartContext context;
        context.around = &m_open;
        if (!hasHeaders(facts.kind)) return context;
        context.typeName = labelsOf(part.headers()).typeName;
        context.headerEnd = headerEnd();
        context.headerEndLine = Span{m_source.lineBegin(), m_source.lineEnd()};
        context.headerEndText = m_source.lineStart();
        for (std::uint64_t start : m_source.headerStarts()) {
            if (start < facts.header.begin || start >= facts.header.end) continue;
            if (!context.headerPlaces.empty()) context.headerPlaces.back().end = start;
            context.headerPlaces.push_back(Span{start, facts.header.end});
        }
        return context;
    }

    HeaderEnd headerEnd() const
    {
        if (m_source.lineBegin() == m_source.lineEnd()) return HeaderEnd::EndOfMessage;
        if (m_source.lineIsBlank()) return HeaderEnd::EmptyLine;
        return _endingOf(m_source.dashedLine(), m_open) ? HeaderEnd::Delimiter : HeaderEnd::OtherLine;
    }

    void readChildren(MimeRfc822MPart& part, size_t index, PartContext& context)
    {
        std::string const path = m_facts.parts[index].path;
        unsigned int const depth = m_facts.parts[index].depth + 1;
        std::string const boundary = ContentType(part.headers().find(ContentType::htype)).boundary();
        m_facts.parts[index].boundary = boundary;
        m_open.push_back(OpenMultipart{path, "--" + boundary});
        size_t const level = m_open.size();
        unsigned int number = 0;
        for (Ref<MimePart> child = next(part); !child.isNull(); child = next(part)) {
            PartKind const kind = kindOf(child.get());
            context.isClosed = kind == PartKind::Epilogue;
            if (context.isClosed) m_open.resize(level - 1); // its delimiter is one no more
            read(*child.get(), path + "." + std::to_string(kind == PartKind::Preamble ? 0 : ++number), depth);
        }
        context.parts = number - (context.isClosed ? 1 : 0);
        m_open.resize(level - 1);
    }

    Ref<MimePart> next(MimeRfc822MPart& part)
    {
        m_source.beginHeaders();
        Ref<MimePart> child = part.nextChild();
        m_source.endHeaders();
        return child;
    }

    void readNested(MimeRfc822SPart& part, size_t index)
    {
        std::string const path = m_facts.parts[index].path;
        unsigned int const depth = m_facts.parts[index].depth + 1;
        m_source.beginHeaders();
        Ref<MimePart> const child = part.child();
        m_source.endHeaders();
        if (!child.isNull()) read(*child.get(), path + ".1", depth);
    }

    /// A leaf, or the text around parts. Where the body begins follows from its end: a delimiter that ends
    /// a header block stands between the two.
    void readText(MimePart& part, size_t index, PartContext& context)
    {
        PartFacts& facts = m_facts.parts[index];
        BodyCodec const codec = facts.kind == PartKind::Leaf ? codecOf(part.headers()) : BodyCodec();
        readBody(part, codec, m_source, m_deadline, m_body);
        context.body = &m_body;
        settle(facts);
        facts.body.begin = facts.body.end - m_body.rawBytes;
        noteEnding(facts);
        facts.decodedBytes = m_body.decodedBytes;
        facts.decodedBy = codec.name;
        if (facts.kind == PartKind::Leaf || facts.kind == PartKind::Skipped)
            addLeafFacts(part.headers(), m_body, m_wanted, m_deadline, facts);
        else
            addPlainText(m_body, m_wanted, facts);
        countItems(facts);
    }

    void countItems(PartFacts const& facts)
    {
        if (facts.text) m_items += facts.text->tokens.size();
        if (facts.html) m_items += facts.html->links.size() + facts.html->images.size();
    }

    void noteEnding(PartFacts& facts)
    {
        if (m_source.dashedLine().empty()) return;
        facts.ending = _endingOf(m_source.dashedLine(), m_open);
        if (facts.ending) facts.ending->line = Span{m_source.lineBegin(), m_source.lineEnd()};
    }

    /// The part ends where the stream read last has ended.
    void settle(PartFacts& facts)
    {
        facts.body.end = m_source.lineBegin();
        facts.bodyLengthKnown = true;
    }

    CappedSource& m_source;
    Deadline const& m_deadline;
    Limits const& m_limits;
    Wanted const& m_wanted;
    MessageFacts& m_facts;
    std::uint64_t m_items = 0;
    std::vector<OpenMultipart> m_open;
    BodyBytes m_body; // of the part at hand
};

void _read(MediaIn& media, CappedSource& source, Deadline const& deadline, Limits const& limits, Wanted const& wanted,
           MessageFacts& facts)
{
    source.beginHeaders();
    Ref<Rfc822Msg> const message = Rfc822Msg::parse(media);
    source.endHeaders();
    Reader reader(source, deadline, limits, wanted, facts);
    try {
        _readHeaders(message->root()->headers(), facts);
        reader.read(*message->root(), "1", 0);
    } catch (BeyondLimit const& limit) {
        facts.capped = limit.name;
    } catch (OutOfTime const&) {
        facts.capped = "time";
    }
    reader.finish();
    if (!wanted.findings) return;
    addMessageFindings(facts);
    sortFindings(facts);
}

} // namespace

MessageFacts factsOf(MediaIn const& source, Limits const& limits, Wanted const& wanted)
{
    MessageFacts facts;
    Deadline const deadline(limits.time);
    auto* capped = new CappedSource(source, limits.bytes, deadline);
    MediaIn media(capped, false);
    if (limits.items != 0) capped->limitHeaderLines(limits.items);
    try {
        _read(media, *capped, deadline, limits, wanted, facts);
    } catch (OutOfTime const&) {
        facts.capped = "time"; // ahead of the first part
    }
    facts.bytes = capped->tell();
    if (facts.capped.empty() && capped->isCutInHeaders()) facts.capped = "items";
    if (facts.capped.empty() && capped->isCut()) facts.capped = "bytes";
    return facts;
}

} // namespace VelmaraCommand
