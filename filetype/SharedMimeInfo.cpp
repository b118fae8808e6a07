// Two questions are asked of the records, which types the name fits and which test of the content
// wins, and one decision is made of the answers: the content beats the name, unless the content is
// a container that the name refines. "report.docx" that begins like a ZIP is a document, since the
// database says that documents are a kind of ZIP; "x.zzz" with the same bytes is a ZIP, and
// "photo.jpg" that begins like a PDF is a PDF. The indexes answer the two questions at a small part of
// what a walk over all records costs.
//
// `explain` asks the same questions and goes through the same decision; only there every test of the
// database is tried, since people want to see what lost as well.
#include <velmara/SharedMimeInfo.h>

#include <fcntl.h>
#include <libxml/parser.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>

#include <velmara/Installation.h>

#include "filetype/GlobIndex.h"
#include "filetype/MagicIndex.h"
#include "filetype/MatchReader.h"
#include "filetype/TypeCodes.h"
#include "runtime/Ascii.h"
#include "runtime/QuietXml.h"

namespace Velmara {

namespace {

using Reason = MimeTypeExplanation::Reason;

constexpr char _inMemory[] = "(memory)"; // in place of the path

/// Answers that stand for no record.
std::string const _emptyInput = "ErrorEmptyInput";
std::string const _noMatch = "ErrorNoMatched";
std::string const _plainText = "text/plain";
std::string const _octets = "application/octet-stream";

/// Contents that many formats are made of; a name may say which.
std::string const _containers[] = {"application/zip", "application/gzip", "application/x-bzip"};

/// The codes stand in the library and not in the database: callers store them, whatever database they
/// have. Word, Excel, PowerPoint and bare OLE storage share a code, and so do the Office Open XML
/// documents: policies treat each of the two families alike.
constexpr TypeCode _typeCodes[] = {
    {1, "text/rtf"},
    {1, "application/rtf"},
    {4, "application/pdf"},
    {4, "application/x-pdf"},
    {4, "image/pdf"},
    {4, "application/acrobat"},
    {5, "text/epilogue"},
    {6, "text/preamble"},
    {7, "message/rfc822"},
    {7, "text/rfc822-headers"},
    {7, "text/rfc822"},
    {7, "text/x-mail"},
    {7, "application/data-smtp"},
    {7, "application/data-RFC"},
    {7, "application/data-MIME"},
    {8, "application/vnd.ms-powerpoint"},
    {8, "application/mspowerpoint"},
    {8, "application/x-mspowerpoint"},
    {8, "application/powerpoint"},
    {8, "application/msoffice"},
    {8, "application/msword"},
    {8, "application/vnd.ms-word"},
    {8, "application/x-msword"},
    {8, "zz-application/zz-winassoc-doc"},
    {8, "application/vnd.ms-excel"},
    {8, "application/msexcel"},
    {8, "application/x-msexcel"},
    {8, "zz-application/zz-winassoc-xls"},
    {8, "application/x-ole-storage"},
    {9, "application/ms-tnef"},
    {9, "application/vnd.ms-tnef"},
    {10, "Document/MSOffice"},
    {10, "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {10, "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {10, "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    {11, "internal-doc/vbadoc"},
    {11, "executable/vba"},
    {13, "application/x-karbon"},
    {13, "application/Karbon"},
    {13, "application/x-kchart"},
    {13, "application/KChart"},
    {13, "application/x-kformula"},
    {13, "application/KFormula"},
    {13, "application/x-kivio"},
    {13, "application/Kivio"},
    {13, "application/x-kontour"},
    {13, "application/Kontour"},
    {13, "application/x-kpresenter"},
    {13, "application/KPresenter"},
    {13, "application/x-kspread"},
    {13, "application/KSpread"},
    {13, "application/x-kword"},
    {13, "application/KWord"},
    {13, "application/vnd.sun.xml.writer"},
    {13, "application/OWriter1.x"},
    {13, "application/OWriter2.x"},
    {13, "application/vnd.sun.xml.calc"},
    {13, "application/OCalc1.x"},
    {13, "application/vnd.sun.xml.draw"},
    {13, "application/ODraw1.x"},
    {13, "application/ODrawing2.x"},
    {13, "application/vnd.sun.xml.impress"},
    {13, "application/OImpress1.x"},
    {13, "application/OPresentation2.x"},
    {13, "application/vnd.sun.xml.math"},
    {13, "application/OMath1.x"},
    {13, "application/OSpreadsheet2.x"},
    {13, "application/OChart2.x"},
    {13, "application/OFormula2.x"},
    {13, "application/ODatabase2.x"},
    {13, "application/OImage2.x"},
    {13, "application/vnd.oasis.opendocument.text"},
    {13, "application/vnd.oasis.opendocument.spreadsheet"},
    {13, "application/vnd.oasis.opendocument.presentation"},
    {13, "application/vnd.oasis.opendocument.graphics"},
    {15, "application/zip"},
    {15, "application/x-zip-compressed"},
    {15, "application/x-zip"},
    {16, "application/archive-tar"},
    {16, "application/x-tar"},
    {16, "application/x-gtar"},
    {17, "application/archive-gzip"},
    {17, "application/x-gzip"},
    {17, "application/gzip"},
    {17, "application/x-compressed-tar"},
    {17, "application/x-cpio-compressed"},
    {18, "application/archive-bzip2"},
    {18, "application/x-bzip2"},
    {18, "application/x-bzip"},
    {18, "application/x-bzip-compressed-tar"},
    {19, "application/archive-rar"},
    {19, "application/x-rar"},
    {19, "application/x-rar-compressed"},
    {20, "application/x-7z-compressed"},
    {20, "application/archive-7-zip"},
    {21, "application/vnd.ms-cab-compressed"},
    {21, "application/archive-Cabinet"},
    {22, "application/x-uuencode"},
    {22, "application/x-uuencode-explicit"},
    {22, "text/x-uuencode"},
    {22, "zz-application/zz-winassoc-uu"},
    {23, "text/plain"},
    {24, "text/real-plain"},
    {24, "text/vnd.rn-realtext"},
    {25, "text/html"},
    {27, "application/x-zerosize"},
    {27, "application/x-empty"},
    {31, "image/jpeg"},
    {31, "image/pjpeg"},
    {32, "image/gif"},
    {33, "image/png"},
    {34, "image/tiff"},
    {35, "image/x-photo-cd"},
    {36, "image/x-fpx"},
    {41, "video/vnd.rn-realvideo"},
    {41, "video/x-real-video"},
    {42, "video/mp4"},
    {42, "video/x-m4v"},
    {43, "video/x-msvideo"},
    {44, "application/vnd.ms-asf"},
    {45, "video/x-flv"},
    {45, "application/x-flash-video"},
    {45, "flv-application/octet-stream"},
    {45, "video/flv"},
    {46, "video/x-ms-wmv"},
    {47, "video/quicktime"},
    {51, "audio/mpeg"},
    {51, "audio/x-mp3"},
    {51, "audio/x-mpeg"},
    {51, "audio/mp3"},
    {52, "audio/x-ms-wma"},
    {52, "audio/wma"},
    {53, "audio/x-wav"},
    {53, "audio/wav"},
    {53, "audio/vnd.wave"},
    {54, "audio/midi"},
    {55, "audio/ogg"},
    {55, "audio/x-ogg"},
    {56, "audio/vnd.rn-realaudio"},
    {56, "audio/x-pn-realaudio"},
    {56, "audio/vnd.m-realaudio"},
    {60, "application/x-executable"},
    {61, "application/x-ms-dos-executable"},
    {61, "x-content/win32-software"},
    {61, "application/executable-MS"},
    {61, "application/executable-MS-DOS"},
    {61, "application/executable-COM"},
    {62, "application/x-pef-executable"},
    {63, "application/x-perl"},
    {64, "application/x-ruby"},
    {65, "application/x-shellscript"},
    {65, "text/x-sh"},
    {66, "text/x-python"},
    {67, "application/x-gamecube-rom"},
    {67, "application/x-wii-rom"},
    {67, "application/x-wii-iso-image"},
    {67, "application/x-wbfs"},
    {67, "application/x-wia"},
    {70, "application/vnd.openxmlformats-officedocument.visio"},
    {71, "application/vnd.visio"},
    {71, "application/visio"},
    {71, "image/visio"},
};
static_assert(std::size(_typeCodes) == 162, "a type is missing, or one was added");

// ---- reading the file -------------------------------------------------------------------------

/// Closes at the end of the scope; libxml2 reads from it and leaves it open.
class File : private NonCopyable {
public:
    explicit File(std::string const& path) : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~File()
    {
        if (descriptor >= 0) ::close(descriptor);
    }
    int const descriptor; // -1 if it could not be opened
};

struct Freed {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, Freed>;

[[noreturn]] void _refuse(std::string const& path, std::string const& reason, unsigned int line)
{
    Exception failure("SharedMimeInfoImpl", 6, "SharedMimeInfo", line);
    failure.stringParameter(path + ": " + reason);
    throw failure;
}

/// What `read` makes of a source; throws if that is no XML.
template <class Read> Document _parsed(std::string const& source, Read read)
{
    QuietXml const quiet(nullptr);
    Document document(read());
    quiet.check();
    if (!document || !xmlDocGetRootElement(document.get())) _refuse(source, quiet.words(), __LINE__);
    return document;
}

/// Throws for a file that cannot be opened or is no XML.
Document _parse(std::string const& path)
{
    File const file(path);
    if (file.descriptor < 0) _refuse(path, std::generic_category().message(errno), __LINE__);
    return _parsed(path, [&] { return xmlReadFd(file.descriptor, nullptr, nullptr, 0); });
}

Document _parse(Buffer const& xml)
{
    if (xml.length() > static_cast<unsigned int>(std::numeric_limits<int>::max()))
        _refuse(_inMemory, std::generic_category().message(EFBIG), __LINE__);
    return _parsed(_inMemory, [&] {
        return xmlReadMemory(reinterpret_cast<char const*>(xml.data()), static_cast<int>(xml.length()), nullptr,
                             nullptr, 0);
    });
}

// ---- deciding ---------------------------------------------------------------------------------

/// White space is no control character here, DEL is one.
bool _isControl(uchar_t c)
{
    return (c < ' ' && !isCSpace(c)) || c == 0x7F;
}

/// Only the first 32 bytes can speak against text, and any byte of another character set speaks for it.
bool _looksLikeText(Buffer const& data)
{
    uchar_t const* const begin = data.data();
    uchar_t const* const end = begin + data.length();
    uchar_t const* const judged = begin + std::min(data.length(), 32u);
    uchar_t const* const settled = std::find_if(begin, judged, [](uchar_t c) { return c == 0 || c >= 0x80; });
    if (settled != judged) return *settled != 0;
    return std::none_of(begin, judged, _isControl) || std::any_of(judged, end, [](uchar_t c) { return c >= 0x80; });
}

using GlobHits = std::vector<MimeTypeExplanation::GlobHit>;

/// Each type enters with the first of its patterns that fits. A later one of the same type raises the
/// weight that is asked for but is not entered, so it can put its own type out of the race.
GlobHits _candidates(std::vector<GlobIndex::Entry const*> const& fitting)
{
    GlobHits hits;
    if (fitting.empty()) return hits;
    int weight = fitting.front()->glob->weight;
    for (GlobIndex::Entry const* entry : fitting) weight = std::max(weight, entry->glob->weight);
    size_t longest = 0;
    for (GlobIndex::Entry const* entry : fitting) {
        bool const first = hits.empty() || hits.back().type != entry->type;
        bool const heavy = first && entry->glob->weight == weight;
        if (heavy) longest = std::max(longest, entry->glob->pattern.size());
        hits.push_back({entry->type, entry->glob, heavy});
    }
    for (auto& hit : hits) hit.kept = hit.kept && hit.glob->pattern.size() == longest;
    return hits;
}

std::vector<SharedMimeType const*> _keptTypes(GlobHits const& hits)
{
    std::vector<SharedMimeType const*> types;
    for (auto const& hit : hits)
        if (hit.kept) types.push_back(hit.type);
    return types;
}

bool _isEmpty(Buffer const& data, std::string const& fileName)
{
    return fileName.empty() && data.length() < 2;
}

} // namespace

struct SharedMimeInfoImpl::Decision {
    Reason reason;
    std::string const& mimeType;
};

SharedMimeInfoImpl::SharedMimeInfoImpl() : SharedMimeInfoImpl(Installation::typeDatabase())
{}

SharedMimeInfoImpl::SharedMimeInfoImpl(std::string const& path)
{
    build(_parse(path).get());
}

SharedMimeInfoImpl::SharedMimeInfoImpl(Buffer const& xml)
{
    build(_parse(xml).get());
}

SharedMimeInfoImpl::~SharedMimeInfoImpl() = default;

SharedMimeInfoImpl& SharedMimeInfoImpl::instance()
{
    static SharedMimeInfoImpl* const one = new SharedMimeInfoImpl;
    return *one;
}

void SharedMimeInfoImpl::build(_xmlDoc* document)
{
    QuietXml const quiet(nullptr);
    InitMimeTypeList(xmlDocGetRootElement(document));
    quiet.check(); // an attribute for which there was no memory looks like none
    InitMimeFiletypeTable();
    buildIndexes();
}

void SharedMimeInfoImpl::InitMimeTypeList(_xmlNode const* root)
{
    for (xmlNode const* child = root->children; child; child = child->next)
        if (auto type = readMimeType(child)) m_types.push_back(std::move(*type));
    for (SharedMimeType const& type : m_types) m_names.insert(type.mimeType);
}

void SharedMimeInfoImpl::InitMimeFiletypeTable()
{
    m_codes = codesByType(_typeCodes);
}

void SharedMimeInfoImpl::buildIndexes()
{
    for (SharedMimeType const& type : m_types) m_byName.emplace(type.mimeType, &type);
    m_globs = std::make_unique<GlobIndex const>(m_types);
    m_magics = std::make_unique<MagicIndex const>(m_types);
}

std::string const& SharedMimeInfoImpl::mimeType(Buffer const& data, std::string const& fileName) const
{
    if (_isEmpty(data, fileName)) return _emptyInput;
    std::vector<SharedMimeType const*> byName;
    if (!fileName.empty()) byName = _keptTypes(_candidates(m_globs->fitting(fileName)));
    MagicIndex::Entry const* const byContent = data.length() < 2 ? nullptr : m_magics->best(data.data(), data.length());
    return decide(data, byContent ? byContent->type : nullptr, byName).mimeType;
}

MimeTypeExplanation SharedMimeInfoImpl::explain(Buffer const& data, std::string const& fileName) const
{
    MimeTypeExplanation why{{}, {}, MimeTypeExplanation::EmptyInput, &_emptyInput};
    if (_isEmpty(data, fileName)) return why;
    if (!fileName.empty()) why.globs = _candidates(m_globs->fitting(fileName));
    SharedMimeType const* byContent = nullptr;
    if (data.length() >= 2) {
        for (MagicIndex::Entry const& entry : m_magics->holding(data.data(), data.length()))
            why.magics.push_back({entry.type, entry.magic, entry.match});
        if (auto const* best = m_magics->best(data.data(), data.length())) byContent = best->type;
    }
    Decision const decision = decide(data, byContent, _keptTypes(why.globs));
    why.reason = decision.reason;
    why.mimeType = &decision.mimeType;
    return why;
}

SharedMimeInfoImpl::Decision SharedMimeInfoImpl::decide(Buffer const& data, SharedMimeType const* byContent,
                                                        std::vector<SharedMimeType const*> const& byName) const
{
    if (byContent && byName.empty()) return {Reason::ContentAlone, byContent->mimeType};
    if (byContent) {
        std::string const& content = byContent->mimeType;
        if (std::find(std::begin(_containers), std::end(_containers), content) == std::end(_containers))
            return {Reason::ContentOverName, content};
        SharedMimeType const* const inner = ofContainer(content, byName);
        return inner ? Decision{Reason::NameWithinContainer, inner->mimeType}
                     : Decision{Reason::ContainerWithoutName, content};
    }
    if (!byName.empty()) return {Reason::NameAlone, byName.front()->mimeType};
    if (data.length() < 2) return {Reason::NothingMatched, _noMatch};
    return _looksLikeText(data) ? Decision{Reason::LooksLikeText, _plainText} : Decision{Reason::LooksBinary, _octets};
}

/// The first type by name that is a kind of the container, null if there is none.
SharedMimeType const* SharedMimeInfoImpl::ofContainer(std::string const& container,
                                                      std::vector<SharedMimeType const*> const& byName) const
{
    auto const kind = std::find_if(byName.begin(), byName.end(), [&](SharedMimeType const* type) {
        return isMimeTypeEqualOrSubclassOf(type->mimeType, container);
    });
    return kind == byName.end() ? nullptr : *kind;
}

unsigned int SharedMimeInfoImpl::type(std::string const& mimeType) const
{
    return codeOf(m_codes, mimeType);
}

bool SharedMimeInfoImpl::isMimeTypeEqualOrSubclassOf(std::string const& type, std::string const& parent) const
{
    // Parents may form rings, so each name is looked at once.
    std::set<std::string> seen{type};
    std::vector<std::string const*> open{&*seen.begin()};
    while (!open.empty()) {
        std::string const& name = *open.back();
        open.pop_back();
        auto const [from, to] = m_byName.equal_range(name);
        if (from == to) continue;
        if (name == parent || (parent == _plainText && name.compare(0, 5, "text/") == 0) ||
            (parent == _octets && name.compare(0, 6, "inode/") != 0))
            return true;
        for (auto record = from; record != to; ++record)
            for (std::string const& next : record->second->subClassOf) {
                auto const [place, isNew] = seen.insert(next);
                if (isNew) open.push_back(&*place);
            }
    }
    return false;
}

void SharedMimeInfo::init()
{
    SharedMimeInfoImpl::instance();
}

std::string const& SharedMimeInfo::mimeType(Buffer const& data, std::string const& fileName)
{
    return SharedMimeInfoImpl::instance().mimeType(data, fileName);
}

MimeTypeExplanation SharedMimeInfo::explain(Buffer const& data, std::string const& fileName)
{
    return SharedMimeInfoImpl::instance().explain(data, fileName);
}

unsigned int SharedMimeInfo::type(std::string const& mimeType)
{
    return SharedMimeInfoImpl::instance().type(mimeType);
}

bool SharedMimeInfo::isMimeTypeEqualOrSubclassOf(std::string const& type, std::string const& parent)
{
    return SharedMimeInfoImpl::instance().isMimeTypeEqualOrSubclassOf(type, parent);
}

std::set<std::string> const& SharedMimeInfo::mimeTypeList()
{
    return SharedMimeInfoImpl::instance().mimeTypeList();
}

} // namespace Velmara
