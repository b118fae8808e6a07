#pragma once

#include <set>

#include <velmara/IPAddress.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// The networks of the MTAs that are believed: of those that relay mail, and of those that have also
/// checked it for spam. Both sets start empty, and the caller fills them.
///
/// A search asks each network of a set in its order, for the order says nothing about which network an
/// address lies in. The sets have no lock: whoever fills them keeps readers away meanwhile.
class VELMARA_EXPORT TrustedMTASet : public RefImpl, public NonCopyable {
public:
    TrustedMTASet();
    ~TrustedMTASet() override;

    /// The first network that holds the address, or the end of that set.
    std::set<IPAddressMask>::const_iterator mtafind(IPAddress const& address) const;
    std::set<IPAddressMask>::const_iterator antispamMtaFind(IPAddress const& address) const;

    /// In the one set, or the other.
    bool isTrustedMTA(IPAddress const& address) const;
    bool isTrustedAntiSpamMTA(IPAddress const& address) const;
    /// In either set.
    bool isTrusted(IPAddress const& address) const;

    /// Networks of hosts whose "Received" headers are believed, and of those that filter.
    std::set<IPAddressMask> trustedMTAs;
    std::set<IPAddressMask> trustedAntiSpamMTAs;
};

/// Handle on such sets, and the place of those that the whole process uses.
class VELMARA_EXPORT TrustedMTASetRef : public Ref<TrustedMTASet> {
public:
    /// New empty sets.
    TrustedMTASetRef();
    TrustedMTASetRef(TrustedMTASetRef const&) = default;
    TrustedMTASetRef& operator=(TrustedMTASetRef const&) = default;
    ~TrustedMTASetRef() override;

    /// The handle of the process, made at the first call. `renew` destroys it and makes one on new empty
    /// sets: this is how a changed configuration takes effect. A copy taken before keeps the old sets
    /// alive; a reference to the old handle is gone. A renewal has no lock against other callers.
    static TrustedMTASetRef& instance(bool renew);
};

} // namespace Velmara
