#pragma once

#include <string>

#include <velmara/EmailAddress.h>
#include <velmara/VMRStaticCharSetFallbacks.h>

/// Header values as people and web pages should see them, and address lists as they may go back into a
/// header. No function throws for bad text: what cannot be decoded stays as it is, and a list in which
/// no address can be read gives an empty string. All may be called from any thread; the cost is that
/// of the text.
///
/// `fallbacks`, which may be null, are tried on text that has 8-bit bytes and no encoded word.
namespace Velmara {

/// A value as UTF-8 for HTML text or an attribute. What stands behind its first NUL is left out.
VELMARA_EXPORT std::string stringToHtmlEscapedUTF8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks);

/// The addresses of a list with their names decoded: "Name <address>, address". A name goes up to its
/// first NUL.
VELMARA_EXPORT std::string emailAddressToUTF8(std::string const& text, VMRStaticCharSetFallbacks const* fallbacks);
/// The same for HTML: the brackets come out as "&lt;" and "&gt;".
VELMARA_EXPORT std::string emailAddressToHtmlEscapedUTF8(std::string const& text,
                                                         VMRStaticCharSetFallbacks const* fallbacks);

/// The addresses of a list, given in UTF-8, as the value of a header: names with 8-bit bytes become
/// encoded words, others stay as they stand and are not quoted.
VELMARA_EXPORT std::string stringToValidEmailAddressRfc822HeaderValue(std::string const& text);

/// `<`, `>`, `"` and `&` as character references. A NUL in a text that has one of the four is dropped;
/// a text without any is copied whole.
VELMARA_EXPORT std::string vmara_html_encode(std::string const& text);

} // namespace Velmara

/// An address for a web page: its name with encoded words decoded and escaped for HTML, and
/// " &lt;ADDRESS&gt;" behind it; without a name "&lt;ADDRESS&gt;". Gives the length of what stands in
/// `dst`, which always ends with a NUL; -1 if an argument is null or 0. What does not fit is cut off, ahead
/// of a character or reference that would be halved.
///
/// Limits: decoded words keep the character set that they were written in. The address is not escaped:
/// one with a quoted local part can hold markup, so a page that shows any address escapes it itself.
extern "C" VELMARA_EXPORT long vmara_emailaddress_get_decoded_html(Velmara::EmailAddress const* address, char* dst,
                                                                   unsigned long size);

namespace Velmara {
using ::vmara_emailaddress_get_decoded_html;
} // namespace Velmara
