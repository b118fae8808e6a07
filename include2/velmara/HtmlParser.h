#pragma once

#include <memory>
#include <string>

#include <velmara/Buffer.h>
#include <velmara/Export.h>
#include <velmara/StringPattern.h>
#include <velmara/VmaraRefcounted.h>

struct _xmlNode;       // libxml2's
struct _xmlParserCtxt; // libxml2's

namespace Velmara {

/// HTML, however broken, as a walk over the nodes that libxml2's push parser makes of it.
namespace HTML {

/// Receives the events of the walk; every event does nothing unless overridden. A node lives no longer
/// than the event.
class VELMARA_EXPORT Builder {
public:
    virtual ~Builder();
    /// For users of a builder that parse in their own way; the parser calls neither this nor its twin.
    virtual void beginParsing();
    virtual void foundTag(_xmlNode const* node);
    /// The end of every node of whatever type, text and comments too, exactly once.
    virtual void endTag(_xmlNode const* node);
    virtual void foundText(_xmlNode const* node);
    virtual void foundCdata(_xmlNode const* node);
    virtual void foundComment(_xmlNode const* node);
    virtual void endParsing();
};

/// Owns one parser context of libxml2 and the document that it builds.
///
/// libxml2 is told to repair what it can, to drop blank text and to report nothing; what it would
/// still write to standard error is silenced too, on this thread and for the time of a call alone, and
/// an error handler that the caller has set is neither called nor lost.
class VELMARA_EXPORT HTMLContext : private NonCopyable {
public:
    /// With `ignoreEncoding` a character set that the document itself declares is not heeded.
    explicit HTMLContext(bool ignoreEncoding);
    virtual ~HTMLContext();

    /// Parses a whole document, once for each context; gives its root element, null if there is none. The document
    /// stays the context's own.
    virtual _xmlNode* parse(char const* chunk, unsigned int size);

    /// Selects the character set of what will be parsed. Nothing happens for null, for an unknown name
    /// and for US-ASCII, which leaves the document's own declaration in force.
    void characterSet(char const* name);
    /// libxml2's number of the character set that the context has recorded.
    int characterSet() const;
    std::string characterSetAsString() const;

    /// Writes the document, indented, to a file; nothing without a document or if that fails.
    void write(std::string const& fileName);

private:
    friend class Parser;
    struct Position;
    Position position() const;

    struct Freed {
        void operator()(_xmlParserCtxt* context) const;
    };
    std::unique_ptr<_xmlParserCtxt, Freed> m_context; // never null
};

/// One pass over one document, and the way to walk a buffer that holds several.
///
/// The parser stops before the end of the input where something stands behind `</html>`, for example.
/// `parseAll` then parses the rest as a new document, and the builder just goes on receiving events.
/// Where it goes on is decided by the position in the parser's input, which libxml2 counts anew when it
/// changes the character set and near the end of its buffer: then text is walked again.
///
/// Limits: libxml2 stops at its 257th open element and drops the rest. Of a tag with more than 1024
/// attributes the first 1024 are seen; this is the one place where the result is not libxml2's own,
/// whose cost grows with the square of their number. Where such tags can hide from that count, in
/// a document of more than 16 KB in a character set that is no superset of ASCII, or with a byte above 127 in
/// the name of a document type or an instruction, the names of elements and attributes are forgotten beyond
/// some 20 KB of different ones. A text of more than 10 MB in one element ends the document there, as libxml2
/// has it, and loses up to 1000 bytes. Exceptions of a builder pass through.
/// Threads can parse at once, each with objects of its own.
class VELMARA_EXPORT Parser : private NonCopyable {
public:
    /// The builder must outlive the parser.
    Parser(Builder& builder, bool ignoreEncoding);
    virtual ~Parser();

    /// For diagnosis, to be set before `parse`: files for the input and for the repaired document.
    void fnRaw(std::string const& fileName) { m_rawName = fileName; }
    void fnParsed(std::string const& fileName) { m_parsedName = fileName; }

    /// One pass. `charset` may be null or empty. Without a root element nothing happens at all.
    void parse(char const* data, unsigned int size, char const* charset);

    /// Whether the last pass consumed all its input.
    bool eof() const { return m_atEnd; }
    /// The bytes that the last pass consumed, counted in the parser's input buffer: behind a conversion
    /// of the character set, in converted bytes.
    unsigned int gcount() const { return m_consumed; }

    /// Walks a node with all below it and its following siblings, without recursion.
    static void traverseTree(_xmlNode const* node, Builder& builder);

    /// Walks all documents of a buffer. Nothing happens for a null pointer or no bytes.
    static void parseAll(Builder& builder, bool ignoreEncoding, char const* data, unsigned int size,
                         char const* charset);
    static void parseAll(Builder& builder, bool ignoreEncoding, Buffer const& data, char const* charset);

private:
    class Passes;
    void finish(HTMLContext& context, _xmlNode const* root, unsigned int size);

    Builder& m_builder; // not owned
    bool m_ignoreEncoding;
    std::string m_rawName;    // empty: not wanted
    std::string m_parsedName; // empty: not wanted
    // results of the last pass
    bool m_atEnd = false;
    unsigned int m_consumed = 0;
};

/// Length of a NUL-ended string of libxml2.
VELMARA_EXPORT unsigned int xmlstrlen(unsigned char const* text);
/// The first place of `part` in `text`, null if there is none.
VELMARA_EXPORT unsigned char const* xmlstrstr(unsigned char const* text, unsigned char const* part);
VELMARA_EXPORT unsigned char const* xmlstrstr(unsigned char const* text, char const* part);

/// A pattern that matches the names of a null-ended array, in any case of letters. A null array gives
/// a null pattern.
VELMARA_EXPORT StringPattern stringPatternFactory(char const** names);

} // namespace HTML
} // namespace Velmara
