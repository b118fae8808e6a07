#include <velmara/BayesianVisitor.h>

#include <velmara/ContentType.h>
#include <velmara/FilterCRLFMediaOut.h>
#include <velmara/HtmlTxtExtract.h>
#include <velmara/TextHtmlDoc.h>

namespace Velmara {

namespace {

constexpr int _textSize = 65536;

} // namespace

MPartText::MPartText(MPartAttribute::Type type) : textType(type), text(_textSize, 0)
{}

MPartText::~MPartText() = default;

MPartAttribute::Type MPartText::type() const
{
    return textType;
}

MPartUriContainer::MPartUriContainer() = default;

MPartUriContainer::~MPartUriContainer() = default;

MPartAttribute::Type MPartUriContainer::type() const
{
    return TypeUri;
}

BayesianVisitor::BayesianVisitor() = default;

BayesianVisitor::BayesianVisitor(MediaOut const& out) : m_out(out)
{}

BayesianVisitor::~BayesianVisitor() = default;

void BayesianVisitor::init(MimePart* root)
{
    if (!m_out.isNull()) return;
    auto* collected = new MPartText(MPartAttribute::TypeText);
    Ref<MPartAttribute> const attribute(collected, false);
    collected->flag = 1;
    root->setAttr(attribute);
    m_out = FilterCRLFMediaOut(BufferMediaOut(collected->text));
}

void BayesianVisitor::visitRfc822Msg(MimeRfc822Msg& part)
{
    ContentType const type(part.headers().find(ContentType::htype));
    bool const isText = type.isNull() || type.mediatype() == ContentType::MediaTypeText;
    if (!isText) return;
    if (type.isNull() || type.subtype() == ContentType::SubTypePlain)
        part.body(true).write(m_out);
    else if (type.subtype() == ContentType::SubTypeHtml)
        collectHtml(part);
}

void BayesianVisitor::collectHtml(MimeRfc822Msg& part)
{
    TextHtmlDoc document(true);
    auto* extract = new HtmlTxtExtract(&document, part.sourcePosition(), m_out, nullptr);
    document.addVisitor(Ref<HtmlDocVisitor>(extract, false));
    MediaIn body = part.body(true);
    document.parse(&body);
}

Buffer const& find_MimeRfc822Msg_Text_buffer(Ref<MimePart> const& part, MPartAttribute::Type type)
{
    static auto const* empty = new Buffer;
    MPartAttribute* attribute = part.isNull() ? nullptr : part->findAttr(type);
    auto const* text = dynamic_cast<MPartText const*>(attribute);
    return text ? text->text : *empty;
}

} // namespace Velmara
