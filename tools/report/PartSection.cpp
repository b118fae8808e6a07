#include "PartSection.h"

#include <algorithm>

#include "facts/PartPath.h"
#include "facts/Shown.h"
#include "facts/Utf8.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _mostHeaders = 200, _mostHeaderBytes = 2000, _mostNameBytes = 300, _mostText = 16 << 10;
constexpr size_t _mostTokens = 400, _mostFindings = 100;
constexpr unsigned int _deepestIndent = 12; // deeper parts are told apart by their paths

std::string _typeOf(PartFacts const& part)
{
    if (!hasHeaders(part.kind)) return nameOf(part.kind);
    return part.mediaType.empty() ? "no declared type" : part.mediaType;
}

std::string _placeOf(Span const& span, bool lengthKnown = true)
{
    if (!lengthKnown) return "from byte " + grouped(span.begin) + ", to an end that is not known";
    if (span.end <= span.begin) return "none";
    return counted(span.end - span.begin, "byte", "bytes") + " (" + grouped(span.begin) + " to " + grouped(span.end) +
           ")";
}

std::vector<Finding const*> _findingsOf(PartFacts const& part, Surroundings const& around)
{
    auto const found = around.findings.find(part.path);
    return found == around.findings.end() ? std::vector<Finding const*>() : found->second;
}

bool _isAnyHidden(PartFacts const& part)
{
    return part.html && part.html->hiddenBytes > 0;
}

Html _mark(char const* sign, char const* kind, std::string const& words)
{
    Html html;
    html << "<span class=\"mark " << std::string_view(kind) << "\" title=\"" << words
         << "\"><span aria-hidden=\"true\">" << std::string_view(sign) << "</span><span class=\"spoken\"> " << words
         << "</span></span>";
    return html;
}

Html _badge(char const* kind, std::string const& words)
{
    Html html;
    html << "<span class=\"badge " << std::string_view(kind) << "\">" << words << "</span> ";
    return html;
}

Html _badgesOf(PartFacts const& part, size_t findings)
{
    Html html;
    if (part.kind != PartKind::Leaf && hasHeaders(part.kind)) html << _badge("plain", nameOf(part.kind));
    if (findings > 0) html << _badge("bad", counted(findings, "finding", "findings"));
    if (part.type && part.type->mismatch) html << _badge("bad", "is not what it says");
    if (_isAnyHidden(part)) html << _badge("warn", shareHidden(*part.html) + " of the text hidden");
    if (part.text && part.text->undecodable > 0)
        html << _badge("warn", counted(part.text->undecodable, "byte", "bytes") + " without a character");
    return html;
}

/// Rows of names and values; those without a value are left out.
class FactList {
public:
    void add(char const* name, std::string const& value)
    {
        Html text;
        text.beginning(value, _mostNameBytes);
        if (!value.empty()) addHtml(name, text);
    }
    void addHtml(char const* name, Html const& value)
    {
        m_rows << "<div><dt>" << std::string_view(name) << "</dt><dd>" << value << "</dd></div>";
    }
    Html written() const
    {
        Html html;
        if (m_rows.size() > 0) html << "<dl class=\"facts\">" << m_rows << "</dl>";
        return html;
    }

private:
    Html m_rows;
};

void _addType(FactList& list, PartFacts const& part)
{
    list.add("Declared type", part.mediaType);
    if (!part.type) return;
    TypeFacts const& type = *part.type;
    Html value;
    value << std::string_view(type.detected.empty() ? "none" : type.detected);
    if (type.code != 0) value << " <span class=\"quiet\">code " << std::to_string(type.code) << "</span>";
    if (!type.decidedBy.empty()) {
        value << "<br><span class=\"quiet\">";
        value.beginning(type.decidedBy, _mostNameBytes) << "</span>";
    }
    list.addHtml("Detected type", value);
}

void _addText(FactList& list, TextFacts const& text)
{
    bool const asDeclared = text.declaredCharset.empty() || text.declaredCharset == text.charset;
    if (!text.charsetKnown)
        list.add("Read as", "it stands: the character set is not known");
    else
        list.add("Read as", asDeclared ? text.charset : text.charset + ", declared as " + text.declaredCharset);
    if (text.undecodable > 0) list.add("Without a character", counted(text.undecodable, "byte", "bytes"));
    if (text.unencodable > 0) list.add("Not in UTF-8", counted(text.unencodable, "character", "characters"));
    list.add("Language", text.language);
    if (text.tokens.empty()) return;
    std::string tokens;
    for (size_t i = 0; i < text.tokens.size() && i < _mostTokens; ++i) tokens += std::to_string(text.tokens[i]) + " ";
    Html value;
    value << "<details class=\"inline\"><summary>" << grouped(text.tokens.size()) << "</summary><code>";
    value.whole(tokens);
    if (text.tokens.size() > _mostTokens) value << "…";
    list.addHtml("Tokens", value << "</code></details>");
}

