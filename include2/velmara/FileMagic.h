#pragma once

#include <map>
#include <memory>
#include <string>

#include <velmara/Buffer.h>
#include <velmara/Mutex.h>

struct magic_set;

namespace Velmara {

/// The real type of a body: the facade over the type database of the installation (SharedMimeInfo,
/// which tells how an answer comes about and what the first question may throw).
class VELMARA_EXPORT FileMagic {
public:
    /// Both give the type of a content under a name, either of which may be empty.
    static std::string mimeType(Buffer const& data, std::string const& name);
    static std::string mimeTypeAll(Buffer const& data, std::string const& name);
    /// The file type code of a type, 0 for one without.
    static unsigned int type(std::string const& mimeType);
};

/// The older detector: libmagic with a magic file of the appliance, whose types have names of their
/// own ("application/archive-Zip", "Document/MSOffice"). The facade above does not ask it.
///
/// Safe from any thread, but one at a time: libmagic's handle cannot be shared, so questions wait for
/// each other.
class VELMARA_EXPORT MagicImpl : private NonCopyable {
public:
    /// With the magic file of the installation. If libmagic cannot be set up, Exception (message
    /// "MagicImpl", code 6); for a magic file that cannot be loaded with libmagic's words as string
    /// parameter.
    MagicImpl();
    /// With another magic file, compiled or not, or a directory of them; for tools and tests.
    explicit MagicImpl(std::string const& path);
    virtual ~MagicImpl();

    /// The object of the process, made at first use and never destroyed. If that fails, the exception
    /// travels to the caller and the next call tries again.
    static MagicImpl& instance();

    /// The type of a content; "application/x-empty" for less than two bytes, "" if libmagic fails.
    /// With `whole`, all that libmagic says from the first letter or digit on, which may be several
    /// lines; otherwise up to the first white space, ";" or ",", and only what can be printed.
    std::string mimeType(Buffer const& data, bool whole) const;

    /// The file type code of a type, 0 for "" and for a type without one. Nearly the numbers of
    /// SharedMimeInfo, but Word and Excel have their own here, and many types have none.
    unsigned int type(std::string const& mimeType) const;

private:
    struct Closed {
        void operator()(magic_set* magic) const;
    };

    mutable Mutex m_mutex; // held while libmagic works
    std::unique_ptr<magic_set, Closed> m_magic;
    std::map<std::string, unsigned int> m_codes;
};

} // namespace Velmara
