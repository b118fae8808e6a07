#pragma once

#include <string>
#include <string_view>

namespace Velmara {

/// The host that a browser reaches by this authority ("user@host:port" of a URI without control
/// characters), as Uri::hostname tells; "" for none.
std::string uriHostOfAuthority(std::string_view authority);

/// The same for the domain of a mail address, with or without the brackets of an address literal.
std::string uriHostOfDomain(std::string_view domain);

/// "%41" becomes "A"; an escape that is none stays.
std::string uriUnescaped(std::string_view text);

} // namespace Velmara