void _addSignature(FactList& list, SignatureFacts const& signature)
{
    Html value;
    value << "<code>" << signature.signature << "</code>";
    if (signature.signature.empty()) value << "none: " << signature.whyNone;
    value << "<br><span class=\"quiet\">" << signature.kind << ", " << grouped(signature.entered) << " of "
          << counted(signature.lookedAt, "byte", "bytes") << "</span>";
    list.addHtml("Signature", value);
    Html tags;
    tags << "<code>" << signature.tagTokens << "</code>";
    if (!signature.tagTokens.empty()) list.addHtml("Signature of its tags", tags);
}

void _addEnding(FactList& list, Ending const& ending)
{
    Html value;
    value << "<code>" << ending.text << "</code><br><span class=\"quiet\">"
          << std::string_view(ending.closing ? "closes " : "goes on with ") << "part <a href=\"#p" << ending.path
          << "\">" << ending.path << "</a>";
    if (!ending.exact) value << ", though it only begins with the delimiter " << ending.delimiter;
    list.addHtml("Ended by", value << "</span>");
}

Html _factsOf(PartFacts const& part)
{
    FactList list;
    _addType(list, part);
    list.add("File name", part.name);
    list.add("Disposition", part.disposition);
    list.add("Content-ID", part.contentId);
    list.add("Boundary", part.boundary);
    list.add("Charset", part.charset);
    list.add("Transfer encoding", part.encoding);
    if (hasHeaders(part.kind)) list.add("Header block", _placeOf(part.header));
    list.add("Body", _placeOf(part.body, part.bodyLengthKnown));
    if (part.ending) _addEnding(list, *part.ending);
    if (part.kind == PartKind::Leaf) {
        std::string const by = part.decodedBy.empty() ? ", taken as it stands" : ", decoded by " + part.decodedBy;
        list.add("Content", counted(part.decodedBytes, "byte", "bytes") + by);
    }
    if (part.text) _addText(list, *part.text);
    if (part.signature) _addSignature(list, *part.signature);
    return list.written();
}

/// The value as it stands, and what it reads where that differs.
Html _valueOf(std::string const& value)
{
    Html html;
    html.beginning(value, _mostHeaderBytes);
    if (value.find("=?") == std::string::npos) return html;
    std::string const start(beginningOf(value, _mostHeaderBytes));
    std::string const text = decoded(start);
    if (text != start)
        (html << "<span class=\"reads\" dir=\"auto\">reads: ").beginning(text, _mostHeaderBytes) << "</span>";
    return html;
}

Html _headersOf(PartFacts const& part)
{
    Html html;
    if (part.headers.empty()) return html;
    html << "<details class=\"headers\"><summary>" << counted(part.headers.size(), "header", "headers")
         << "</summary><dl>";
    for (size_t i = 0; i < part.headers.size() && i < _mostHeaders; ++i)
        html << "<div><dt>" << part.headers[i].first << "</dt><dd dir=\"auto\">" << _valueOf(part.headers[i].second)
             << "</dd></div>";
    html << "</dl>";
    if (part.headers.size() > _mostHeaders)
        html << "<p class=\"cut\">" << counted(part.headers.size() - _mostHeaders, "more header", "more headers")
             << " left out</p>";
    return html << "</details>";
}

/// Of HTML the view tells the same, and more.
Html _textOf(PartFacts const& part)
{
    Html html;
    if (!part.text || (part.html && !part.html->runs.empty()) || part.text->text.empty()) return html;
    std::string_view const text = beginningOf(part.text->text, _mostText);
    html << "<h4>Text</h4><pre tabindex=\"0\" role=\"region\" aria-label=\"Text of part " << part.path
         << "\" dir=\"auto\">\n";
    html.whole(text) << "</pre>";
    if (part.text->textBytes > text.size())
        html << "<p class=\"cut\">" << counted(part.text->textBytes - text.size(), "more byte", "more bytes")
             << " left out</p>";
    return html;
}

