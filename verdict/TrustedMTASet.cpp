#include <velmara/TrustedMTASet.h>

#include <algorithm>
#include <memory>

namespace Velmara {

namespace {

using _Networks = std::set<IPAddressMask>;

_Networks::const_iterator _firstWith(_Networks const& networks, IPAddress const& address)
{
    return std::find_if(networks.begin(), networks.end(),
                        [&](IPAddressMask const& network) { return network.matches(address); });
}

} // namespace

TrustedMTASet::TrustedMTASet() = default;

TrustedMTASet::~TrustedMTASet() = default;

std::set<IPAddressMask>::const_iterator TrustedMTASet::mtafind(IPAddress const& address) const
{
    return _firstWith(trustedMTAs, address);
}

std::set<IPAddressMask>::const_iterator TrustedMTASet::antispamMtaFind(IPAddress const& address) const
{
    return _firstWith(trustedAntiSpamMTAs, address);
}

bool TrustedMTASet::isTrustedMTA(IPAddress const& address) const
{
    return mtafind(address) != trustedMTAs.end();
}

bool TrustedMTASet::isTrustedAntiSpamMTA(IPAddress const& address) const
{
    return antispamMtaFind(address) != trustedAntiSpamMTAs.end();
}

bool TrustedMTASet::isTrusted(IPAddress const& address) const
{
    return isTrustedMTA(address) || isTrustedAntiSpamMTA(address);
}

TrustedMTASetRef::TrustedMTASetRef() : Ref(new TrustedMTASet, false)
{}

TrustedMTASetRef::~TrustedMTASetRef() = default;

TrustedMTASetRef& TrustedMTASetRef::instance(bool renew)
{
    // Never destroyed at exit: daemons may still ask while other objects of the process go.
    static auto& current = *new std::unique_ptr<TrustedMTASetRef>(new TrustedMTASetRef);
    if (renew) current = std::make_unique<TrustedMTASetRef>();
    return *current;
}

} // namespace Velmara
