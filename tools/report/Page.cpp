#include "Page.h"

#include <sha2.h>

#include <algorithm>
#include <vector>

#include <velmara/Buffer.h>

#include "Html.h"
#include "PageStyle.h"
#include "PartSection.h"
#include "facts/Columns.h"
#include "facts/MailDate.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _full = 24 << 20; // of the page, in bytes
constexpr size_t _mostTreeLines = 5000, _mostFindings = 300, _mostHops = 100, _mostAddresses = 30, _mostHosts = 100;
constexpr size_t _mostBytes = 500; // of a line about the whole message

Html _begun(std::string const& text)
{
    Html html;
    html.beginning(text, _mostBytes);
    return html;
}

Html _moreThan(size_t shown, size_t all)
{
    Html html;
    if (all > shown) html << "<p class=\"cut\">" << grouped(all - shown) << " more left out</p>";
    return html;
}

// ---- what stands above all ----------------------------------------------------------------------

Html _subjectOf(MessageFacts const& facts)
{
    return _begun(facts.subject.empty() ? "(no subject)" : facts.subject);
}

Html _written(Address const& address)
{
    Html html;
    html << "<span class=\"address\">";
    if (!address.displayName.empty()) html << "<bdi>" << _begun(address.displayName) << "</bdi> ";
    return html << "<code>" << _begun(address.address) << "</code></span> ";
}

Html _writtenAddresses(char const* name, std::vector<Address> const& addresses)
{
    Html html;
    if (addresses.empty()) return html;
    html << "<div><dt>" << std::string_view(name) << "</dt><dd>";
    for (size_t i = 0; i < addresses.size() && i < _mostAddresses; ++i) html << _written(addresses[i]);
    return html << _moreThan(_mostAddresses, addresses.size()) << "</dd></div>";
}

Html _writtenDate(MessageFacts const& facts)
{
    Html html;
    if (facts.date.empty()) return html;
    html << "<div><dt>Date</dt><dd>" << _begun(facts.date) << "<br><span class=\"quiet\">";
    if (facts.time)
        html << shownTime(*facts.time);
    else
        html << "which is no date";
    return html << "</span></dd></div>";
}

std::uint64_t _sumOf(MessageFacts const& facts, std::uint64_t (*countOf)(PartFacts const&))
{
    std::uint64_t sum = 0;
    for (PartFacts const& part : facts.parts) sum += countOf(part);
    return sum;
}

std::uint64_t _visible(PartFacts const& part)
{
    return part.html ? part.html->visibleBytes : 0;
}
std::uint64_t _hidden(PartFacts const& part)
{
    return part.html ? part.html->hiddenBytes : 0;
}
std::uint64_t _links(PartFacts const& part)
{
    return part.html ? part.html->links.size() : 0;
}

Html _tile(std::string const& value, char const* label, char const* target, bool alarming)
{
    Html html;
    html << "<li class=\"" << std::string_view(alarming ? "bad" : "plain") << "\"><a href=\"#"
         << std::string_view(target) << "\"><b>" << value << "</b> " << std::string_view(label) << "</a></li>";
    return html;
}

Html _tilesOf(MessageFacts const& facts)
{
    HtmlFacts text;
    text.visibleBytes = _sumOf(facts, _visible);
    text.hiddenBytes = _sumOf(facts, _hidden);
    Html html;
    html << "<ul class=\"tiles\">"
         << _tile(grouped(facts.findings.size()), facts.findings.size() == 1 ? "finding" : "findings", "findings",
                  !facts.findings.empty())
         << _tile(grouped(facts.parts.size()), facts.parts.size() == 1 ? "part" : "parts", "parts", false)
         << _tile(shownSize(facts.bytes), "in all", "parts", false)
         << _tile(grouped(facts.route.size()), facts.route.size() == 1 ? "hop" : "hops", "route", false)
         << _tile(grouped(_sumOf(facts, _links)), "links", "hosts", false);
    if (text.visibleBytes + text.hiddenBytes > 0)
        html << _tile(shareHidden(text), "of HTML text hidden", "parts", text.hiddenBytes > 0);
    return html << "</ul>";
}

struct Cap {
    char const *name, *words;
};

constexpr Cap _caps[] = {
    {"bytes", "The message is larger than what was to be read; what follows is not here."},
    {"parts", "The message has more parts than were to be read; the others are not here."},
    {"items", "The message has more headers, links or words than were to be read; what follows is not here."},
    {"time", "Reading took longer than it was to; what was not read by then is not here."},
};

Html _capOf(MessageFacts const& facts)
{
    Html html;
    for (Cap const& cap : _caps)
        if (facts.capped == cap.name) html << "<p class=\"capped\">" << std::string_view(cap.words) << "</p>";
    return html;
}

