#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velmara/HeaderContainer.h>

#include "BodyBytes.h"
#include "MessageFacts.h"

/// What a reader of a message should know of: where two programs may read it in two ways, and where it
/// shows something else than it is.
namespace VelmaraCommand {

struct OpenMultipart {
    std::string path, delimiter; // "--boundary"
};

/// What stopped a header block.
enum class HeaderEnd { EmptyLine, EndOfMessage, Delimiter, OtherLine };

/// What is known of a part only while it is read.
struct PartContext {
    HeaderEnd headerEnd = HeaderEnd::EmptyLine;
    Span headerEndLine;
    std::string headerEndText;
    std::vector<Span> headerPlaces; // of each header, in order
    std::string typeName;           // the attachment name of Content-Type
    // of text, valid while the part is judged
    BodyBytes const* body = nullptr;
    // of a multipart
    std::vector<OpenMultipart> const* around = nullptr;
    unsigned int parts = 0;
    bool isClosed = false;
};

/// Adds what there is to find of one part, at most one finding of each code, but of links.
void addPartFindings(PartFacts const& part, PartContext const& context, Velmara::HeaderContainer const& headers,
                     std::vector<Finding>& findings);

/// Adds what there is to find in the headers of the message.
void addMessageFindings(MessageFacts& facts);

/// Brings findings into the order of the parts.
void sortFindings(MessageFacts& facts);

/// The host that the text of a link names instead of the one that it reaches; null if there is none.
/// "www." in front makes no other host.
std::string const* pretendedHost(Link const& link);

/// All codes that there are.
std::vector<std::string> findingCodes();

} // namespace VelmaraCommand
