#include "html/LinearCosts.h"

#include <libxml/SAX2.h>
#include <libxml/dict.h>
#include <libxml/tree.h>

#include <memory>
#include <new>
#include <vector>

namespace Velmara {
namespace HTML {

namespace {

/// libxml2 stops adding names to a dictionary when all its blocks, each four times the one before, have
/// more than this: 1000, 4000 and 16000 bytes.
constexpr size_t _mostBytes = 20000;

constexpr int _mostNames = 4096;

struct Freed {
    void operator()(xmlDict* names) const { xmlDictFree(names); }
};
using Dictionary = std::unique_ptr<xmlDict, Freed>;

/// What a parser's `_private` points to.
struct Attached {
    bool namesAreLimited = false;
    std::vector<Dictionary> full;

    bool hasRoot = false;
    xmlNode* ahead = nullptr; // the first comment or instruction ahead of the root, which stays in the tree
    xmlNode* kept = nullptr;  // those behind it, in their order; their parent is the document
    xmlNode* lastKept = nullptr;

    bool commentsPointBack = false;
};

Attached& _attachedTo(xmlParserCtxt& parser)
{
    return *static_cast<Attached*>(parser._private);
}

void _renewNames(xmlParserCtxt& parser) noexcept
{
    Attached& attached = _attachedTo(parser);
    if (attached.namesAreLimited || xmlDictSize(parser.dict) < _mostNames) return;
    // Without memory for another the parser just goes on with the one it has.
    Dictionary fresh(xmlDictCreate());
    if (!fresh) return;
    try {
        attached.full.emplace_back(nullptr);
    } catch (std::bad_alloc const&) {
        return;
    }
    attached.full.back().reset(parser.dict);
    parser.dict = fresh.release();
}

/// libxml2 looks at the first node of a document to see where a further root belongs, so that one stays.
void _keepAhead(Attached& attached, xmlNode* node)
{
    if (!attached.ahead) {
        attached.ahead = node;
        return;
    }
    xmlNode* const document = node->parent;
    xmlUnlinkNode(node);
    node->parent = document;
    node->prev = attached.lastKept;
    (attached.kept ? attached.lastKept->next : attached.kept) = node;
    attached.lastKept = node;
}

/// Looks at a comment or an instruction that has just come into the tree.
void _added(xmlParserCtxt& parser)
{
    xmlNode* const parent = parser.node ? parser.node : reinterpret_cast<xmlNode*>(parser.myDoc);
    xmlNode* const node = parent ? parent->last : nullptr;
    if (!node || (node->type != XML_COMMENT_NODE && node->type != XML_PI_NODE)) return; // there was no memory for it
    Attached& attached = _attachedTo(parser);
    if (!parser.node && !attached.hasRoot) return _keepAhead(attached, node);
    if (node->type != XML_COMMENT_NODE || !node->prev || node->prev->type != XML_COMMENT_NODE) return;
    node->prev = node->prev->prev;
    attached.commentsPointBack = true;
}

// The events, called by C code with the parser as their context.

xmlParserCtxt& _parser(void* context)
{
    return *static_cast<xmlParserCtxt*>(context);
}

void _startElement(void* context, xmlChar const* name, xmlChar const** attributes)
{
    xmlSAX2StartElement(context, name, attributes);
    _attachedTo(_parser(context)).hasRoot = true;
    _renewNames(_parser(context));
}

/// A reference that is unknown is text.
void _characters(void* context, xmlChar const* text, int length)
{
    xmlSAX2Characters(context, text, length);
    _renewNames(_parser(context));
}

void _processingInstruction(void* context, xmlChar const* target, xmlChar const* data)
{
    xmlSAX2ProcessingInstruction(context, target, data);
    _added(_parser(context));
    _renewNames(_parser(context));
}

void _comment(void* context, xmlChar const* text)
{
    xmlSAX2Comment(context, text);
    _added(_parser(context));
}

// What finish() does.

void _putBack(Attached& attached, xmlDoc& document)
{
    if (!attached.kept) return;
    xmlNode* const rest = attached.ahead->next;
    attached.ahead->next = attached.kept;
    attached.kept->prev = attached.ahead;
    attached.lastKept->next = rest;
    (rest ? rest->prev : document.last) = attached.lastKept;
    attached.kept = nullptr;
}

/// Each node points back to the one before it.
void _pointBack(xmlDoc& document)
{
    for (xmlNode* node = document.children; node;) {
        if (node->next) node->next->prev = node;
        if (node->type == XML_ELEMENT_NODE && node->children) {
            node = node->children;
            continue;
        }
        while (node && !node->next) node = node->parent;
        if (node) node = node->next;
    }
}

} // namespace

void LinearCosts::attach(xmlParserCtxt& parser)
{
    parser._private = new Attached;
    parser.sax->startElement = _startElement;
    parser.sax->characters = _characters;
    parser.sax->processingInstruction = _processingInstruction;
    parser.sax->comment = _comment;
}

void LinearCosts::finish(xmlParserCtxt& parser) noexcept
{
    Attached& attached = _attachedTo(parser);
    if (!parser.myDoc) return;
    _putBack(attached, *parser.myDoc);
    if (attached.commentsPointBack) _pointBack(*parser.myDoc);
}

void LinearCosts::free(void* attached) noexcept
{
    delete static_cast<Attached*>(attached);
}

void LinearCosts::limitNames(xmlParserCtxt& parser)
{
    _attachedTo(parser).namesAreLimited = true;
    xmlDictSetLimit(parser.dict, _mostBytes);
}

void LinearCosts::complained(xmlParserCtxt& parser) noexcept
{
    _renewNames(parser);
}

} // namespace HTML
} // namespace Velmara