Html _bannerOf(MessageFacts const& facts, std::string const& fileName)
{
    Html html;
    html << "<header class=\"banner\"><p class=\"eyebrow\">Message report <code>" << _begun(fileName)
         << "</code></p><h1 dir=\"auto\">" << _subjectOf(facts) << "</h1><dl class=\"facts\">"
         << _writtenAddresses("From", facts.from) << _writtenAddresses("Sender", facts.sender)
         << _writtenAddresses("Reply-To", facts.replyTo) << _writtenAddresses("To", facts.to)
         << _writtenAddresses("Cc", facts.cc) << _writtenDate(facts);
    if (!facts.messageId.empty())
        html << "<div><dt>Message-ID</dt><dd><code>" << _begun(facts.messageId) << "</code></dd></div>";
    return html << "</dl>" << _capOf(facts) << _tilesOf(facts) << "</header>\n";
}

// ---- sections about the whole message -----------------------------------------------------------

Html _findingsOf(MessageFacts const& facts)
{
    Html html;
    html << "<section id=\"findings\"><h2>Findings</h2>";
    if (facts.findings.empty())
        return html << "<p class=\"note\">Nothing was found in how this message is put together.</p></section>\n";
    html << "<ul class=\"findings\">";
    for (size_t i = 0; i < facts.findings.size() && i < _mostFindings; ++i) html << itemOf(facts.findings[i], true);
    return html << "</ul>" << _moreThan(_mostFindings, facts.findings.size()) << "</section>\n";
}

Html _written(Hop const& hop)
{
    Html html;
    html << "<p><span class=\"label\">from</span> <b>" << _begun(hop.from.empty() ? "?" : hop.from) << "</b>";
    if (!hop.reverseName.empty()) html << " <span class=\"quiet\">(" << _begun(hop.reverseName) << ")</span>";
    if (!hop.address.isNull()) html << " <code>" << hop.address.asString(true) << "</code>";
    html << "</p><p><span class=\"label\">by</span> " << _begun(hop.by.empty() ? "?" : hop.by);
    if (!hop.with.empty()) html << " <span class=\"quiet\">with " << _begun(hop.with) << "</span>";
    html << "</p>";
    if (hop.time)
        html << "<p><span class=\"label\">at</span> " << shownTime(*hop.time) << "</p>";
    else if (!hop.date.empty())
        html << "<p><span class=\"label\">at</span> " << _begun(hop.date)
             << " <span class=\"quiet\">(no date)</span></p>";
    return html;
}

Html _routeOf(MessageFacts const& facts)
{
    Html html;
    html << "<section id=\"route\"><h2>Route</h2>";
    if (facts.route.empty()) return html << "<p class=\"note\">There are no “Received” headers.</p></section>\n";
    html << "<p class=\"note\">The oldest hop first. Each was written by the host that took the message over, so all "
            "above the first host that you trust may be made up.</p><ol class=\"route\">";
    for (size_t i = 0; i < facts.route.size() && i < _mostHops; ++i) {
        html << "<li>";
        auto const delay = i > 0 ? delayBetween(facts.route[i - 1], facts.route[i]) : std::nullopt;
        if (delay && *delay < 0)
            html << "<p class=\"delay bad\">" << shownDelay(*delay) << ": clocks differ, or a header is made up</p>";
        else if (delay)
            html << "<p class=\"delay\">after " << shownDelay(*delay) << "</p>";
        html << _written(facts.route[i]) << "</li>";
    }
    return html << "</ol>" << _moreThan(_mostHops, facts.route.size()) << "</section>\n";
}

struct HostUse {
    std::string host;
    size_t links = 0;
    std::string lastPath; // so that a part is named once
    std::vector<std::string> paths;
    bool disguised = false;
};

/// In the order in which they are met.
std::vector<HostUse> _hostsOf(MessageFacts const& facts)
{
    std::vector<HostUse> hosts;
    std::map<std::string, size_t> numbers;
    for (PartFacts const& part : facts.parts) {
        if (!part.html) continue;
        for (Link const& link : part.html->links) {
            size_t const number = numbers.emplace(link.host, hosts.size()).first->second;
            if (number == hosts.size()) hosts.push_back(HostUse{link.host, 0, {}, {}, false});
            HostUse& use = hosts[number];
            ++use.links;
            use.disguised = use.disguised || !link.otherHosts.empty();
            if (use.lastPath != part.path) use.paths.push_back(use.lastPath = part.path);
        }
    }
    return hosts;
}

