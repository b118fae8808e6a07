// The text normaliser, a scanner with no memory but one context on the stack.
//
// Bytes take one road: the scan of the input (text, or HTML with its tags, comments and entities) gives
// them to the URI machine one by one, that gives the ones it lets through to _emit_char, and _emit_char
// alone writes, line by line. The URI machine holds a word back until it knows what it is: "see" or
// "v1.2" is text and passes, "www.a.example/x" (a label of three letters or more behind the first dot
// or ahead of it) and "10.0.0.1" (four short numbers) vanish, and so links and hosts do not count. A
// word that is held back is only remembered by where it starts; passing it on means reading it again.
//
// Every odd step below decides which bytes two installations hash. None may be tidied: where a
// candidate is passed on twice, where the byte that ends a URI is swallowed with it, where text behind
// an unclosed tag comes back, all copies have to do the same.
//
// The cost is one pass. What could be searched for again and again, the end of a comment that is never
// closed, is remembered as missing; every other search that fails ends the scan, and one that succeeds
// moves the cursor behind what it found.

#include <velmara/htm_txt_hash.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

#include "hash/Contract.h"
#include "hash/mbuf.h"
#include "runtime/Ascii.h"

#define NORMALISER_ASSERT(condition) HASH_ASSERT("htm_txt_hash", condition)

namespace Velmara {
namespace {

constexpr std::string_view _uri_marks = R"(;/?:@&=+$,[]\#-_.!~*'()%)";
static_assert(_uri_marks.size() == 24);

// Bytes of URIs as the signatures know them: ASCII alone, but with control bytes such as NUL, VT and FF.
constexpr bool _is_uri_byte(unsigned char c)
{
    if (c < ' ') return c != '\t' && !isLineEnd(c);
    return isAlnum(c) || _uri_marks.find(static_cast<char>(c)) != std::string_view::npos;
}

constexpr bool _is_dropped(unsigned char c)
{
    return c <= 27 || isCSpace(c) ||
           std::string_view("!,\"<>{}[]&").find(static_cast<char>(c)) != std::string_view::npos;
}

// What is written for a byte: 0 for nothing, LF for the end of a line.
constexpr unsigned char _written_for(unsigned char c)
{
    if (c == '\n') return c;
    if (_is_dropped(c)) return 0;
    return c == '$' ? 's' : c == '|' ? 'l' : toLower(c);
}

constexpr unsigned char _upper(unsigned char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<unsigned char>(c - ('a' - 'A')) : c;
}

// The questions above, answered for every byte at compile time.
struct Characters {
    bool uri[256] = {};
    bool letter[256] = {};
    bool digit[256] = {};
    bool endsName[256] = {}; // of a tag
    unsigned char written[256] = {};

    constexpr Characters()
    {
        for (int i = 0; i < 256; ++i) {
            unsigned char const c = static_cast<unsigned char>(i);
            uri[i] = _is_uri_byte(c);
            letter[i] = isAlpha(c);
            digit[i] = isDigit(c);
            endsName[i] = c == '>' || isCSpace(c);
            written[i] = _written_for(c);
        }
    }
};
constexpr Characters _characters;

bool _is_uri_char(unsigned char c)
{
    return _characters.uri[c];
}

enum TagFlag {
    BreaksLine = 1,
    OnlyOpening = 4, // of the pair, only the opening tag breaks the line
    Hides = 8,
};

enum TagId { TagTable = 23, TagRow = 24, TagCell = 25 };

// Ids other than those named, and the flags 2 and 16, have no effect here.
struct Tag {
    std::string_view name;
    int id;
    int flags;
};

constexpr size_t _longest_tag = 10;

// In the order of the alphabet, so that the first letter finds the few that need comparing.
constexpr Tag _tags[] = {
    {"BLOCKQUOTE", 1, BreaksLine},
    {"BODY", 37, 0},
    {"BR", 10, BreaksLine | OnlyOpening},
    {"CENTER", 2, BreaksLine},
    {"DD", 13, BreaksLine | OnlyOpening},
    {"DIR", 15, BreaksLine},
    {"DL", 12, BreaksLine},
    {"DT", 14, BreaksLine | OnlyOpening},
    {"EMBED", 35, 16},
    {"FRAME", 34, 16},
    {"H1", 3, BreaksLine},
    {"H2", 4, BreaksLine},
    {"H3", 5, BreaksLine},
    {"H4", 6, BreaksLine},
    {"H5", 7, BreaksLine},
    {"H6", 8, BreaksLine},
    {"HR", 9, BreaksLine | OnlyOpening},
    {"IMG", 33, 16},
    {"LI", 16, BreaksLine | OnlyOpening},
    {"LISTING", 20, BreaksLine},
    {"MARQUEE", 22, BreaksLine},
    {"MENU", 17, BreaksLine},
    {"OL", 18, BreaksLine},
    {"P", 11, BreaksLine},
    {"PRE", 21, BreaksLine},
    {"SCRIPT", 31, Hides},
    {"STYLE", 32, Hides},
    {"SUB", 26, 2},
    {"SUP", 27, 2},
    {"TABLE", TagTable, BreaksLine},
    {"TD", TagCell, 2},
    {"TEXTAREA", 29, BreaksLine},
    {"TH", 36, 0},
    {"TITLE", 30, Hides},
    {"TR", TagRow, BreaksLine},
    {"UL", 19, BreaksLine},
};
static_assert(std::size(_tags) == 36);

// A name in upper case as one value, so that names compare without a call for each.
struct TagKey {
    std::uint64_t letters = 0; // the last eight
    unsigned int ahead = 0;    // and what they pushed out

