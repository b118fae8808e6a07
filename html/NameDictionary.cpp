#include "html/NameDictionary.h"

#include <libxml/SAX2.h>
#include <libxml/dict.h>

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

/// What a parser's `_private` points to.
struct Attached {
    bool limited = false;
    std::vector<std::unique_ptr<xmlDict, Freed>> full;
};

Attached& _attachedTo(xmlParserCtxt& parser)
{
    return *static_cast<Attached*>(parser._private);
}

// The events, called by C code with the parser as their context.

void _renew(void* parser)
{
    NameDictionary::renew(*static_cast<xmlParserCtxt*>(parser));
}

void _startElement(void* parser, xmlChar const* name, xmlChar const** attributes)
{
    xmlSAX2StartElement(parser, name, attributes);
    _renew(parser);
}

/// A reference that is unknown is text.
void _characters(void* parser, xmlChar const* text, int length)
{
    xmlSAX2Characters(parser, text, length);
    _renew(parser);
}

void _processingInstruction(void* parser, xmlChar const* target, xmlChar const* data)
{
    xmlSAX2ProcessingInstruction(parser, target, data);
    _renew(parser);
}

} // namespace

void NameDictionary::attach(xmlParserCtxt& parser)
{
    parser._private = new Attached;
    parser.sax->startElement = _startElement;
    parser.sax->characters = _characters;
    parser.sax->processingInstruction = _processingInstruction;
}

void NameDictionary::free(void* attached)
{
    delete static_cast<Attached*>(attached);
}

void NameDictionary::limit(xmlParserCtxt& parser)
{
    _attachedTo(parser).limited = true;
    xmlDictSetLimit(parser.dict, _mostBytes);
}

void NameDictionary::renew(xmlParserCtxt& parser) noexcept
{
    Attached& attached = _attachedTo(parser);
    if (attached.limited || xmlDictSize(parser.dict) < _mostNames) return;
    // Without memory for another the parser just goes on with the one it has.
    std::unique_ptr<xmlDict, Freed> fresh(xmlDictCreate());
    if (!fresh) return;
    try {
        attached.full.emplace_back(nullptr);
    } catch (std::bad_alloc const&) {
        return;
    }
    attached.full.back().reset(parser.dict);
    parser.dict = fresh.release();
}

} // namespace HTML
} // namespace Velmara
