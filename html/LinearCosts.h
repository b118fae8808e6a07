#pragma once

#include <libxml/parser.h>

namespace Velmara {
namespace HTML {

/// Keeps libxml2's parser of HTML from three costs that grow with the square of a page. Its trees stay what they are.
///
/// - It looks for each name (of elements, attributes, references) in a dictionary whose table stops growing at 4608
///   places. It now gets an empty one whenever its own has filled such a table. It compares names by their letters
///   alone and its trees hold copies; names to which it still has pointers stay where they are as long as it lives.
/// - At blanks it goes back over all comments in front of them. While it parses, a comment that follows another one
///   points back to what stands before them all.
/// - At blanks in the body it goes through the document for a DTD. While it parses, it finds one at once that says
///   nothing.
namespace LinearCosts {

/// For a parser that has not begun; takes its `_private` and its events. Throws std::bad_alloc.
void attach(xmlParserCtxt& parser);
/// Gives the tree its usual form, once the parser has done its work.
void finish(xmlParserCtxt& parser) noexcept;
/// After the parser has been freed, with what its `_private` was.
void free(void* attached) noexcept;

/// From now on the parser forgets names beyond some 20 KB of different ones: no dictionary follows.
void limitNames(xmlParserCtxt& parser);
/// To be called with each complaint of the parser: names that it drops cause no event.
void complained(xmlParserCtxt& parser) noexcept;

} // namespace LinearCosts
} // namespace HTML
} // namespace Velmara
