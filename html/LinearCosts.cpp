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

    xmlDtd noDtd{}; // stands in the document for the DTD that it does not have
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

// Of a document without a DTD. Where an element goes, and whether a DTD is read, depends on the true first node.

void _showNoDtd(Attached& attached, xmlDoc& document)
{
    if (document.children && document.children->type == XML_DTD_NODE) return;
    auto* const node = reinterpret_cast<xmlNode*>(&attached.noDtd);
    node->type = XML_DTD_NODE;
    node->parent = reinterpret_cast<xmlNode*>(&document);
    node->next = document.children;
    (node->next ? node->next->prev : document.last) = node;
    document.children = node;
}

void _hideNoDtd(Attached& attached, xmlDoc& document)
{
    auto* const node = reinterpret_cast<xmlNode*>(&attached.noDtd);
    if (document.children != node) return;
    document.children = node->next;
    (node->next ? node->next->prev : document.last) = nullptr;
}

// The events, called by C code with the parser as their context.

xmlParserCtxt& _parser(void* context)
{
    return *static_cast<xmlParserCtxt*>(context);
}

/// While it lives, the document begins with its true first node.
class TrueBeginning {
public:
    explicit TrueBeginning(void* context) : m_parser(_parser(context))
    {
        if (m_parser.myDoc) _hideNoDtd(_attachedTo(m_parser), *m_parser.myDoc);
    }
    TrueBeginning(TrueBeginning const&) = delete;
    TrueBeginning& operator=(TrueBeginning const&) = delete;
    ~TrueBeginning()
    {
        if (m_parser.myDoc) _showNoDtd(_attachedTo(m_parser), *m_parser.myDoc);
    }

private:
    xmlParserCtxt& m_parser;
};

void _startDocument(void* context)
{
    TrueBeginning const beginning(context);
    xmlSAX2StartDocument(context);
}

void _internalSubset(void* context, xmlChar const* name, xmlChar const* externalId, xmlChar const* systemId)
{
    TrueBeginning const beginning(context);
    xmlSAX2InternalSubset(context, name, externalId, systemId);
}

void _startElement(void* context, xmlChar const* name, xmlChar const** attributes)
{
    {
        TrueBeginning const beginning(context);
        xmlSAX2StartElement(context, name, attributes);
    }
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
    _renewNames(_parser(context));
}

void _comment(void* context, xmlChar const* text)
{
    xmlSAX2Comment(context, text);
    xmlNode* const parent = _parser(context).node;
    xmlNode* const node = parent ? parent->last : nullptr;
    if (!node || node->type != XML_COMMENT_NODE) return; // there was no memory for it
    if (!node->prev || node->prev->type != XML_COMMENT_NODE) return;
    node->prev = node->prev->prev;
    _attachedTo(_parser(context)).commentsPointBack = true;
}

// What finish() does.

/// What libxml2 does at the end of a document, had it not found one already.
void _addDefaultDtd(xmlDoc& document)
{
    if (xmlGetIntSubset(&document)) return;
    auto const text = [](char const* ascii) { return reinterpret_cast<xmlChar const*>(ascii); };
    document.intSubset = xmlCreateIntSubset(&document, text("html"), text("-//W3C//DTD HTML 4.0 Transitional//EN"),
                                            text("http://www.w3.org/TR/REC-html40/loose.dtd"));
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
    parser.sax->startDocument = _startDocument;
    parser.sax->internalSubset = _internalSubset;
    parser.sax->startElement = _startElement;
    parser.sax->characters = _characters;
    parser.sax->processingInstruction = _processingInstruction;
    parser.sax->comment = _comment;
}

void LinearCosts::finish(xmlParserCtxt& parser) noexcept
{
    Attached& attached = _attachedTo(parser);
    if (!parser.myDoc) return;
    _hideNoDtd(attached, *parser.myDoc);
    _addDefaultDtd(*parser.myDoc);
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
