// `velmara inspect`: one message on one screen, for a person who wants to know what it is. Everything comes
// from its facts, so it says what the other verbs say; lists are cut, for --json has all of them.
#include <algorithm>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "MessageVerb.h"
#include "facts/Columns.h"
#include "facts/Findings.h"
#include "facts/HtmlReading.h"
#include "facts/MailDate.h"
#include "facts/MessageFacts.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _width = 80;
constexpr size_t _labelWidth = 12; // the last two for a mark
constexpr size_t _mostParts = 12, _mostLinks = 8, _mostImages = 4, _mostTextLines = 5, _mostAddresses = 4;
constexpr size_t _mostSignatures = 6, _mostTokens = 4;

class Screen {
public:
    Screen() : m_colour(colourWanted()) {}

    void show(MessageFacts const& facts)
    {
        showEnvelope(facts);
        showRoute(facts.route);
        showParts(facts.parts);
        showText(facts.parts);
        showHidden(facts.parts);
        showLinks(facts.parts);
        showImages(facts.parts);
        showSignatures(facts.parts);
        showTokens(facts.parts);
        showFindings(facts);
    }

private:
    std::string painted(char const* code, std::string const& text) const
    {
        return m_colour ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
    }

    /// A line with its label in front; the label stands once for several lines. One that wants to be seen
    /// has a mark ahead of its text.
    void line(std::string const& label, std::string const& text, bool mark = false)
    {
        bool const isSame = label == m_label;
        m_label = label;
        std::string const shownText = withoutEnd(clipped(text, _width - _labelWidth));
        std::cout << painted("1", padded(isSame ? "" : label, _labelWidth - 2)) << (mark ? painted("1;31", "! ") : "  ")
                  << shownText << '\n';
    }
    void lineIfAny(std::string const& label, std::string const& text)
    {
        if (!text.empty()) line(label, text);
    }
    static std::string withoutEnd(std::string text) { return text.erase(text.find_last_not_of(' ') + 1); }
    void more(std::string const& label, size_t all, size_t most, char const* what)
    {
        if (all > most) line(label, "and " + std::to_string(all - most) + " more " + what);
    }

    static std::string nameOf(Address const& address)
    {
        if (address.displayName.empty()) return shown(address.address);
        return shown(address.displayName) + " <" + shown(address.address) + ">";
    }

    void showAddresses(char const* label, std::vector<Address> const& addresses)
    {
        for (size_t i = 0; i < std::min(addresses.size(), _mostAddresses); ++i) line(label, nameOf(addresses[i]));
        more(label, addresses.size(), _mostAddresses, "addresses");
    }

    void showEnvelope(MessageFacts const& facts)
    {
        showAddresses("From", facts.from);
        showAddresses("Sender", facts.sender);
        showAddresses("Reply to", facts.replyTo);
        showAddresses("To", facts.to);
        showAddresses("Cc", facts.cc);
        lineIfAny("Subject", shown(facts.subject));
        lineIfAny("Date", facts.time ? shownTime(*facts.time) : shown(facts.date));
        lineIfAny("ID", shown(facts.messageId));
        line("Size", shownSize(facts.bytes) + (facts.capped.empty() ? "" : ", read up to a limit of " + facts.capped));
    }

    static std::string hostOf(Hop const& hop)
    {
        std::string const name = shown(hop.from.empty() ? hop.reverseName : hop.from);
        std::string const address = hop.address.isNull() ? "" : "[" + hop.address.asString(true) + "]";
        if (name.empty() && address.empty()) return "?";
        return name.empty() || address.empty() ? name + address : name + " " + address;
    }

    void showRoute(std::vector<Hop> const& route)
    {
        for (size_t i = 0; i < route.size(); ++i) {
            auto const delay = i > 0 ? delayBetween(route[i - 1], route[i]) : std::nullopt;
            std::string const by = route[i].by.empty() ? "?" : shown(route[i].by);
            if (by == "?" && hostOf(route[i]) == "?") continue; // of the date alone nobody learns anything
            line("Route", hostOf(route[i]) + " to " + by + (delay ? ", after " + shownDelay(*delay) : ""));
        }
    }

    static bool isWorthALine(PartFacts const& part)
    {
        return hasHeaders(part.kind) || (part.text && !isBlank(part.text->text));
    }

