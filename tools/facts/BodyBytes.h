#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <velmara/MediaOut.h>
#include <velmara/MimePart.h>

#include "CappedSource.h"

namespace VelmaraCommand {

/// The body of one part, read while the parser is in it.
struct BodyBytes {
    std::string bytes;                         // decoded; the first 16 MiB
    std::uint64_t decodedBytes = 0;            // with what the decoder gave at its end, which is not among `bytes`
    std::uint64_t rawBytes = 0;                // as the body stands in the message
    std::optional<std::uint64_t> firstNul;     // places in the message
    std::optional<std::uint64_t> firstForeign; // that is neither of the Base64 alphabet nor white space
};

/// How a body is to be decoded.
struct BodyCodec {
    bool applies = false;
    bool isBase64 = false;
    std::string name; // "base64", ...; "" if the body is taken as it stands
};

BodyCodec codecOf(Velmara::HeaderContainer const& headers);

/// Reads the live body of a part to its end and decodes it in the pieces in which DecodeMediaIn does, for
/// what a decoder gives may depend on them. `into` is used again and again, for its memory.
void readBody(Velmara::MimePart& part, BodyCodec const& codec, CappedSource const& source, Deadline const& deadline,
              BodyBytes& into);

} // namespace VelmaraCommand
