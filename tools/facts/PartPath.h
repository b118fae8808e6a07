#pragma once

#include <string>
#include <vector>

#include <velmara/MimePart.h>
#include <velmara/Rfc822Msg.h>

/// How people name a part: the root is "1", its first child "1.1", the child of that "1.1.1". A
/// preamble has the number 0, and an epilogue the one behind the last part.
namespace VelmaraCommand {

enum class PartKind { Leaf, Multipart, Message, Skipped, Preamble, Epilogue };

struct PartView {
    Velmara::MimePart* part; // owned by its message
    PartKind kind;
    std::string path;
};

/// "leaf", "multipart", "message", "skipped", "preamble", "epilogue".
char const* nameOf(PartKind kind);

PartKind kindOf(Velmara::MimePart* part);

/// Whether such a part has a header block of its own; text around parts has none.
constexpr bool hasHeaders(PartKind kind)
{
    return kind != PartKind::Preamble && kind != PartKind::Epilogue;
}

/// The root of a message whose tree has been parsed to its end.
PartView finishedRootOf(Velmara::Rfc822Msg& message);

/// The children in message order; none for a leaf.
std::vector<PartView> childrenOf(PartView const& view);

/// The part itself and all below it, in message order.
std::vector<PartView> partsFrom(PartView const& root);

/// The decoded body of a part of such a message; of a container it is empty.
std::string decodedBodyOf(Velmara::MimePart& part);

/// The part that a path names; its `part` is null where there is none.
PartView findPart(PartView const& root, std::string const& path);

} // namespace VelmaraCommand
