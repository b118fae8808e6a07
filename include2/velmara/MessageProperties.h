#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <velmara/DynamicGreyListKey.h>
#include <velmara/EmailAddress.h>
#include <velmara/IPAddress.h>
#include <velmara/MPartAttribute.h>
#include <velmara/MimePart.h>
#include <velmara/ReceivedHeaderAnalysis.h>
#include <velmara/RefHeaderList.h>
#include <velmara/StringContainer.h>

namespace Velmara {

/// The result of a check of the sender's network (SPF).
struct VELMARA_EXPORT SPFStatus {
    /// What came out, why, and of which domain and address: numbers of whoever checked.
    std::int32_t result = 0;
    std::int32_t reason = 0;
    std::string domain;
    IPAddress address;
};

/// What tells a newsletter; the values belong to whoever looks for them.
class VELMARA_EXPORT NewsLetterStatus {
public:
    NewsLetterStatus();
    NewsLetterStatus(NewsLetterStatus const&) = default;
    NewsLetterStatus& operator=(NewsLetterStatus const&) = default;
    virtual ~NewsLetterStatus();

    /// The caller's own.
    unsigned char values[10] = {};
};

/// The result of a check of the sender's domain (DMARC).
class VELMARA_EXPORT DMARCStatus {
public:
    DMARCStatus();
    DMARCStatus(DMARCStatus const&) = default;
    DMARCStatus& operator=(DMARCStatus const&) = default;
    virtual ~DMARCStatus();

    /// The caller's own.
    unsigned char values[8] = {};
};

/// Named attributes; names are compared with their case.
class VELMARA_EXPORT MessageAttributeContainer {
public:
    /// By name.
    std::map<std::string, Ref<MPartAttribute>> const& attributes() const { return m_attributes; }

    /// Null if there is none of that name.
    MPartAttribute* attribute(std::string const& name) const;
    Ref<MPartAttribute> find(std::string const& name) const;
    /// Stores a handle, in place of one that is there.
    void attribute(std::string const& name, Ref<MPartAttribute> const& value);

private:
    std::map<std::string, Ref<MPartAttribute>> m_attributes;
};

/// The facts on one message as it passes from check to check. The library defines the record and its
/// defaults; whoever links it fills the fields, reads them, and settles what their numbers mean.
///
/// A record has no lock: one thread fills it at a time. `message` keeps a part alive as long as the
/// record lives, but a part is usable only while its Rfc822Msg lives too.
class VELMARA_EXPORT MessageProperties : public RefImpl, public NonCopyable {
public:
    MessageProperties();
    ~MessageProperties() override;

    /// From the envelope or the headers, as the caller decides.
    EmailAddress sender;
    EmailAddress recipient;
    RefHeaderList headers{true}; // a list of its own
    /// Numbers and texts of the caller's own.
    std::uint64_t size = 0;
    StringContainer strings;
    unsigned char flags[5] = {};
    unsigned char values[20] = {};
    /// What the checks found.
    ReceivedHeaderAnalysis received;
    SPFStatus spf;
    DynamicGreyListKey greyListKey;
    NewsLetterStatus newsLetter;
    DMARCStatus dmarc;
    MessageAttributeContainer attributes;
    /// The root of its message.
    Ref<MimePart> message;
};

/// Handle on such a record.
class VELMARA_EXPORT RefMessageProperties : public Ref<MessageProperties> {
public:
    /// A new record, or a null handle.
    explicit RefMessageProperties(bool create);
    RefMessageProperties(RefMessageProperties const&) = default;
    RefMessageProperties& operator=(RefMessageProperties const&) = default;
    ~RefMessageProperties() override;
};

} // namespace Velmara
