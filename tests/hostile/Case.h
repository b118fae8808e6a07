#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <velmara/Md5Hasher.h>
#include <velmara/MediaIn.h>

namespace Velmara::Hostile {

/// What a case works on: bytes in memory, or a file that is read as it is needed.
class Input {
public:
    static Input ofText(std::string text);
    static Input ofFile(std::string const& path);

    /// A new stream over all of it.
    MediaIn media() const;
    /// The bytes; of a file they are read at the first question.
    std::string const& text() const;

private:
    std::string m_path; // empty: the bytes are in memory
    mutable std::optional<std::string> m_text;
};

/// Where a case puts what came out of its work. While time is taken it is only counted; for a dump all of
/// it is kept or its digest, so that two builds can be compared to the byte.
class Sink {
public:
    enum Keeping { Nothing, Digest, All };
    explicit Sink(Keeping keeping) : m_keeping(keeping) {}

    void text(std::string_view bytes);
    void number(long long value);
    /// The 32 digits of what was taken.
    std::string digest();
    /// What was taken; empty unless all is kept.
    std::string const& all() const { return m_all; }
    /// Bytes of all texts.
    unsigned long long length() const { return m_length; }

private:
    void take(std::string_view bytes);

    Keeping m_keeping;
    unsigned long long m_length = 0;
    Md5Hasher m_hasher;
    std::string m_all;
};

/// Why a case may cost more than a microsecond a byte.
enum Bound {
    Nobody,  // it may not
    Libxml2, // the time is spent below libxml2's parser
    Output   // what comes out is far longer than what goes in, and is required to be so: its bytes count
};

/// One attack: an input that grows, and the work that a scanner does on such an input.
struct Case {
    char const* name; // "room/attack"
    /// About that many bytes; the first bytes of a longer one may differ.
    std::string (*make)(size_t size);
    void (*work)(Input const& input, Sink& sink);
    /// Memory does not grow with the input: it is read as a stream, and nothing of it is kept.
    bool flat = false;
    Bound bound = Nobody;
    char const* reason = ""; // of the bound
};

/// All cases, by room.
std::vector<Case> const& cases();

// The rooms.
std::vector<Case> messageCases();
std::vector<Case> headerCases();
std::vector<Case> addressCases();
std::vector<Case> decoderCases();
std::vector<Case> textCases();
std::vector<Case> htmlCases();
std::vector<Case> signatureCases();
std::vector<Case> typeCases();

// What generators are made of.

std::string repeated(size_t times, std::string_view unit);
/// `head`, then `unit` as often as it fits into `size` bytes but once at least, then `tail`.
std::string filled(size_t size, std::string_view head, std::string_view unit, std::string_view tail);
/// The same with each "{}" in `unit` replaced by a running number.
std::string counted(size_t size, std::string_view head, std::string_view unit, std::string_view tail);

} // namespace Velmara::Hostile
