#pragma once

#include <velmara/Buffer.h>
#include <velmara/ContentType.h>
#include <velmara/Hasher.h>

namespace Velmara {

/// Chooses the hasher of a part, and how much of the body to read for it.
class VELMARA_EXPORT HasherFactory {
public:
    /// How many bytes of a body to hand over at the first attempt. Pages get most, because heads and
    /// styles come first; files whose name ends like that of an office document or a signature more
    /// than others. A part without a type counts as text.
    static unsigned int maxHashBufSize(ContentType const& type);

    /// By the declared type. A part without one counts as plain text; HTML, plain text, JPEG, GIF and PNG
    /// get their own hashers, everything else, other text and images included, a BinaryHasher of
    /// `maxlen` bytes.
    static Hasher createHasher(ContentType const& type, unsigned int maxlen);
    /// By the content, through FileMagic, whose exceptions travel to the caller: text without regard to
    /// its kind, but for HTML. The data is not processed.
    static Hasher createHasher(Buffer const& data);
};

} // namespace Velmara
