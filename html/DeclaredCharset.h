#pragma once

struct _xmlNode;

namespace Velmara {

class MediaOut;

/// Tells `output` the character set that a `meta` element declares: that of "content", if there is an
/// "http-equiv", whatever it says. Empty values count as absent, and of several the last one counts.
void tellDeclaredCharset(_xmlNode const* meta, MediaOut& output);

} // namespace Velmara