    constexpr void append(unsigned char c)
    {
        ahead = ahead << 8 | static_cast<unsigned int>(letters >> 56);
        letters = letters << 8 | _upper(c);
    }
    constexpr bool operator==(TagKey const& other) const { return letters == other.letters && ahead == other.ahead; }
};

// Where the tags of each letter start in _tags; the entry behind a letter's is where they end.
struct TagIndex {
    unsigned char from[27] = {};
    TagKey keys[std::size(_tags)] = {};
    bool sorted = true;

    constexpr TagIndex()
    {
        for (Tag const& tag : _tags)
            for (int letter = tag.name[0] - 'A'; letter < 26; ++letter) ++from[letter + 1];
        for (size_t i = 0; i < std::size(_tags); ++i) {
            for (char c : _tags[i].name) keys[i].append(static_cast<unsigned char>(c));
            if (_tags[i].name.size() > _longest_tag || (i > 0 && _tags[i].name <= _tags[i - 1].name)) sorted = false;
        }
    }
};
constexpr TagIndex _tag_index;
static_assert(_tag_index.sorted, "_tags is searched by first letter");

// Null for a name that is not in the table.
Tag const* _find_tag(unsigned char const* name, size_t length)
{
    if (length == 0 || length > _longest_tag || !isAlpha(*name)) return nullptr;
    TagKey key;
    for (size_t i = 0; i < length; ++i) key.append(name[i]);
    int const letter = _upper(*name) - 'A';
    for (int i = _tag_index.from[letter]; i < _tag_index.from[letter + 1]; ++i)
        if (_tag_index.keys[i] == key) return &_tags[i];
    return nullptr;
}

// What the URI machine is looking at; the last two are its verdicts on a word.
enum UriState {
    BetweenTokens = 0,
    BehindFirstDot = 1,
    InFirstLabel = 2,
    FoundText = 7,
    FoundUri = 8,
};

enum Phase { InFirstLine, InSecondLine, BeforeText, InText };

struct Lead {
    unsigned char bytes[128];
    int length;
};

struct Label {
    int digits;
    int letters;
};

struct Scan {
    unsigned char const* cursor;
    unsigned char const* end; // of the input

    unsigned char* output; // next byte to write
    unsigned char* outputEnd;

    Phase phase;
    Lead lead[2];                      // the lines set aside, by phase
    unsigned char const* previousLine; // where the line before the last one starts
    unsigned char const* lastLine;     // where the last line with a character starts; null before the first
    unsigned char const* nextLine;     // where the next line will start, or the present one if it has begun
    int lineLength;                    // of the line in progress

    UriState uriState;
    unsigned char const* uriStart; // valid unless BetweenTokens
    Label labels[4];               // all labels from the fourth on share the last
    int labelIndex;

