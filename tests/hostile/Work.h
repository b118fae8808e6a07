#pragma once

#include <string>

#include <velmara/MediaOut.h>

#include "hostile/Case.h"

namespace Velmara::Hostile {

// What a scanner does with an input of some kind. Each puts all results into the sink.

/// Parses, walks and names what it finds; no body is read.
void walkTree(Input const& input, Sink& sink);
/// Parses, walks, and passes on the raw and the decoded bytes of the bodies, keeping none.
void readBodies(Input const& input, Sink& sink);
/// Everything: typed headers, decoded bodies, types, texts, links, signatures, tokens.
void analyseMessage(Input const& input, Sink& sink);
/// What the text visitor collects of a message.
void collectText(Input const& input, Sink& sink);

/// Both ways of keeping a header block: reading, finding, replacing, copying, removing.
void useHeaderBlock(Input const& input, Sink& sink);
// The input as the value of a header.
void readContentType(Input const& input, Sink& sink);
void readDisposition(Input const& input, Sink& sink);
void readReceived(Input const& input, Sink& sink);
void readReferences(Input const& input, Sink& sink);
void readListHeader(Input const& input, Sink& sink);
void readListId(Input const& input, Sink& sink);
void readAddresses(Input const& input, Sink& sink);
/// As text with encoded words, in all the ways there are to decode it.
void readHeaderText(Input const& input, Sink& sink);

/// Links in a text, and the hosts that they lead to.
void findLinks(Input const& input, Sink& sink);
/// The input as one host name, one address, one number.
void readNames(Input const& input, Sink& sink);

/// HTML of any length through all visitors.
void readHtml(Input const& input, Sink& sink, char const* charset = nullptr, bool ignoreEncoding = true);
/// The same as a body, of which the first 150000 bytes count.
void readHtmlBody(Input const& input, Sink& sink);

/// Signatures as of a text, as HTML, as an image and as a binary.
void sign(Input const& input, Sink& sink);
/// The semantic tokens of texts, which the input is cut into.
void readTokens(Input const& input, Sink& sink, char const* charset);
/// The type by name and content, by both databases. Where they are missing, that is what comes out.
void detectType(Input const& input, Sink& sink);

/// Gives the input, block by block, to a stage of the way from a body to a text; what comes out is
/// taken without being kept.
void writeThrough(Input const& input, Sink& sink, MediaOut (*stage)(MediaOut const& out), unsigned int block);
/// The same line by line, as bodies are decoded.
void writeLinesThrough(Input const& input, Sink& sink, MediaOut (*stage)(MediaOut const& out));
template <class Stage> MediaOut through(MediaOut const& out)
{
    return Stage(out);
}

/// Loads word lists that make the search for words work hardest.
void loadWords();

} // namespace Velmara::Hostile
