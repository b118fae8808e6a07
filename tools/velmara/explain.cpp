// `velmara explain`: why a message reads as it does, part by part with byte positions, and what in it can be
// read in two ways. Places are written as [begin, end).
#include <iostream>
#include <string>

#include "MessageVerb.h"
#include "facts/Columns.h"
#include "facts/HtmlReading.h"
#include "facts/MessageFacts.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _mostRuns = 8;
constexpr size_t _quotedColumns = 60;

std::string _placeOf(Span const& span)
{
    return "[" + std::to_string(span.begin) + ", " + std::to_string(span.end) + ")";
}

std::string _quoted(std::string const& text)
{
    return '"' + clipped(shown(text), _quotedColumns) + '"';
}

void _say(std::string const& text)
{
    std::cout << "    " << text << '\n';
}

std::string _headingOf(PartFacts const& part)
{
    bool const isPlain = part.kind == PartKind::Leaf || part.kind == PartKind::Multipart;
    std::string line = part.path + " " + (part.mediaType.empty() ? nameOf(part.kind) : shown(part.mediaType));
    if (!part.name.empty()) line += " " + _quoted(part.name);
    if (!part.mediaType.empty() && !isPlain) line += std::string(" (") + nameOf(part.kind) + ")";
    if (hasHeaders(part.kind)) line += ", header " + _placeOf(part.header);
    return line + ", body " + _placeOf(part.body);
}

// ---- ends -------------------------------------------------------------------------------------

void _sayEnding(PartFacts const& part)
{
    if (part.kind == PartKind::Multipart) return _say("boundary: " + _quoted(part.boundary));
    if (part.kind == PartKind::Message) return;
    if (!part.bodyLengthKnown) return _say("end: not read so far");
    if (!part.ending) return _say("end: where the message ends");
    Ending const& ending = *part.ending;
    std::string const which = std::string(ending.closing ? "closing " : "") + "delimiter " + _quoted(ending.delimiter);
    _say("end: line " + _placeOf(ending.line) + (ending.exact ? " is the " : " begins with, but is not, the ") + which +
         " of part " + ending.path + (ending.exact ? "" : ": " + _quoted(ending.text)));
}

// ---- bodies -----------------------------------------------------------------------------------

std::string _sizesOf(PartFacts const& part)
{
    return std::to_string(part.body.end - part.body.begin) + " bytes give " + std::to_string(part.decodedBytes);
}

void _sayDecoding(PartFacts const& part)
{
    if (part.kind != PartKind::Leaf) return;
    if (!part.decodedBy.empty())
        _say("decoded: from " + part.decodedBy + ", " + _sizesOf(part));
    else if (part.encoding.empty())
        _say("decoded: not at all, for no transfer encoding is declared");
    else
        _say("decoded: not at all, for " + _quoted(part.encoding) + " needs no decoder");
}

std::string _charsetReason(TextFacts const& text)
{
    if (!text.declaredCharset.empty()) return "as declared";
    return text.charset == "us-ascii" ? "for none is declared" : "as the page declares";
}

void _sayCharset(TextFacts const& text)
{
    if (text.charset.empty()) return;
    std::string line = "charset: " + shown(text.charset) + ", " + _charsetReason(text);
    if (!text.charsetKnown) line += "; nobody knows it, so the bytes stay as they are";
    if (text.undecodable > 0) line += "; bytes that it does not have (ferrCnt): " + std::to_string(text.undecodable);
    if (text.unencodable > 0) line += "; characters lost (terrCnt): " + std::to_string(text.unencodable);
    if (text.charsetKnown && text.undecodable == 0 && text.unencodable == 0) line += "; nothing was lost";
    _say(line);
}

void _sayType(TypeFacts const& type)
{
    _say("type: " + shown(type.detected) + (type.mismatch ? ", which is not what is declared" : "") + ": " +
         type.decidedBy + " (" + type.reason + ")");
}

void _saySignature(SignatureFacts const& signature)
{
    std::string const looked = ", " + std::to_string(signature.lookedAt) + " bytes looked at";
    if (signature.signature.empty())
        _say("signature: none as " + signature.kind + ": " + signature.whyNone + looked);
    else
        _say("signature: " + signature.signature + " as " + signature.kind + looked + ", " +
             std::to_string(signature.entered) + " entered");
}

// ---- hidden text ------------------------------------------------------------------------------

void _sayRun(Run const& run)
{
    std::string text = nameOf(run.view).label;
    if (run.view == Run::HiddenByColour)
        text += ", " + shownColour(run.foreground) + " on " + shownColour(run.background) + " (distance " +
                shownDistance(run) + ")";
    _say(text + ": " + _quoted(folded(run.text)));
}

void _sayHidden(HtmlFacts const& html)
{
    size_t count = 0;
    for (Run const& run : html.runs)
        if (run.view != Run::Visible && !isBlank(run.text) && ++count <= _mostRuns) _sayRun(run);
    if (count > _mostRuns) _say("hidden: " + std::to_string(count - _mostRuns) + " more runs, see `velmara html`");
}

// ---- the message ------------------------------------------------------------------------------

void _explain(PartFacts const& part)
{
    std::cout << _headingOf(part) << '\n';
    _sayEnding(part);
    _sayDecoding(part);
    if (part.text) _sayCharset(*part.text);
    if (part.type) _sayType(*part.type);
    if (part.signature) _saySignature(*part.signature);
    if (part.html) _sayHidden(*part.html);
}

void _show(Finding const& finding)
{
    bool const isSomewhere = finding.where.end > finding.where.begin;
    _say(finding.code + " in " + finding.path + (isSomewhere ? " at " + _placeOf(finding.where) : "") + ": " +
         finding.text);
}

void _show(MessageFacts const& facts)
{
    for (PartFacts const& part : facts.parts) _explain(part);
    std::cout << (facts.findings.empty() ? "no findings\n" : "findings:\n");
    for (Finding const& finding : facts.findings) _show(finding);
}

int _explainMessage(Input& input, MessageOptions const& options)
{
    MessageFacts const facts = factsOf(input.media());
    if (options.json) {
        writeJson(input, jsonOf(facts));
    } else {
        printName(input, options);
        _show(facts);
    }
    return facts.findings.empty() ? Done : DoneWithFindings;
}

} // namespace

void addExplain(CLI::App& commandLine, Action& action)
{
    MessageVerb<MessageOptions> verb(commandLine, "explain",
                                     "Tell why a message reads as it does, and what is odd in it");
    verb->footer("Exit status 1 means that something was found.\nExample: velmara explain mail.eml");
    verb.runForEach(_explainMessage, action);
}

} // namespace VelmaraCommand
