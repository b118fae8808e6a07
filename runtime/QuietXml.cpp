#include "runtime/QuietXml.h"

#include <libxml/globals.h>

#include <cstring>
#include <mutex>
#include <new>

namespace Velmara {

namespace {

/// What libxml2 sets up by itself when it is first used, it sets up with a race between threads.
void _setUp()
{
    static std::once_flag once;
    std::call_once(once, xmlInitParser);
}

/// A text of more than 10 MB is reported like an allocation that failed. libxml2 cuts it there and stops by itself.
bool _isOutOfMemory(xmlError const& error)
{
    return error.code == XML_ERR_NO_MEMORY && !(error.message && std::strstr(error.message, "huge text node"));
}

} // namespace

QuietXml::QuietXml(xmlParserCtxt* parser, Listener listener) : m_parser(parser), m_listener(listener)
{
    _setUp();
    m_handler = xmlStructuredError;
    m_context = xmlStructuredErrorContext;
    xmlSetStructuredErrorFunc(this, hear);
}

QuietXml::~QuietXml()
{
    xmlSetStructuredErrorFunc(m_context, m_handler);
}

void QuietXml::check() const
{
    if (m_outOfMemory) throw std::bad_alloc();
}

std::string QuietXml::words() const
{
    return std::string(m_words, std::strcspn(m_words, "\n"));
}

void QuietXml::hear(void* self, xmlErrorPtr error) noexcept
{
    auto& quiet = *static_cast<QuietXml*>(self);
    if (_isOutOfMemory(*error)) {
        quiet.m_outOfMemory = true;
        // Other failures come from buffers being filled, which this would take away.
        if (quiet.m_parser && error->ctxt == quiet.m_parser) xmlStopParser(quiet.m_parser);
    }
    if (error->code == XML_ERR_UNSUPPORTED_ENCODING) quiet.m_unsupported = true;
    if (quiet.m_listener && quiet.m_parser && error->ctxt == quiet.m_parser) quiet.m_listener(*quiet.m_parser);
    if (!quiet.m_words[0] && error->message) std::strncpy(quiet.m_words, error->message, sizeof quiet.m_words - 1);
}

} // namespace Velmara
