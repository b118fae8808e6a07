#pragma once

#include <velmara/MediaOut.h>

namespace Velmara {

/// Undoes Base64 (RFC 2045) on the way to another sink. It only decodes; Base64MediaOut encodes.
///
/// Writes may be cut anywhere: the unit is the group of four characters, counted without white space,
/// and what is left of a group waits for the next write. Each write delivers its bytes at once.
///
/// Input is never refused. A strict codec (the default) gives up at the first byte that is neither
/// white space nor of the alphabet: that whole write and all that follow are passed on raw, while
/// what earlier writes decoded has gone on already. A lax one drops such bytes and decodes on. Text
/// that decodes to nothing, such as "====", makes either kind give up.
///
/// Limits: 1 to 3 characters of a begun group at `end` are dropped. Padding ends the decoding of its
/// write, not of the stream. One object serves one stream; there is no reset.
///
/// Copies share the state. On a null handle `strict` and `status` throw MediaException (code 1).
class VELMARA_EXPORT CodecBase64 : public MediaOutDecorator {
public:
    /// What `status` tells. Callers store and compare the numbers.
    enum Status {
        StatusNothingDecoded = 0,
        StatusDecoded = 1,
        StatusRaw = 2 ///< given up, for good
    };

    /// Without a downstream; `attach` gives one later.
    CodecBase64();
    explicit CodecBase64(MediaOut const& downstream);

    /// On until it is set; the class tells what either kind makes of foreign bytes.
    void strict(bool on);
    bool strict() const;
    /// One of the numbers of Status.
    int status() const;
};

} // namespace Velmara
