#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Resolves HTML character references ("&lt;", "&#65;", "&#x41;") into UTF-8 on the way to another
/// sink; see unicode_str_to_utf8 for what counts as one. Anything else stays as it is.
///
/// A reference that the end of a write cuts waits for the next one, but only if that write held a
/// reference before: "abc&am" and then "p;" come out as they went in, "&lt;&am" and then "p;" give "<"
/// and "&". A write without a reference is passed on as it is, uncopied. `end`, `attach` and `detach`
/// give out raw what waits; destruction alone drops it.
class VELMARA_EXPORT FilterHtmlEscapeMediaOut : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one later.
    FilterHtmlEscapeMediaOut();
    explicit FilterHtmlEscapeMediaOut(MediaOut const& downstream);
};

/// Resolves the character references of a text into `out`, which it empties first. True if there was
/// one; without one nothing is copied and `out` stays empty. `*length` is the number of bytes, and
/// afterwards the number of those at the end that may be the beginning of a reference.
///
/// A reference is "&name;" with a name of at most nine characters that libxml2 knows (HTML 4, case
/// matters), "&#digits;" with at most ten, or "&#xdigits;" with at most eight. Numbers are kept to 32
/// bits and must not be negative as signed ones. What they denote is not judged: surrogates, zero and
/// numbers above U+10FFFF are written too, in up to six bytes.
VELMARA_EXPORT bool unicode_str_to_utf8(char* bytes, unsigned long* length, Buffer& out);

} // namespace Velmara
