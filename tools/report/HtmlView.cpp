// A hidden word stands where its sender put it: between the letters of a visible one, or in a block at
// the end. So the view is a list of rows in the order of the document; each holds a stretch of visible
// text and, beside it, what is hidden behind that stretch.
#include "HtmlView.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "facts/HtmlReading.h"
#include "facts/Text.h"

namespace VelmaraCommand {

namespace {

constexpr size_t _mostSwatches = 300, _mostRows = 300, _mostRunBytes = 2000, _mostTextBytes = 96 << 10;
constexpr size_t _mostLinks = 200, _mostImages = 100, _mostUriBytes = 1000, _mostOtherHosts = 20;

struct Reason {
    Run::View view;
    char const* text;
};

constexpr Reason _reasons[] = {
    {Run::HiddenByColour, "its colour hardly differs from that of the background"},
    {Run::HiddenBySize, "font size 0"},
    {Run::HiddenByEarlierSize, "an earlier font size 0, and no colour set since"},
};

char const* _reasonOf(Run::View view)
{
    for (Reason const& reason : _reasons)
        if (reason.view == view) return reason.text;
    return "";
}

using Rgb = int[3];

/// As style sheets have it; what a page states beyond 0 to 255 is brought into it.
std::string _css(Rgb const& colour)
{
    char text[8];
    auto const part = [&](size_t i) { return static_cast<unsigned int>(std::clamp(colour[i], 0, 255)); };
    std::snprintf(text, sizeof text, "#%02x%02x%02x", part(0), part(1), part(2));
    return text;
}

/// As the page has it.
std::string _stated(Rgb const& colour)
{
    bool const isCss =
        std::all_of(std::begin(colour), std::end(colour), [](int part) { return part >= 0 && part <= 255; });
    if (isCss) return _css(colour);
    return shownColour(colour);
}

std::string _measures(Run const& run)
{
    return _stated(run.foreground) + " on " + _stated(run.background) + ", distance " + shownDistance(run) + ", size " +
           std::to_string(run.size);
}

struct Row {
    std::vector<Run const*> visible, hidden;
};

std::vector<Row> _rowsOf(std::vector<Run> const& runs)
{
    std::vector<Row> rows;
    for (Run const& run : runs) {
        bool const visible = run.view == Run::Visible;
        // Runs of white space separate words; alone they are neither seen nor hidden.
        if (isLayout(run.text) && (!visible || rows.empty() || !rows.back().hidden.empty())) continue;
        if (rows.empty() || (visible && !rows.back().hidden.empty())) rows.emplace_back();
        (visible ? rows.back().visible : rows.back().hidden).push_back(&run);
    }
    return rows;
}

class RowWriter {
public:
    explicit RowWriter(Swatches& swatches) : m_swatches(swatches) {}

    Html written(std::vector<Row> const& rows)
    {
        Html html;
        size_t count = 0;
        while (count < rows.size() && count < _mostRows && m_left > 0) html << written(rows[count++]);
        if (count < rows.size())
            html << "<p class=\"cut\">" << counted(rows.size() - count, "more stretch", "more stretches")
                 << " of text left out</p>";
        return html;
    }

private:
    Html written(Row const& row)
    {
        Html html;
        html << "<div class=\"row\"><div class=\"seen\" dir=\"auto\">";
        if (row.visible.empty()) html << "<span class=\"none\">nothing</span>";
        for (Run const* run : row.visible) html << "<span>" << text(*run) << "</span>";
        html << "</div><div class=\"unseen\">";
        if (row.hidden.empty()) html << "<span class=\"none\">nothing</span>";
        for (Run const* run : row.hidden)
            html << "<p><span dir=\"auto\">" << text(*run) << "</span><small>" << m_swatches.of(*run)
                 << std::string_view(_reasonOf(run->view)) << " <span class=\"measures\">" << _measures(*run)
                 << "</span></small></p>";
        html << "</div></div>";
        return html;
    }

    /// Of a part that is all text, so much that the page stays readable.
    Html text(Run const& run)
    {
        std::string const text = folded(run.text);
        size_t const limit = std::min(m_left, _mostRunBytes);
        m_left -= std::min(m_left, text.size());
        Html html;
        html.beginning(text, limit);
        return html;
    }

