#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Converts from a declared character set to UTF-8 on the way to another sink, as VmaraConv does:
/// bad bytes vanish, and an unknown name passes bytes on as they are.
///
/// The set is iso-8859-1 until `characterSet` names another; an empty name changes nothing. A name that
/// differs in a byte, be it in case alone, makes the next write begin anew, and an unfinished character
/// of the old set is lost. The call is passed on in any case.
///
/// Limits: `end` and `detach` do not end the conversion. A character that is unfinished then reaches
/// its end, on the downstream that was there at the first write, when the last handle on the filter
/// goes; that sink sees further calls of `end`.
class VELMARA_EXPORT FilterUTF8MediaOut : public MediaOutDecorator {
public:
    /// Without a downstream; `attach` gives one before the first write.
    FilterUTF8MediaOut();
    explicit FilterUTF8MediaOut(MediaOut const& downstream);
};

} // namespace Velmara
