#pragma once

#include <libxml/parser.h>

namespace Velmara {
namespace HTML {

/// Keeps the cost of names linear. libxml2 looks for each name of a document (of elements, attributes, references) in
/// a dictionary whose table stops growing at 4608 places, so that a page of ever new names takes time with the
/// square of its size. With these functions the parser gets an empty dictionary whenever its own has filled such a
/// table. It compares names by their letters alone and its trees hold copies, so nothing but time depends on it;
/// the names to which it still has pointers stay where they are as long as it lives.
namespace NameDictionary {

/// For a parser of HTML that has not begun; takes its `_private`. Throws std::bad_alloc.
void attach(xmlParserCtxt& parser);
/// After the parser has been freed, with what its `_private` was.
void free(void* attached);

/// From now on the parser forgets names beyond some 20 KB of different ones: no dictionary follows.
void limit(xmlParserCtxt& parser);

/// Looks whether the dictionary is full. What is attached does so with each event of the parser that a name can cause;
/// the one thing it does not see is a complaint, with which other names are dropped.
void renew(xmlParserCtxt& parser) noexcept;

} // namespace NameDictionary
} // namespace HTML
} // namespace Velmara
