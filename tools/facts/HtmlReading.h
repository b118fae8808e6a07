#pragma once

#include <string>
#include <string_view>

#include <velmara/MediaIn.h>

#include "MessageFacts.h"

/// An HTML body as a reader sees it, with what is hidden from it.
namespace VelmaraCommand {

/// How a body is read.
struct HtmlWanted {
    std::string charset;         // of the part; "" for none
    bool heedDeclaration = true; // the document may name a character set itself
    bool runs = true;            // the runs themselves, not only how many bytes there are
    bool links = true, images = true;
};

/// What one walk over a body comes to.
struct HtmlReading {
    HtmlFacts facts;
    std::string text;            // that a reader sees, in UTF-8
    std::string tagTokens;       // signature of the sequence of tags, "" without any
    std::string declaredCharset; // by the document itself, "" for none
};

/// Reads all of `body`, of which 150000 bytes count.
HtmlReading readHtml(Velmara::MediaIn body, HtmlWanted const& wanted);

struct ViewName {
    Run::View view;
    char const *name, *label;
};
/// "colour" and "hidden by colour".
ViewName const& nameOf(Run::View view);

Json jsonOf(Run const& run);
Json jsonOf(Link const& link);
Json jsonOf(ShownImage const& image);

/// "255,0,0", as the page states it.
std::string shownColour(int const (&colour)[3]);
/// "12.5": how far its colours are from each other.
std::string shownDistance(Run const& run);

/// White space of the source, line ends above all, as single blanks.
std::string folded(std::string_view text);
/// Nothing but white space: layout of the source.
bool isLayout(std::string_view text);
/// Nothing that anybody would see: white space, and characters that show as nothing else.
bool isBlank(std::string_view text);

} // namespace VelmaraCommand
