#include <velmara/HtmlImageExtract.h>

#include <velmara/HtmlParser.h>
#include <velmara/StringOperations.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "html/Node.h"

namespace Velmara {

namespace {

constexpr int _charactersOfALine = 120;
constexpr int _fewest = 3;       // characters that a paragraph needs to count
constexpr int _percentWidth = 6; // pixels for one percent of a page
constexpr char const* _contentId = "cid:";

char const* _sourceNames[] = {"href", "src", "background", nullptr};

int _numberAtStart(std::string const& text)
{
    long const number = std::strtol(text.c_str(), nullptr, 10);
    constexpr long least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, least, most));
}

/// A size in pixels or percent; of a percentage the first three bytes count.
int _sizeOf(std::string const& value)
{
    size_t const percent = value.find('%');
    if (percent == std::string::npos) return _numberAtStart(value);
    return _numberAtStart(value.substr(0, std::min<size_t>(percent, 3))) * _percentWidth;
}

/// Text that ends a run of images: more than two characters that are no white space, not counting the
/// first but counting the end of the text. The lines of images that others have stored were counted so.
bool _endsARun(std::string_view text)
{
    auto const isInk = [](char c) { return !isCSpace(static_cast<unsigned char>(c)); };
    return std::count_if(text.begin() + 1, text.end(), isInk) + 1 > 2;
}

int _trimmedLength(std::string_view text)
{
    auto const isInk = [](unsigned char c) { return !isHeaderSpace(c); };
    auto const first = std::find_if(text.begin(), text.end(), isInk);
    if (first == text.end()) return 0;
    return static_cast<int>(std::find_if(text.rbegin(), text.rend(), isInk).base() - first);
}

int _added(int a, int b)
{
    return b > std::numeric_limits<int>::max() - a ? std::numeric_limits<int>::max() : a + b;
}

} // namespace

HtmlSLinkPatterns::HtmlSLinkPatterns() : StringPattern(HTML::stringPatternFactory(_sourceNames))
{}

HtmlSLinkPatterns::~HtmlSLinkPatterns() = default;

ImageSummary::ImageSummary() = default;

ImageSummary::ImageSummary(CID const& from, int statedWidth, int statedHeight, int lines, bool isFirst)
    : cid(from), width(statedWidth), height(statedHeight), textLine(lines), firstInRun(isFirst)
{}

ImageSummary::~ImageSummary() = default;

ImageProperties::ImageProperties(int own) : number(own)
{}

ImageProperties::~ImageProperties() = default;

MPartAttribute::Type ImageProperties::type() const
{
    return TypeImage;
}

void ImageProperties::add(Ref<ImageSummary> const& image)
{
    m_images.push_back(image);
}

Ref<ImageSummary> const& ImageProperties::find(std::string const& name) const
{
    static auto const* none = new Ref<ImageSummary>;
    for (Ref<ImageSummary> const& image : m_images)
        if (!image.isNull() && stringCompareNoCase(image->cid.value, name)) return image;
    return *none;
}

HtmlImageExtract::HtmlImageExtract(TextHtmlDoc*, unsigned long, ImageProperties* properties) : m_properties(properties)
{}

HtmlImageExtract::~HtmlImageExtract() = default;

void HtmlImageExtract::calcTextLine(int lines, bool dropShort)
{
    if (!dropShort || m_textChars >= _fewest)
        m_textLines = _added(m_textLines, lines + m_textChars / _charactersOfALine);
    m_textChars = 0;
}

void HtmlImageExtract::text(_xmlNode const* node)
{
    if (!HTML::isText(node) || !node->content) return;
    std::string_view const text = HTML::content(node);
    if (m_imageSeen && !text.empty() && _endsARun(text)) m_imageSeen = false;
    m_textChars = _added(m_textChars, _trimmedLength(text));
}

void HtmlImageExtract::node(_xmlNode const* node)
{
    if (HTML::isNamed(node, "p") || HTML::isNamed(node, "div"))
        calcTextLine(1, true);
    else if (HTML::isNamed(node, "br"))
        calcTextLine(1, false);
}

void HtmlImageExtract::ignore(_xmlNode const* node)
{
    if (HTML::isNamed(node, "br")) calcTextLine(1, false);
}

void HtmlImageExtract::background(_xmlNode const* node)
{
    if (HTML::isNamed(node, "tr")) calcTextLine(2, false);
    // None of the elements that come here has such a name, so no background counts as an image: what is
    // stored of images depends on it.
    if (!HtmlSLinkPatterns::instance().matches(node->name)) return;
    HTML::forEachAttribute(node, [this](xmlAttr const* attribute) {
        if (HTML::isNamed(attribute, "BACKGROUND")) registerImage(std::string(HTML::text(attribute)), 0, 0, true);
    });
}

void HtmlImageExtract::image(_xmlNode const* node)
{
    int width = 0, height = 0;
    std::string source;
    HTML::forEachAttribute(node, [&](xmlAttr const* attribute) {
        std::string_view const value = HTML::text(attribute);
        if (HTML::isNamed(attribute, "height"))
            height = _sizeOf(std::string(value));
        else if (HTML::isNamed(attribute, "width"))
            width = _sizeOf(std::string(value));
        else if (HTML::isNamed(attribute, "src") && !value.empty())
            source = value;
    });
    registerImage(source, width, height, false);
}

void HtmlImageExtract::registerImage(std::string const& source, int width, int height, bool isBackground)
{
    if (!m_properties || source.size() < 2) return;
    size_t const contentId = source.find(_contentId);
    CID const cid = contentId == std::string::npos ? CID(source, CID::TypeUrl)
                                                   : CID("<" + source.substr(contentId + 4) + ">", CID::TypeContentId);
    bool const first = isBackground || !m_imageSeen;
    if (!isBackground) m_imageSeen = true;
    m_properties->add(Ref<ImageSummary>(new ImageSummary(cid, width, height, m_textLines, first), false));
}

void HtmlImageExtract::done()
{
    if (!m_properties) return;
    calcTextLine(0, true);
    m_properties = nullptr;
}

} // namespace Velmara
