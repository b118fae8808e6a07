#pragma once

#include <string>

#include <velmara/EmailAddress.h>

namespace Velmara {

/// The address as it may stand in a header: with its name, as an encoded word where it needs to be one.
std::string addressForHeader(EmailAddress const& address);

} // namespace Velmara