    Swatches& m_swatches;
    size_t m_left = _mostTextBytes;
};

bool _isAnyHidden(HtmlFacts const& html)
{
    return std::any_of(html.runs.begin(), html.runs.end(),
                       [](Run const& run) { return run.view != Run::Visible && !isLayout(run.text); });
}

Html _leftOut(size_t total, size_t shown, char const* one, char const* many)
{
    Html html;
    if (total > shown) html << "<p class=\"cut\">" << counted(total - shown, one, many) << " left out</p>";
    return html;
}

Html _written(Link const& link)
{
    Html html;
    html << "<li><p class=\"reach\"><span class=\"label\">" << std::string_view(link.element) << "</span> reaches <b>";
    if (link.host.empty())
        html << "no host";
    else
        html.beginning(link.host, _mostUriBytes);
    html << "</b></p>";
    for (size_t i = 0; i < link.otherHosts.size() && i < _mostOtherHosts; ++i)
        html << "<p class=\"warning\">but its text names <b>" << link.otherHosts[i] << "</b></p>";
    html << "<p class=\"uri\"><code>";
    html.beginning(link.uri, _mostUriBytes) << "</code></p>";
    std::string const text = folded(link.text);
    if (!isLayout(text)) {
        html << "<p class=\"says\">text: <q dir=\"auto\">";
        html.beginning(text, _mostUriBytes) << "</q></p>";
    }
    html << "</li>";
    return html;
}

} // namespace

Html Swatches::of(Run const& run)
{
    Html html;
    std::string const declarations = "color:" + _css(run.foreground) + ";background:" + _css(run.background);
    if (m_numbers.size() >= _mostSwatches && m_numbers.count(declarations) == 0) return html;
    size_t const number = m_numbers.emplace(declarations, m_numbers.size()).first->second;
    html << "<span class=\"swatch s" << std::to_string(number) << "\" aria-hidden=\"true\">Aa</span>";
    return html;
}

std::string Swatches::rules() const
{
    std::string rules;
    for (auto const& [declarations, number] : m_numbers)
        rules += ".s" + std::to_string(number) + "{" + declarations + "}\n";
    return rules;
}

std::string bareContentId(std::string id)
{
    if (startsWith(id, "cid:")) id.erase(0, 4);
    if (!id.empty() && id.front() == '<') id.erase(0, 1);
    if (!id.empty() && id.back() == '>') id.pop_back();
    return id;
}

std::string shareHidden(HtmlFacts const& html)
{
    std::uint64_t const all = html.visibleBytes + html.hiddenBytes;
    if (html.hiddenBytes == 0) return "0 %";
    auto const share =
        static_cast<unsigned int>(100.0 * static_cast<double>(html.hiddenBytes) / static_cast<double>(all));
    return std::to_string(html.visibleBytes == 0 ? 100 : std::clamp(share, 1u, 99u)) + " %";
}

Html viewOf(HtmlFacts const& html, Swatches& swatches)
{
    Html view;
    std::vector<Row> const rows = _rowsOf(html.runs);
    if (rows.empty()) return view << "<p class=\"note\">This page has no text.</p>";
    view << "<p class=\"note\">" << counted(html.visibleBytes, "byte", "bytes") << " of text visible, "
         << counted(html.hiddenBytes, "byte", "bytes") << " hidden (" << shareHidden(html) << ").</p>";
    if (_isAnyHidden(html))
        view << "<div class=\"beside\"><div class=\"row titles\"><h5>Visible</h5><h5>Hidden, and why</h5></div>";
    else
        view << "<div class=\"beside all-seen\"><div class=\"row titles\"><h5>Visible</h5></div>";
    return view << RowWriter(swatches).written(rows) << "</div>";
}

Html linksOf(HtmlFacts const& html)
{
    Html list;
    list << "<ol class=\"links\">";
    for (size_t i = 0; i < html.links.size() && i < _mostLinks; ++i) list << _written(html.links[i]);
    return list << "</ol>" << _leftOut(html.links.size(), _mostLinks, "more link", "more links");
}

Html imagesOf(HtmlFacts const& html, std::map<std::string, std::string> const& pathsByContentId)
{
    Html list;
    list << "<ul class=\"sources\">";
    for (size_t i = 0; i < html.images.size() && i < _mostImages; ++i) {
        ShownImage const& image = html.images[i];
        list << "<li><code>";
        list.beginning(image.source, _mostUriBytes) << "</code> <span class=\"quiet\">" << std::to_string(image.width)
                                                    << " × " << std::to_string(image.height) << "</span> ";
        auto const part = pathsByContentId.find(bareContentId(image.source));
        if (image.isContentId && part != pathsByContentId.end())
            list << "is <a href=\"#p" << part->second << "\">part " << part->second << "</a>";
        else if (image.isContentId)
            list << "is no part of the message";
        else
            list << "<span class=\"quiet\">not loaded</span>";
        list << "</li>";
    }
    return list << "</ul>" << _leftOut(html.images.size(), _mostImages, "more image", "more images");
}

} // namespace VelmaraCommand
