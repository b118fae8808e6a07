#include <velmara/ContentDisposition.h>

#include <algorithm>

#include <velmara/Logger.h>
#include <velmara/StringOperations.h>

#include "header/AttachmentNames.h"
#include "header/CodeNames.h"
#include "header/ParameterReader.h"
#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr unsigned int _unknownDisposition = 0x3000025; // what log processors match on

bool _beginsWith(std::string const& text, std::string const& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

/// Clients offer an unknown disposition for saving, so it counts as an attachment.
ContentDisposition::FileType _fileTypeOf(std::string const& token)
{
    if (_beginsWith(token, "inline")) return ContentDisposition::FileTypeInline;
    if (!token.empty() && !_beginsWith(token, "attachment"))
        Logger::instance(false).log(_unknownDisposition, 0, "%s", token.c_str());
    return ContentDisposition::FileTypeAttachment;
}

} // namespace

ContentDispositionMapping::ContentDispositionMapping()
    : m_names{{ContentDisposition::FileTypeUnknown, "Unknown"},
              {ContentDisposition::FileTypeAttachment, "Attachment"},
              {ContentDisposition::FileTypeInline, "Inline"}}
{}

ContentDispositionMapping::~ContentDispositionMapping() = default;

std::string const& ContentDispositionMapping::find(ContentDisposition::FileType type) const
{
    return CodeNames::nameOf(m_names, type);
}

ContentDisposition::FileType ContentDispositionMapping::find(std::string const& text) const
{
    return CodeNames::codeOf(m_names, [&](ContentDisposition::FileType, std::string const& name) {
        return stringCompareNoCase(text, name);
    });
}

ContentDispositionImpl::ContentDispositionImpl()
{
    type(ContentDisposition::htype);
}

ContentDispositionImpl::~ContentDispositionImpl() = default;

void ContentDispositionImpl::read() const
{
    if (m_value.empty()) return;
    size_t const start = findFrom(m_value, 0, [](unsigned char c) { return !isBlank(c); });
    size_t const end = std::min(m_value.find(';', start), m_value.size());
    std::string token;
    copyStringToLower(m_value, token, start, end - start);
    m_fileType = _fileTypeOf(token);

    ParameterReader parameters(m_value, end + 1, ParameterNames::AsWritten);
    while (parameters.next()) m_parameters.emplace_back(parameters.name(), parameters.value());
}

ContentDisposition::FileType ContentDispositionImpl::fileType() const
{
    parse();
    return m_fileType;
}

std::list<TypeAndValue> const& ContentDispositionImpl::parameters() const
{
    parse();
    return m_parameters;
}

std::string const& ContentDispositionImpl::utf8fileName() const
{
    parse();
    if (m_utf8fileName.empty()) m_utf8fileName = collectRfc2231Parameter(m_parameters, "filename");
    return m_utf8fileName;
}

ContentDisposition::FileType ContentDisposition::fileType() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().fileType();
}

std::list<TypeAndValue> const& ContentDisposition::parameters() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().parameters();
}

std::string const& ContentDisposition::utf8fileName() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().utf8fileName();
}

std::string const& ContentDisposition::dispositionAsString(FileType type)
{
    return ContentDispositionMapping::instance().find(type);
}

ContentDisposition::FileType ContentDisposition::stringAsDisposition(std::string const& text)
{
    return ContentDispositionMapping::instance().find(text);
}

} // namespace Velmara
