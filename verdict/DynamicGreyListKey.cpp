#include <velmara/DynamicGreyListKey.h>

namespace Velmara {

DynamicGreyListKey::DynamicGreyListKey(IPAddressMask const& from, EmailAddress const& sender)
    : network(from), domain(sender.domain())
{}

bool DynamicGreyListKey::empty() const
{
    return network.isNull() || domain.empty();
}

} // namespace Velmara