    static std::string declaredOf(PartFacts const& part)
    {
        if (!hasHeaders(part.kind)) return std::string("(") + VelmaraCommand::nameOf(part.kind) + ")";
        return part.mediaType.empty() ? "(none)" : shown(part.mediaType);
    }

    static std::string detectedOf(PartFacts const& part)
    {
        if (!part.type) return std::string();
        return part.type->detected == part.mediaType ? "the same" : shown(part.type->detected);
    }

    /// The end of a path says most.
    static std::string pathOf(PartFacts const& part)
    {
        constexpr size_t most = 11;
        return part.path.size() <= most ? part.path : ".." + part.path.substr(part.path.size() - most + 2);
    }

    static std::string sizeOf(PartFacts const& part)
    {
        bool const isContainer = part.kind == PartKind::Multipart || part.kind == PartKind::Message;
        return isContainer ? std::string() : std::to_string(part.decodedBytes);
    }

    using Row = std::vector<std::string>;

    /// As wide as its widest cell, within reason: what is left is for the names.
    static size_t columnOf(std::vector<Row> const& rows, size_t column)
    {
        constexpr size_t most = 24;
        size_t width = 0;
        for (Row const& row : rows) width = std::max(width, columnsOf(row[column]));
        return std::min(width, most);
    }

    void showParts(std::vector<PartFacts> const& parts)
    {
        std::vector<Row> rows{{"", "declared", "detected", "bytes", "name"}};
        std::vector<bool> marks{false};
        size_t count = 0;
        for (PartFacts const& part : parts) {
            if (!isWorthALine(part) || ++count > _mostParts) continue;
            rows.push_back({pathOf(part), declaredOf(part), detectedOf(part), sizeOf(part), shown(part.name)});
            marks.push_back(part.type && part.type->mismatch);
        }
        showTable("Parts", rows, marks);
        more("Parts", count, _mostParts, "parts");
    }

    void showTable(char const* label, std::vector<Row> const& rows, std::vector<bool> const& marks)
    {
        size_t const widths[] = {columnOf(rows, 0), columnOf(rows, 1), columnOf(rows, 2), columnOf(rows, 3)};
        for (size_t i = 0; i < rows.size(); ++i) {
            std::string const size(widths[3] - std::min(widths[3], rows[i][3].size()), ' ');
            line(label,
                 padded(rows[i][0], widths[0]) + "  " + padded(rows[i][1], widths[1]) + "  " +
                     padded(rows[i][2], widths[2]) + "  " + size + rows[i][3] + "  " + rows[i][4],
                 marks[i]);
        }
    }

    /// Plain text says the same as a page, and is easier to read.
    static PartFacts const* textPartOf(std::vector<PartFacts> const& parts)
    {
        PartFacts const* page = nullptr;
        for (PartFacts const& part : parts) {
            if (part.kind != PartKind::Leaf || !part.text || isBlank(part.text->text)) continue;
            if (!part.html) return &part;
            if (!page) page = &part;
        }
        return page;
    }

    void showText(std::vector<PartFacts> const& parts)
    {
        PartFacts const* const part = textPartOf(parts);
        if (!part) return;
        for (std::string const& row : wrapped(shown(folded(part->text->text)), _width - _labelWidth, _mostTextLines))
            line("Text", row);
    }

    void showHidden(std::vector<PartFacts> const& parts)
    {
        for (PartFacts const& part : parts) {
            if (!part.html || part.html->hiddenBytes == 0) continue;
            std::map<Run::View, size_t> bytes;
            for (Run const& run : part.html->runs)
                if (run.view != Run::Visible && !isBlank(run.text)) bytes[run.view] += run.text.size();
            std::string why;
            for (auto const& [view, size] : bytes)
                why += (why.empty() ? "" : ", ") + std::to_string(size) + " " + VelmaraCommand::nameOf(view).label;
            line("Hidden", part.path + ": " + shownSize(part.html->hiddenBytes) + " of " +
                               shownSize(part.html->hiddenBytes + part.html->visibleBytes) + ": " + why);
        }
    }

    static std::string linkText(Link const& link)
    {
        std::string text = link.host.empty() ? "-" : shown(link.host);
        if (std::string const* other = pretendedHost(link)) text += " (shows " + shown(*other) + ")";
        return text + "  " + shown(link.uri);
    }

