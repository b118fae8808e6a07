#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <velmara/MediaIn.h>

#include "Hop.h"
#include "PartPath.h"

/// What the command knows of one message: everything that `inspect`, `explain`, `scan` and `report`
/// tell, read once. Plain data: nothing here refers to the message any more, so facts may go to
/// another thread. Texts are as the library gives them: bytes that are no UTF-8 may stand in them
/// where no character set was to be had.
namespace VelmaraCommand {

/// Places in the bytes of the message: the first, and the one behind the last.
struct Span {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// Something that a reader should know of. The code is stable and documented; scripts match on it.
struct Finding {
    std::string code; // "preamble-text", "duplicate-content-type", ...
    std::string path; // of the part; "" for the message as a whole
    Span where;       // empty if it is at no place
    std::string text; // for people: what was found there
};

/// One text node of an HTML part and what was in force at its place.
struct Run {
    enum View { Visible, HiddenByColour, HiddenBySize, HiddenByEarlierSize };
    View view = Visible;
    std::string text;
    int foreground[3] = {0, 0, 0}, background[3] = {0, 0, 0}; // a page may state any number
    double distance = 0;                                      // of the two colours, as the eye finds it
    unsigned int size = 0;
};

struct Link {
    std::string element; // "source": it is in no attribute
    std::string uri;
    std::string host;                    // that it reaches; "" for none
    std::string text;                    // what a reader sees of it; of an element's first few links
    std::vector<std::string> otherHosts; // that the text names instead
};

struct ShownImage {
    std::string source;
    bool isContentId = false;
    int width = 0, height = 0;
    int textLine = 0; // lines of text above it
    bool firstInRun = false;
};

struct HtmlFacts {
    std::vector<Run> runs;
    std::vector<Link> links;
    std::vector<ShownImage> images;
    std::uint64_t visibleBytes = 0, hiddenBytes = 0; // of the text nodes that are not all blank
};

struct SignatureFacts {
    std::string kind;      // "html", "text", "png", "gif", "jpeg", "binary"
    std::string signature; // "" without one
    std::string tagTokens; // hexadecimal signature of the sequence of tags of an HTML part; "" without one
    std::uint64_t lookedAt = 0, entered = 0;
    std::string whyNone;
};

struct TypeFacts {
    std::string detected;  // by content and name
    unsigned int code = 0; // 0: none
    std::string reason;    // "content-over-name", ... as `velmara type --explain` names it
    std::string decidedBy; // for people: the glob or test that decided
    bool mismatch = false; // neither the declared type nor a kind of it, nor the other way round
};

struct TextFacts {
    std::string charset;           // that it was read in
    std::string declaredCharset;   // of the part's headers
    bool charsetKnown = true;      // else the bytes stand as they came
    std::uint64_t undecodable = 0; // bytes that the character set has no character for (ferrCnt)
    std::uint64_t unencodable = 0; // characters that UTF-8 was not given for (terrCnt)
    std::string language;
    std::vector<unsigned int> tokens;
    std::string text;            // decoded to UTF-8, of HTML what a reader sees; the first Wanted::textBytes of it
    std::uint64_t textBytes = 0; // in all
};

/// The line that ended a part.
struct Ending {
    Span line;
    std::string text;      // without its line end
    std::string path;      // of the multipart whose delimiter it begins with
    std::string delimiter; // that one
    bool closing = false;  // it ends the multipart, too
    bool exact = true;     // nothing but white space stands behind the delimiter
};

struct PartFacts {
    std::string path; // as PartPath has it
    PartKind kind = PartKind::Leaf;
    unsigned int depth = 0; // containers around it
    Span header, body;      // body.end is the end of the message where the length is unknown
    bool bodyLengthKnown = true;
    std::optional<Ending> ending; // of what is no container; none if the message ended there
    std::vector<std::pair<std::string, std::string>> headers; // as they stand, in order
    std::string mediaType, charset, encoding, disposition, name, contentId;
    std::string boundary;           // of a multipart
    std::uint64_t decodedBytes = 0; // of a leaf; the first 16 MiB are looked at
    std::string decodedBy;          // the codec that applied; "" if the body was taken as it stands
    std::optional<TypeFacts> type;  // of leaves with bytes
    std::optional<SignatureFacts> signature;
    std::optional<TextFacts> text; // of text parts
    std::optional<HtmlFacts> html; // of HTML parts
};

struct Address {
    std::string address, displayName; // decoded
};

struct MessageFacts {
    std::uint64_t bytes = 0;              // read of the source
    std::string subject, messageId, date; // decoded; the date as it stands
    std::optional<std::int64_t> time;     // seconds since 1970, where the date can be read
    std::vector<Address> from, sender, replyTo, to, cc;
    std::vector<Hop> route;
    std::vector<PartFacts> parts; // in message order, the root first
    std::vector<Finding> findings;
    std::string capped; // "": whole; "bytes", "parts", "items" or "time": what follows the cap was not read
};

/// How far a reader goes. 0 is no limit.
struct Limits {
    std::uint64_t bytes = 0;
    std::uint64_t parts = 0;
    std::uint64_t items = 0; // lines of headers; and links, images and tokens, which are counted in front of each part
    std::chrono::milliseconds time{0};
};

/// What is to be read beyond tree and headers, for speed and memory.
struct Wanted {
    bool types = true, signatures = true, tokens = true, html = true, findings = true;
    bool runs = true;               // the runs themselves, not only how many bytes are hidden
    std::uint64_t textBytes = 4096; // of each text part that TextFacts keeps
};

/// Reads a message. Whatever the bytes are, some facts come out; of a message beyond the limits, those
/// that were read so far, with `capped` set. Throws only what the medium throws, and std::bad_alloc.
/// Safe from several threads at once, each with a medium of its own.
MessageFacts factsOf(Velmara::MediaIn const& source, Limits const& limits = {}, Wanted const& wanted = {});

/// The facts as the documented JSON object of one message (docs/json.md).
Json jsonOf(MessageFacts const& facts);

} // namespace VelmaraCommand
