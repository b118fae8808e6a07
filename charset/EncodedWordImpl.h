#pragma once

#include <string>
#include <string_view>

#include <velmara/EncodedWord.h>

namespace Velmara {

/// What an EncodedWord points at; the operations are those of the handle.
class EncodedWordImpl : public RefImpl {
public:
    explicit EncodedWordImpl(bool crlf);
    ~EncodedWordImpl() override;

    /// Reads a value; what it holds is appended to what earlier ones held.
    void value(std::string_view text);
    /// As new, but for the room that the buffers have.
    void reset();
    Buffer const& toUtf8();

    std::string const& asString() const { return m_asString; }
    std::string const& charset() const { return m_charset; }
    EncodedWord::Encoding encoding() const { return m_encoding; }
    Buffer const& decoded() const { return m_decoded; }

private:
    void foldedValue(std::string_view delimiter, size_t end);
    void parseString(std::string_view text);
    void appendWord(std::string_view text);

    bool const m_crlf; // lines of a folded value end with CR LF, not LF
    std::string m_asString;
    std::string m_charset;
    EncodedWord::Encoding m_encoding = EncodedWord::EncodingNone;
    Buffer m_decoded;
    Buffer m_utf8; // empty until toUtf8 has found something
};

} // namespace Velmara