    static bool pretends(Link const* link) { return pretendedHost(*link) != nullptr; }

    /// Each URI once, those that pretend first.
    static std::vector<Link const*> linksOf(std::vector<PartFacts> const& parts)
    {
        std::vector<Link const*> links;
        for (PartFacts const& part : parts)
            if (part.html)
                for (Link const& link : part.html->links) links.push_back(&link);
        std::stable_partition(links.begin(), links.end(), pretends);
        std::set<std::string> known;
        auto const isKnown = [&](Link const* link) { return !known.insert(link->uri).second; };
        links.erase(std::remove_if(links.begin(), links.end(), isKnown), links.end());
        return links;
    }

    void showLinks(std::vector<PartFacts> const& parts)
    {
        std::vector<Link const*> const links = linksOf(parts);
        for (size_t i = 0; i < std::min(links.size(), _mostLinks); ++i)
            line("Links", linkText(*links[i]), pretends(links[i]));
        more("Links", links.size(), _mostLinks, "links");
    }

    void showImages(std::vector<PartFacts> const& parts)
    {
        size_t count = 0;
        for (PartFacts const& part : parts)
            if (part.html)
                for (ShownImage const& image : part.html->images)
                    if (++count <= _mostImages) line("Images", imageText(image));
        more("Images", count, _mostImages, "images");
    }

    static std::string imageText(ShownImage const& image)
    {
        std::string const size = std::to_string(image.width) + " x " + std::to_string(image.height);
        return (image.width == 0 && image.height == 0 ? "" : size + " ") +
               (image.isContentId ? "from the message " : "from outside ") + shown(image.source);
    }

    void showSignatures(std::vector<PartFacts> const& parts)
    {
        size_t count = 0;
        for (PartFacts const& part : parts) {
            if (!part.signature || part.signature->signature.empty() || ++count > _mostSignatures) continue;
            SignatureFacts const& signature = *part.signature;
            line("Signatures",
                 padded(pathOf(part), 11) + "  " + padded(signature.kind, 6) + "  " + signature.signature);
            if (!signature.tagTokens.empty()) line("Signatures", padded("", 13) + "tags    " + signature.tagTokens);
        }
        more("Signatures", count, _mostSignatures, "signatures");
    }

    static std::string numbersOf(TextFacts const& text)
    {
        std::string numbers;
        for (unsigned int token : text.tokens) numbers += " " + std::to_string(token);
        return numbers;
    }

    void showTokens(std::vector<PartFacts> const& parts)
    {
        size_t count = 0;
        for (PartFacts const& part : parts)
            if (part.text && !part.text->tokens.empty() && ++count <= _mostTokens)
                line("Tokens", padded(pathOf(part), 11) + "  " + part.text->language + ", " +
                                   std::to_string(part.text->tokens.size()) + ":" + numbersOf(*part.text));
        more("Tokens", count, _mostTokens, "parts");
    }

    void showFindings(MessageFacts const& facts)
    {
        std::map<std::string, size_t> codes;
        for (Finding const& finding : facts.findings) ++codes[finding.code];
        std::string text;
        for (auto const& [code, count] : codes)
            text += (text.empty() ? "" : ", ") + code + (count > 1 ? " (" + std::to_string(count) + ")" : "");
        if (codes.empty()) return;
        for (std::string const& row : wrapped(text, _width - _labelWidth, 4))
            line("Findings", row, m_label != "Findings");
        line("Findings", "`velmara explain` tells where and why");
    }

    bool m_colour;
    std::string m_label; // of the last line
};

int _inspect(Input& input, MessageOptions const& options)
{
    MessageFacts const facts = factsOf(input.media());
    if (options.json) {
        writeJson(input, jsonOf(facts));
        return Done;
    }
    printName(input, options);
    Screen().show(facts);
    if (options.files.size() > 1) std::cout << '\n';
    return Done;
}

} // namespace

void addInspect(CLI::App& commandLine, Action& action)
{
    MessageVerb<MessageOptions> verb(commandLine, "inspect", "Show one message on one screen",
                                     "One JSON object a message, with all that is known of it");
    verb->footer("Example: velmara inspect mail.eml");
    verb.runForEach(_inspect, action);
}

} // namespace VelmaraCommand
