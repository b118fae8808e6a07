#pragma once

#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <string>

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// While it lives, what libxml2 has to say on this thread reaches nobody else, the terminal of whoever runs a
/// daemon above all. The handler gets back what it was.
///
/// libxml2 2.9 goes on after most allocations that failed, with a tree that lacks something. Signatures and
/// types must not depend on that, so whoever has used it under this object ends with check().
///
/// Limits: libxml2 keeps some failures to itself, as when a name finds no room in its dictionary.
class QuietXml : private NonCopyable {
public:
    /// Called with each complaint of the parser, by C code: it must not throw.
    using Listener = void (*)(xmlParserCtxt& parser) noexcept;

    /// `parser`, which may be null, is stopped when an allocation fails: there are inputs on which it would never
    /// come to an end.
    explicit QuietXml(xmlParserCtxt* parser, Listener listener = nullptr);
    ~QuietXml();

    /// Throws std::bad_alloc if an allocation of libxml2 has failed.
    void check() const;
    /// Whether a character set could not be converted.
    bool unsupported() const { return m_unsupported; }
    /// The first complaint, without its line end; "" if there was none.
    std::string words() const;

private:
    static void hear(void* self, xmlErrorPtr error) noexcept; // called by C code: nothing may be thrown through it

    xmlParserCtxt* m_parser; // not owned, may be null
    Listener m_listener;     // may be null
    xmlStructuredErrorFunc m_handler;
    void* m_context;
    bool m_outOfMemory = false, m_unsupported = false;
    char m_words[256] = ""; // no std::string: one may find no memory, and see hear()
};

} // namespace Velmara
