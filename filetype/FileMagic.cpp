#include <velmara/FileMagic.h>

#include <magic.h>

#include <algorithm>
#include <iterator>

#include <velmara/Exception.h>
#include <velmara/Installation.h>
#include <velmara/SharedMimeInfo.h>

#include "filetype/TypeCodes.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

/// All matches as MIME types, raw, from the magic file and libmagic's look for plain text, JSON and
/// CSV; no unpacking and none of its built-in detectors of archives, Office files and programs, which
/// would hide what the magic file says.
constexpr int _flags = MAGIC_MIME_TYPE | MAGIC_CONTINUE | MAGIC_RAW | MAGIC_NO_CHECK_COMPRESS | MAGIC_NO_CHECK_TAR |
                       MAGIC_NO_CHECK_APPTYPE | MAGIC_NO_CHECK_CDF | MAGIC_NO_CHECK_TOKENS | MAGIC_NO_CHECK_ENCODING;
static_assert(_flags == 0x34B130, "installations must see the same types");

/// Other programs store these numbers. They are not those of the type database: here Word and Excel
/// have codes of their own.
constexpr TypeCode _typeCodes[] = {
    {1, "text/rtf"},
    {1, "application/rtf"},
    {2, "application/msword"},
    {3, "application/vnd.ms-excel"},
    {4, "application/pdf"},
    {5, "text/epilogue"},
    {6, "text/preamble"},
    {7, "text/rfc822"},
    {7, "text/x-mail"},
    {7, "application/data-smtp"},
    {7, "application/data-RFC"},
    {7, "application/data-MIME"},
    {8, "application/msoffice"},
    {9, "application/ms-tnef"},
    {10, "Document/MSOffice"},
    {12, "application/visio"},
    {12, "image/visio"},
    {13, "application/Karbon"},
    {13, "application/KChart"},
    {13, "application/KFormula"},
    {13, "application/Kivio"},
    {13, "application/Kontour"},
    {13, "application/KPresenter"},
    {13, "application/KSpread"},
    {13, "application/KWord"},
    {13, "application/OWriter1.x"},
    {13, "application/OCalc1.x"},
    {13, "application/ODraw1.x"},
    {13, "application/OImpress1.x"},
    {13, "application/OMath1.x"},
    {13, "application/OWriter2.x"},
    {13, "application/ODrawing2.x"},
    {13, "application/OPresentation2.x"},
    {13, "application/OSpreadsheet2.x"},
    {13, "application/OChart2.x"},
    {13, "application/OFormula2.x"},
    {13, "application/ODatabase2.x"},
    {13, "application/OImage2.x"},
    {15, "application/zip"},
    {15, "application/archive-Zip"},
    {16, "application/archive-tar"},
    {16, "application/x-tar"},
    {17, "application/archive-gzip"},
    {18, "application/archive-bzip2"},
    {19, "application/archive-rar"},
    {20, "application/archive-7-zip"},
    {21, "application/archive-Cabinet"},
    {22, "application/x-uuencode"},
    {22, "application/x-uuencode-explicit"},
    {23, "text/plain"},
    {24, "text/real-plain"},
    {25, "text/html"},
    {27, "application/x-empty"},
};
static_assert(std::size(_typeCodes) == 53, "a type is missing, or one was added");

bool _isPrintable(char c)
{
    return c >= ' ' && c <= '~';
}

bool _endsType(char c)
{
    return isCSpace(static_cast<unsigned char>(c)) || c == ';' || c == ',';
}

/// "text/plain" of "text/plain; charset=us-ascii".
std::string _typeAlone(std::string const& text)
{
    std::string type;
    std::copy_if(text.begin(), std::find_if(text.begin(), text.end(), _endsType), std::back_inserter(type),
                 _isPrintable);
    return type;
}

} // namespace

std::string FileMagic::mimeType(Buffer const& data, std::string const& name)
{
    return SharedMimeInfo::mimeType(data, name);
}

std::string FileMagic::mimeTypeAll(Buffer const& data, std::string const& name)
{
    return SharedMimeInfo::mimeType(data, name);
}

unsigned int FileMagic::type(std::string const& mimeType)
{
    return SharedMimeInfo::type(mimeType);
}

MagicImpl::MagicImpl() : MagicImpl(Installation::magicFile())
{}

MagicImpl::MagicImpl(std::string const& path) : m_magic(magic_open(_flags)), m_codes(codesByType(_typeCodes))
{
    if (!m_magic) throw Exception("MagicImpl", 6, "FileMagic", __LINE__);
    if (magic_load(m_magic.get(), path.c_str()) == 0) return;
    Exception failure("MagicImpl", 6, "FileMagic", __LINE__);
    char const* const words = magic_error(m_magic.get());
    failure.stringParameter(words ? words : "");
    throw failure;
}

MagicImpl::~MagicImpl() = default;

void MagicImpl::Closed::operator()(magic_set* magic) const
{
    magic_close(magic);
}

MagicImpl& MagicImpl::instance()
{
    static MagicImpl* const one = new MagicImpl;
    return *one;
}

std::string MagicImpl::mimeType(Buffer const& data, bool whole) const
{
    if (data.length() < 2) return "application/x-empty";
    std::string text;
    {
        Synchronized const guard(m_mutex);
        if (char const* const words = magic_buffer(m_magic.get(), data.data(), data.length())) text = words;
    }
    text.erase(text.begin(), std::find_if(text.begin(), text.end(), [](char c) { return isAlnum(c); }));
    return whole ? text : _typeAlone(text);
}

unsigned int MagicImpl::type(std::string const& mimeType) const
{
    return codeOf(m_codes, mimeType);
}

} // namespace Velmara
