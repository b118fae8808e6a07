#include <velmara/HasherFactory.h>

#include <list>

#include <velmara/FileMagic.h>
#include <velmara/StringPattern.h>

namespace Velmara {
namespace {

constexpr unsigned int _default_read = 4096;
constexpr unsigned int _text_read = 12288;
constexpr unsigned int _named_read = 12288;

// The kinds of content with a reduction of their own.
struct Kind {
    ContentType::MediaType mediatype;
    ContentType::SubType subtype;
    char const* contentHead; // how the type by content begins; the first that fits is taken
    Hasher::DataType dataType;
    unsigned int read; // bytes for the first attempt
};

constexpr Kind _kinds[] = {
    {ContentType::MediaTypeText, ContentType::SubTypeHtml, "text/html", Hasher::DataHtml, 150000},
    {ContentType::MediaTypeText, ContentType::SubTypePlain, "text", Hasher::DataText, _text_read},
    {ContentType::MediaTypeImage, ContentType::SubTypeJpeg, "image/jpeg", Hasher::DataJpeg, 32768},
    {ContentType::MediaTypeImage, ContentType::SubTypeGif, "image/gif", Hasher::DataGif, 32768},
    {ContentType::MediaTypeImage, ContentType::SubTypePng, "image/png", Hasher::DataPng, 32768},
};

// Null for content without a reduction of its own. The type is not null.
Kind const* _kindOf(ContentType const& type)
{
    for (Kind const& kind : _kinds)
        if (type.mediatype() == kind.mediatype && type.subtype() == kind.subtype) return &kind;
    return nullptr;
}

Kind const* _kindOf(std::string const& mimeType)
{
    for (Kind const& kind : _kinds)
        if (mimeType.rfind(kind.contentHead, 0) == 0) return &kind;
    return nullptr;
}

Hasher _hasherOf(Kind const& kind)
{
    if (kind.mediatype == ContentType::MediaTypeText) return TextHasher(kind.dataType);
    return ImageHasher(kind.dataType);
}

// Files that say little in their first bytes: office documents and signatures.
StringPattern const _longNames = [] {
    std::list<StringPattern> patterns;
    for (char const* ending :
         {"*.rtf",  "*.xlsx", "*.xlsm", "*.xlsb", "*.xltm", "*.xlam", "*.xls", "*.xla",  "*.xlb", "*.xlc",  "*.xld",
          "*.xlk",  "*.xll",  "*.xlm",  "*.xlt",  "*.xlv",  "*.xlw",  "*.doc", "*.docx", "*.ppt", "*.pptx", "*.pps",
          "*.ppsx", "*.vsdx", "*.vsdm", "*.odt",  "*.ods",  "*.odp",  "*.p7s", "*.asc",  "*.sig"})
        patterns.emplace_back(ending, true, false);
    return StringPattern(patterns);
}();

} // namespace

unsigned int HasherFactory::maxHashBufSize(ContentType const& type)
{
    if (type.isNull()) return _text_read;
    if (Kind const* kind = _kindOf(type)) return kind->read;
    if (type.mediatype() == ContentType::MediaTypeText || type.mediatype() == ContentType::MediaTypeImage)
        return _default_read;
    return _longNames.matches(type.utf8name()) ? _named_read : _default_read;
}

Hasher HasherFactory::createHasher(ContentType const& type, unsigned int maxlen)
{
    if (type.isNull()) return TextHasher(Hasher::DataText);
    Kind const* kind = _kindOf(type);
    return kind ? _hasherOf(*kind) : BinaryHasher(maxlen);
}

Hasher HasherFactory::createHasher(Buffer const& data)
{
    Kind const* kind = _kindOf(FileMagic::mimeType(data, ""));
    return kind ? _hasherOf(*kind) : BinaryHasher();
}

} // namespace Velmara
