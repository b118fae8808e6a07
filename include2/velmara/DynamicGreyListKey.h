#pragma once

#include <string>

#include <velmara/EmailAddress.h>
#include <velmara/IPAddress.h>

namespace Velmara {

/// Under what a dynamic grey list files a sender: the network it comes from and the domain it names.
class VELMARA_EXPORT DynamicGreyListKey {
public:
    /// An empty key.
    DynamicGreyListKey() = default;
    /// With the domain of the address; that of a null address is empty.
    DynamicGreyListKey(IPAddressMask const& from, EmailAddress const& sender);

    /// True if either half is missing: such a sender cannot be filed.
    bool empty() const;

    /// The two halves.
    IPAddressMask network;
    std::string domain;
};

} // namespace Velmara