Html _written(HostUse const& use)
{
    constexpr size_t mostPaths = 20;
    Html html;
    html << "<tr><th scope=\"row\">";
    if (use.host.empty())
        html << "<span class=\"quiet\">no host</span>";
    else
        html << "<code>" << _begun(use.host) << "</code>";
    if (use.disguised) html << " <span class=\"badge bad\">behind the name of another</span>";
    html << "</th><td>" << grouped(use.links) << "</td><td>";
    for (size_t i = 0; i < use.paths.size() && i < mostPaths; ++i)
        html << "<a href=\"#p" << use.paths[i] << "\">" << use.paths[i] << "</a> ";
    return html << _moreThan(mostPaths, use.paths.size()) << "</td></tr>";
}

Html _hostsSectionOf(MessageFacts const& facts)
{
    std::vector<HostUse> const hosts = _hostsOf(facts);
    Html html;
    html << "<section id=\"hosts\"><h2>Hosts that links reach</h2>";
    if (hosts.empty()) return html << "<p class=\"note\">No HTML part has a link.</p></section>\n";
    html << "<table><thead><tr><th scope=\"col\">Host</th><th scope=\"col\">Links</th><th scope=\"col\">In part</th>"
            "</tr></thead><tbody>";
    for (size_t i = 0; i < hosts.size() && i < _mostHosts; ++i) html << _written(hosts[i]);
    return html << "</tbody></table>" << _moreThan(_mostHosts, hosts.size()) << "</section>\n";
}

Html _partsOf(MessageFacts const& facts, Surroundings& around)
{
    Html html;
    html << "<section id=\"parts\"><h2>Parts</h2>\n";
    size_t count = 0;
    while (count < facts.parts.size() && html.size() < _full) html << sectionOf(facts.parts[count++], around);
    if (count < facts.parts.size())
        html << "<p class=\"cut\">The page is full: " << counted(facts.parts.size() - count, "more part", "more parts")
             << " left out. <code>velmara inspect</code> and <code>velmara tree</code> show all.</p>";
    return html << "</section>\n";
}

// ---- around it all -------------------------------------------------------------------------------

Html _navigationOf(MessageFacts const& facts, Surroundings const& around)
{
    Html html;
    html << "<nav aria-label=\"Contents\"><details open><summary>Contents</summary><ul class=\"places\">"
            "<li><a href=\"#findings\">Findings</a></li><li><a href=\"#route\">Route</a></li>"
            "<li><a href=\"#hosts\">Hosts</a></li><li><a href=\"#parts\">Parts</a></li></ul><ol class=\"tree\">\n";
    for (size_t i = 0; i < facts.parts.size() && i < _mostTreeLines; ++i) html << treeLineOf(facts.parts[i], around);
    return html << "</ol>" << _moreThan(_mostTreeLines, facts.parts.size()) << "</details></nav>\n";
}

std::string _sha256InBase64(std::string const& text)
{
    SHA2_CTX state;
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256Init(&state);
    SHA256Update(&state, reinterpret_cast<unsigned char const*>(text.data()), text.size());
    SHA256Final(digest, &state);
    return Velmara::Buffer(digest, sizeof digest, false).toBase64String();
}

/// The policy names the one style sheet by its digest, so that no other, wherever it might stand, is taken.
std::string _headOf(MessageFacts const& facts, Swatches const& swatches)
{
    std::string const style = pageStyle + swatches.rules();
    Html before;
    before << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
              "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; style-src "
              "'sha256-"
           << _sha256InBase64(style)
           << "'; form-action 'none'; base-uri 'none'\">\n"
              "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
              "<meta name=\"color-scheme\" content=\"light dark\">\n"
              "<meta name=\"referrer\" content=\"no-referrer\">\n"
              "<meta name=\"format-detection\" content=\"telephone=no, date=no, address=no, email=no, url=no\">\n"
              "<link rel=\"icon\" href=\"data:,\">\n" // else a browser asks the server of the page for one
              "<title>"
           << _subjectOf(facts) << " – message report</title>\n<style>";
    return before.asString() + style + "</style>\n</head>\n";
}

} // namespace

std::string pageOf(MessageFacts const& facts, std::map<std::string, Thumbnail> const& thumbnails,
                   std::string const& fileName)
{
    Surroundings around(facts, thumbnails);
    Html body;
    body << "<body>\n<a class=\"skip\" href=\"#main\">Skip to the findings</a>\n"
         << _bannerOf(facts, fileName) << "<div class=\"columns\">\n"
         << _navigationOf(facts, around) << "<main id=\"main\">\n"
         << _findingsOf(facts) << _routeOf(facts) << _hostsSectionOf(facts) << _partsOf(facts, around)
         << "</main>\n</div>\n<footer>Made by velmara " VELMARA_VERSION
            ". Nothing in this page leads out of it: links of the message are text, and its remote images are not "
            "loaded.</footer>\n</body>\n</html>\n";
    return _headOf(facts, around.swatches) + body.asString();
}

} // namespace VelmaraCommand
