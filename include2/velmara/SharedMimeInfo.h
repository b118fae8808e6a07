#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <velmara/Buffer.h>
#include <velmara/SharedMimeType.h>
#include <velmara/VmaraRefcounted.h>

struct _xmlDoc;
struct _xmlNode;

namespace Velmara {

class GlobIndex;
class MagicIndex;

/// A database of types: works out the type of an attachment from its first bytes and its name.
///
/// The XML file is read once by the constructor; after that an object never changes and any number of
/// threads may ask it. A broken entry of the file costs that entry alone. A question never fails. It
/// gives the answer of a plain walk over all records, but does not take the walk: names are looked up
/// by their endings, contents by the byte at each tested place.
class VELMARA_EXPORT SharedMimeInfoImpl : private NonCopyable {
public:
    /// The database of the installation. A file that is not there, or is no XML, throws Exception
    /// (message "SharedMimeInfoImpl", code 6) with the path as string parameter.
    SharedMimeInfoImpl();
    /// A database of the caller's choice, for tools and tests.
    explicit SharedMimeInfoImpl(std::string const& path);
    /// The same from XML in memory, which is not kept. What is no XML is refused with "(memory)" for the
    /// path.
    explicit SharedMimeInfoImpl(Buffer const& xml);
    ~SharedMimeInfoImpl();

    /// The object of the process, made at first use and never destroyed. If that fails, the exception
    /// travels to the caller and the next call tries again.
    static SharedMimeInfoImpl& instance();

    /// The type of a content under a name; either may be empty. Only the bytes given are looked at,
    /// and some types are known by bytes far from the start, so the caller decides how sure it wants
    /// to be. Content beats the name, but for ZIP, GZIP and BZIP: there a name that stands for a kind
    /// of that container wins, since many formats are such a container inside. Answers that are in no
    /// database: "ErrorEmptyInput" (no name and less than two bytes), "ErrorNoMatched" (the name says
    /// nothing and there are less than two bytes), and "text/plain" or "application/octet-stream" by
    /// the look of the first 32 bytes. The reference holds as long as this object.
    std::string const& mimeType(Buffer const& data, std::string const& fileName) const;
    /// The same answer with everything that was in favour of it and of others.
    MimeTypeExplanation explain(Buffer const& data, std::string const& fileName) const;

    /// The file type code of a type, 0 for "" and for a type without one. Letter case counts. The
    /// codes are the library's own: the database has no part in them.
    unsigned int type(std::string const& mimeType) const;

    /// True if `type` is `parent` or, by way of the database, a kind of it. All text is text/plain and
    /// everything but the inodes application/octet-stream. A type that is not in the database is no
    /// kind of anything, not even of itself.
    bool isMimeTypeEqualOrSubclassOf(std::string const& type, std::string const& parent) const;

    /// The names of all types.
    std::set<std::string> const& mimeTypeList() const { return m_names; }
    /// The records, in the order of the file.
    std::vector<SharedMimeType> const& types() const { return m_types; }

private:
    struct Decision;

    void build(_xmlDoc* document);
    void InitMimeTypeList(_xmlNode const* root);
    void InitMimeFiletypeTable();
    void buildIndexes();
    Decision decide(Buffer const& data, SharedMimeType const* byContent,
                    std::vector<SharedMimeType const*> const& byName) const;
    SharedMimeType const* ofContainer(std::string const& container,
                                      std::vector<SharedMimeType const*> const& byName) const;

    std::vector<SharedMimeType> m_types; // in file order, unchanged once read: the indexes point into it
    std::set<std::string> m_names;
    std::map<std::string, unsigned int> m_codes;
    std::multimap<std::string, SharedMimeType const*> m_byName;
    std::unique_ptr<GlobIndex const> m_globs;
    std::unique_ptr<MagicIndex const> m_magics;
};

/// The questions of SharedMimeInfoImpl, put to the object of the process. The first one reads the
/// database, and throws if that fails; `init` is the place to take that cost and that failure.
class VELMARA_EXPORT SharedMimeInfo {
public:
    /// As of SharedMimeInfoImpl.
    static void init();
    static std::string const& mimeType(Buffer const& data, std::string const& fileName);
    static MimeTypeExplanation explain(Buffer const& data, std::string const& fileName);
    static unsigned int type(std::string const& mimeType);
    static bool isMimeTypeEqualOrSubclassOf(std::string const& type, std::string const& parent);
    static std::set<std::string> const& mimeTypeList();
};

} // namespace Velmara