Html _imageOf(PartFacts const& part, Surroundings const& around)
{
    Html html;
    auto const entry = around.thumbnails.find(part.path);
    if (entry == around.thumbnails.end()) return html;
    Thumbnail const& image = entry->second;
    if (image.base64.empty()) return html << "<p class=\"note\">The image is not shown: " << image.whyNone << ".</p>";
    html << "<figure><img alt=\"The image of part " << part.path << "\" src=\"data:" << image.type << ";base64,";
    html.whole(image.base64) << "\"><figcaption>" << image.type << ", " << grouped(image.width) << " × "
                             << grouped(image.height) << " pixels</figcaption></figure>";
    return html;
}

Html _htmlOf(HtmlFacts const& facts, Surroundings& around)
{
    Html html;
    html << "<h4>What a reader sees</h4>" << viewOf(facts, around.swatches);
    if (!facts.links.empty())
        html << "<details open><summary><h4>" << counted(facts.links.size(), "link", "links") << "</h4></summary>"
             << linksOf(facts) << "</details>";
    if (!facts.images.empty())
        html << "<details open><summary><h4>" << counted(facts.images.size(), "image", "images")
             << " in the page</h4></summary>" << imagesOf(facts, around.pathsByContentId) << "</details>";
    return html;
}

} // namespace

Surroundings::Surroundings(MessageFacts const& message, std::map<std::string, Thumbnail> const& images)
    : thumbnails(images)
{
    for (Finding const& finding : message.findings) findings[finding.path].push_back(&finding);
    for (PartFacts const& part : message.parts)
        if (!part.contentId.empty()) pathsByContentId.emplace(bareContentId(part.contentId), part.path);
}

Html itemOf(Finding const& finding, bool linked)
{
    Html html;
    html << "<li><code class=\"code\">" << finding.code << "</code> <span dir=\"auto\">";
    html.beginning(finding.text, _mostNameBytes * 2) << "</span> <span class=\"quiet\">";
    if (linked && !finding.path.empty()) html << "<a href=\"#p" << finding.path << "\">part " << finding.path << "</a>";
    if (finding.where.end > finding.where.begin)
        html << " bytes " << grouped(finding.where.begin) << " to " << grouped(finding.where.end);
    return html << "</span></li>";
}

Html treeLineOf(PartFacts const& part, Surroundings const& around)
{
    constexpr size_t mostBytes = 120; // a line has room for less
    Html html;
    html << "<li class=\"d" << std::to_string(std::min(part.depth, _deepestIndent)) << "\"><a href=\"#p" << part.path
         << "\"><span class=\"path\">" << part.path << "</span> <span class=\"type\">"
         << beginningOf(_typeOf(part), mostBytes) << "</span>";
    if (!part.name.empty()) html << " <bdi class=\"name\">" << beginningOf(part.name, mostBytes) << "</bdi>";
    size_t const findings = _findingsOf(part, around).size();
    if (findings > 0) html << _mark("!", "bad", counted(findings, "finding", "findings"));
    if (part.type && part.type->mismatch) html << _mark("≠", "bad", "is not what it says");
    if (_isAnyHidden(part)) html << _mark("◌", "warn", shareHidden(*part.html) + " of the text hidden");
    return html << "</a></li>\n";
}

Html sectionOf(PartFacts const& part, Surroundings& around)
{
    std::vector<Finding const*> const findings = _findingsOf(part, around);
    Html html;
    html << "<article id=\"p" << part.path << "\"><header><h3><span class=\"path\">" << part.path << "</span> "
         << _typeOf(part);
    if (!part.name.empty()) {
        html << " <bdi class=\"name\">";
        html.beginning(part.name, _mostNameBytes) << "</bdi>";
    }
    html << "</h3><p class=\"badges\">" << _badgesOf(part, findings.size()) << "</p></header>";
    if (!findings.empty()) html << "<ul class=\"findings\">";
    for (size_t i = 0; i < findings.size() && i < _mostFindings; ++i) html << itemOf(*findings[i], false);
    if (!findings.empty()) html << "</ul>";
    html << _imageOf(part, around) << _factsOf(part) << _headersOf(part) << _textOf(part);
    if (part.html) html << _htmlOf(*part.html, around);
    return html << "</article>\n";
}

} // namespace VelmaraCommand