    bool inTable;
    bool hidden;           // inside an element that is not shown
    bool noCommentEnd;     // there is no "-->" from the cursor on
    mbuf rest, commentEnd; // for the search of comment ends
};

bool _is_full(Scan const& s)
{
    return s.output == s.outputEnd;
}

// The number of bytes from a position to the end of the input.
size_t _left(Scan const& s, unsigned char const* at)
{
    return static_cast<size_t>(s.end - at);
}

// Null if the byte does not follow any more.
unsigned char const* _find(Scan const& s, unsigned char const* from, char c)
{
    if (from == s.end) return nullptr;
    return static_cast<unsigned char const*>(std::memchr(from, c, _left(s, from)));
}

void _set_aside(Scan& s, unsigned char c)
{
    Lead& lead = s.lead[s.phase];
    if (lead.length < static_cast<int>(sizeof lead.bytes)) lead.bytes[lead.length++] = c;
}

void _end_lead(Scan& s)
{
    if (s.lead[s.phase].length != 0) s.phase = static_cast<Phase>(s.phase + 1);
}

void _start_text(Scan& s, unsigned char c)
{
    s.previousLine = s.lastLine = s.nextLine = s.output;
    *s.output++ = c;
    s.lineLength = 1;
    s.phase = InText;
}

void _stay(Scan&)
{}

void _add_to_line(Scan& s, unsigned char c)
{
    *s.output++ = c;
    ++s.lineLength;
    if (s.lastLine == s.nextLine) return;
    s.previousLine = s.lastLine;
    s.lastLine = s.nextLine;
}

void _end_line(Scan& s)
{
    s.nextLine += s.lineLength;
    s.lineLength = 0;
}

// Empty lines leave no trace in any phase.
struct Step {
    Phase phase;
    void (*character)(Scan&, unsigned char);
    void (*lineEnd)(Scan&);
};

constexpr Step _steps[] = {
    {InFirstLine, _set_aside, _end_lead},
    {InSecondLine, _set_aside, _end_lead},
    {BeforeText, _start_text, _stay},
    {InText, _add_to_line, _end_line},
};

constexpr bool _inOrder()
{
    for (int i = 0; i < 4; ++i)
        if (_steps[i].phase != i) return false;
    return true;
}
static_assert(_inOrder(), "_steps is indexed by phase");

void _emit_char(Scan& s, unsigned char c)
{
    unsigned char const written = _characters.written[c];
    if (written == 0 || _is_full(s)) return;
    Step const& step = _steps[s.phase];
    written == '\n' ? step.lineEnd(s) : step.character(s, written);
}

// Lets the candidate pass as text. It stays open: a caller that goes on without closing it, as behind
// an unclosed "<!", makes it pass a second time.
void _flush_uri(Scan& s, unsigned char const* upto)
{
    for (unsigned char const* at = s.uriStart; at < upto && !_is_full(s); ++at) _emit_char(s, *at);
}

void _close_candidate(Scan& s)
{
    s.uriState = BetweenTokens;
}

void _count_label_char(Scan& s, unsigned char c)
{
    Label& label = s.labels[s.labelIndex];
    label.digits += _characters.digit[c];
    label.letters += _characters.letter[c];
}

void _open_candidate(Scan& s, unsigned char c)
{
    std::memset(s.labels, 0, sizeof s.labels);
    s.labelIndex = 0;
    s.uriState = InFirstLabel;
    s.uriStart = s.cursor;
    _count_label_char(s, c);
}

// A label of three letters makes a URI, four numbers of at most three digits make an IP address. With
// fewer than four labels, or a letter or a long number in any of them, it is text: "e.g", "v1.2".
UriState _judge_labels(Scan const& s)
{
    bool plain = s.labelIndex < 3;
    for (int i = 0; i <= s.labelIndex; ++i) {
        Label const& label = s.labels[i];
        if (label.letters > 2) return FoundUri;
        if (label.letters > 0 || label.digits > 3) plain = true;
    }
    return plain ? FoundText : FoundUri;
}

// Takes the cursor to the end of the word, in one step: an "&" no longer starts an entity here.
UriState _judge_word(Scan& s)
{
    unsigned char const first = *s.cursor;
    if (!isAlnum(first) && first != '%' && first != '&' && first != '\0') return FoundText;
    for (; s.cursor < s.end && _is_uri_char(*s.cursor); ++s.cursor) {
        if (*s.cursor != '.')
            _count_label_char(s, *s.cursor);
        else if (s.labelIndex < 3)
            ++s.labelIndex;
    }
    return _judge_labels(s);
}

// The byte that ended the word goes with it, even if it is the "<" of a tag.
void _end_word(Scan& s)
{
    if (s.uriState == FoundText) _flush_uri(s, s.cursor);
    _close_candidate(s);
    if (s.cursor < s.end) _emit_char(s, *s.cursor++);
}

void _read_first_label(Scan& s)
{
    unsigned char const c = *s.cursor;
    if (!_is_uri_char(c)) {
        s.uriState = FoundText;
        _end_word(s);
        return;
    }
    if (c == '.') {
        s.uriState = BehindFirstDot;
        ++s.labelIndex;
    } else {
        _count_label_char(s, c);
    }
    ++s.cursor;
}

// One step at the cursor, which is below the end of the input.
void _parse_uri(Scan& s)
{
    switch (s.uriState) {
    case BetweenTokens:
        if (isAlnum(*s.cursor))
            _open_candidate(s, *s.cursor);
        else
            _emit_char(s, *s.cursor);
        ++s.cursor;
        return;
    case InFirstLabel:
        _read_first_label(s);
        return;
    case BehindFirstDot:
        s.uriState = _judge_word(s);
        _end_word(s);
        return;
    default:
        NORMALISER_ASSERT(0);
    }
}

// The rest of the input as plain text. A candidate that it ends in passes, and stays open.
void _scan_text(Scan& s)
{
    while (!_is_full(s) && s.cursor < s.end) _parse_uri(s);
    if (s.uriState != BetweenTokens) _flush_uri(s, s.end);
}

struct Entity {
    std::string_view text; // behind the "&"
    int skip;              // bytes, "&" included; a ";" behind them goes too
    char character;
};

// Spelled in one case throughout, as shown. All others, numeric ones too, are an "&" and then text.
constexpr Entity _entities[] = {
    {"lt", 3, '<'},   {"LT", 3, '<'},   {"gt", 3, '>'},   {"GT", 3, '>'},    {"amp", 4, '&'},   {"AMP", 4, '&'},
    {"quot", 5, '"'}, {"QUOT", 5, '"'}, {"nbsp", 5, ' '}, {"emsp;", 5, ' '}, {"ensp;", 5, ' '}, // ";" is needed here
};
constexpr Entity _bare_ampersand = {"", 1, '&'};

Entity const& _entity_at(Scan const& s)
{
    size_t const behind = _left(s, s.cursor) - 1;
    for (Entity const& entity : _entities) {
        std::string_view const text = entity.text;
        if (s.cursor[1] == static_cast<unsigned char>(text[0]) && behind >= text.size() &&
            std::memcmp(s.cursor + 1, text.data(), text.size()) == 0)
            return entity;
    }
    return _bare_ampersand;
}

// The character itself is never written; it only decides whether an open candidate goes on across it.
void _read_entity(Scan& s)
{
    Entity const& entity = _entity_at(s);
    if (s.uriState != BetweenTokens && !_is_uri_char(static_cast<unsigned char>(entity.character))) {
        _flush_uri(s, s.cursor);
        _close_candidate(s);
    }
    s.cursor += entity.skip;
    if (entity.skip > 1 && s.cursor < s.end && *s.cursor == ';') ++s.cursor;
}

// Null, and from then on at no cost, once no comment ends any more.
unsigned char const* _find_comment_end(Scan& s)
{
    if (s.noCommentEnd) return nullptr;
    mbuf_attach(&s.rest, s.cursor, _left(s, s.cursor));
    unsigned char const* end = mbuf_find(&s.rest, &s.commentEnd);
    s.noCommentEnd = !end;
    return end ? end + s.commentEnd.n : nullptr;
}

// A comment, a declaration, or neither: then all the rest is text, with the "<!" that opens it.
void _read_comment(Scan& s)
{
    unsigned char const* const start = s.cursor;
    unsigned char const* close = nullptr;
    s.cursor += 2;
    if (_left(s, s.cursor) > 2 && std::memcmp(s.cursor, "--", 2) == 0) close = _find_comment_end(s);
    if (!close) {
        close = _find(s, s.cursor, '>');
        if (close) ++close;
    }
    if (close) {
        s.cursor = close;
        _close_candidate(s);
    } else {
        s.cursor = start;
        _scan_text(s);
    }
}

void _apply_tag(Scan& s, Tag const& tag, bool closing)
{
    if ((tag.id == TagRow || tag.id == TagCell) && !s.inTable) return;
    if (!closing || !(tag.flags & OnlyOpening)) {
        if (tag.flags & Hides) s.hidden = !closing;
        if (s.hidden) return;
        if (tag.flags & BreaksLine) _emit_char(s, '\n');
    }
    if (tag.id == TagTable) s.inTable = !closing;
}

// The name is all that stands ahead of ">" or white space, so "BR/" is no "BR".
void _apply_tag_named(Scan& s, unsigned char const* name, unsigned char const* nameEnd)
{
    bool const closing = *name == '/';
    if (closing) ++name;
    if (Tag const* tag = _find_tag(name, static_cast<size_t>(nameEnd - name))) _apply_tag(s, *tag, closing);
}

unsigned char const* _find_name_end(Scan const& s, unsigned char const* name)
{
    while (name < s.end && !_characters.endsName[*name]) ++name;
    return name;
}

// A tag that is never closed makes all the rest text, hidden or not, with the "<" that opens it.
void _handle_tag(Scan& s)
{
    unsigned char const* const name = s.cursor + 1;
    unsigned char const* const tagend = _find_name_end(s, name);
    NORMALISER_ASSERT(tagend);
    bool const endsHere = tagend < s.end && *tagend == '>';
    unsigned char const* const close = endsHere ? tagend : _find(s, tagend, '>');
    if (close) {
        _apply_tag_named(s, name, tagend);
        s.cursor = close + 1;
    } else {
        _scan_text(s);
    }
    _close_candidate(s);
}

// At a "<" that is not the last byte.
void _read_markup(Scan& s)
{
    if (s.uriState != BetweenTokens) _flush_uri(s, s.cursor);
    unsigned char const next = s.cursor[1];
    if (next == '!') {
        _read_comment(s);
    } else if (next == '/' || isAlpha(next)) {
        _handle_tag(s);
    } else {
        _emit_char(s, '<');
        _emit_char(s, next);
        s.cursor += 2;
        _close_candidate(s);
    }
}

// Nothing but markup counts in a hidden element. The entities passed over hold no "<".
void _skip_hidden(Scan& s)
{
    unsigned char const* markup = _find(s, s.cursor + 1, '<');
    s.cursor = markup ? markup : s.end;
}

void _scan_html(Scan& s)
{
    while (!_is_full(s) && s.cursor < s.end) {
        bool const last = _left(s, s.cursor) == 1;
        if (*s.cursor == '<' && !last)
            _read_markup(s);
        else if (s.hidden)
            _skip_hidden(s);
        else if (*s.cursor == '&' && !last)
            _read_entity(s);
        else
            _parse_uri(s);
    }
    if (s.uriState != BetweenTokens) _flush_uri(s, s.end);
}

constexpr long _filled_length = 128; // what an extract is cut down to at most, and filled up to
constexpr long _least_length = 64;

// The two cuts differ by one byte in what they leave, and that is part of the signature.
long _cut_last_lines(Scan const& s, long length)
{
    long const lastLength = s.lastLine ? s.output - s.lastLine : 0;
    if (length - lastLength >= _filled_length + 1) length -= lastLength;
    long const previousLength = s.lastLine - s.previousLine;
    if (previousLength > 0 && length - previousLength > _filled_length) length -= previousLength;
    return length;
}

long _fill_from_leads(Scan& s, char* out, long length, long capacity)
{
    long const limit = capacity < _filled_length ? capacity : _filled_length;
    for (int i : {1, 0})
        while (length < limit && s.lead[i].length > 0)
            out[length++] = static_cast<char>(s.lead[i].bytes[--s.lead[i].length]);
    return length;
}

Scan _begin(char const* data, int length, char* out, int capacity)
{
    Scan s = {};
    s.cursor = reinterpret_cast<unsigned char const*>(data);
    s.end = s.cursor + (length > 0 ? length : 0);
    s.output = reinterpret_cast<unsigned char*>(out);
    s.outputEnd = s.output + (capacity > 0 ? capacity : 0);
    mbuf_attach(&s.commentEnd, "-->", 3);
    return s;
}

constexpr int _mode_html = 1;
constexpr int _mode_text = 2;

} // namespace
} // namespace Velmara

using namespace Velmara;

int htm_txt_get_data(char const* data, int length, int mode, char* out, int capacity, long* written)
{
    if (mode != _mode_html && mode != _mode_text) return 0;
    Scan s = _begin(data, length, out, capacity);
    mode == _mode_html ? _scan_html(s) : _scan_text(s);

    long const produced = s.output - reinterpret_cast<unsigned char*>(out);
    if (written) *written = produced;
    long const extract = _fill_from_leads(s, out, _cut_last_lines(s, produced), capacity);
    return extract < _least_length ? 0 : static_cast<int>(extract);
}
