// Both ways of cutting share one loop over lines and differ in four things: how many lines, how many
// known words a line needs before it counts, whether bytes are lowered first, and the tokenizer. A
// tokenizer appends the numbers of the words that it knows; words that it does not know leave no trace,
// so names, amounts and layout do not change the result.
#include <velmara/TD.h>

#include <algorithm>
#include <boost/bind/bind.hpp>
#include <boost/function.hpp>
#include <cstring>
#include <cwchar>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>

#include <velmara/StringOperations.h>
#include <velmara/Utf2lang.h>

#include "runtime/Ascii.h"
#include "semantics/Configuration.h"

namespace Velmara {

namespace {

constexpr size_t _longestLine = 8095; // a longer one ends the work
constexpr size_t _shortestLine = 11;  // a shorter one says nothing, but counts as a line
constexpr size_t _wideCapacity = 2048;
constexpr size_t _mostTokens = 600;
constexpr size_t _mostTags = 200;

using Numbers = std::vector<unsigned int>;
using Tokenizer = boost::function<void(wchar_t*, dict const&, Numbers&)>;

struct Cutting {
    size_t maxLines;
    size_t minTokens;
    bool lower;
    Tokenizer tokenizer;
};

/// Gives the next line without its LF; false at the end and on a line that is too long.
bool _nextLine(std::string_view& text, std::string_view& line)
{
    if (text.empty()) return false;
    size_t const lineFeed = text.substr(0, _longestLine + 1).find('\n');
    size_t const length = lineFeed == std::string_view::npos ? text.size() : lineFeed;
    if (length > _longestLine) return false;
    line = text.substr(0, length);
    text.remove_prefix(std::min(text.size(), length + 1));
    return true;
}

bool _holdsDisclaimer(std::string_view line)
{
    static constexpr std::string_view word = "disclaimer";
    auto const same = [](char a, char b) {
        return toLower(static_cast<unsigned char>(a)) == static_cast<unsigned char>(b);
    };
    return std::search(line.begin(), line.end(), word.begin(), word.end(), same) != line.end();
}

/// The line as the tokenizer gets it, ended by a zero.
void _widen(std::string_view line, bool lower, wchar_t* wide)
{
    char bytes[_longestLine];
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    for (size_t i = 0; i < line.size(); ++i)
        bytes[i] = lower ? static_cast<char>(toLower(static_cast<unsigned char>(line[i]))) : line[i];
    Utf2lang().str2wc(bytes, line.size(), wide, _wideCapacity, "UTF-8");
}

std::wstring _tokensOf(std::string_view text, dict const& words, Cutting const& cutting)
{
    wchar_t wide[_wideCapacity];
    std::wstring tokens;
    Numbers numbers;
    std::string_view line;
    for (size_t lines = 0; lines < cutting.maxLines && tokens.size() < _mostTokens && _nextLine(text, line); ++lines) {
        if (line.size() < _shortestLine) continue;
        if (_holdsDisclaimer(line)) break; // what stands below one is not the sender's own text
        _widen(line, cutting.lower, wide);
        numbers.clear();
        cutting.tokenizer(wide, words, numbers);
        if (numbers.size() < cutting.minTokens) continue;
        size_t const room = std::min(numbers.size(), _mostTokens - tokens.size());
        tokens.append(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(room));
    }
    return tokens;
}

bool _isPunctuation(wchar_t c)
{
    return c == L',' || c == L'.' || c == L':';
}

/// Numbers, times, versions and host names are no words.
bool _mayBeWord(wchar_t const* piece, size_t length)
{
    constexpr size_t longest = 50;
    auto const spoils = [](wchar_t c) { return (c >= L'0' && c <= L'9') || c == L'.'; };
    return length > 2 && length <= longest && std::none_of(piece, piece + length, spoils);
}

/// Cuts at each separator; pieces shorter than `shortest` characters are none.
void _splitWords(wchar_t* line, dict const& words, Numbers& numbers, wchar_t separator, size_t shortest)
{
    wchar_t const* const end = line + std::wcslen(line);
    for (wchar_t const* piece = line; piece < end;) {
        wchar_t const* const stop = std::find(piece, static_cast<wchar_t const*>(end), separator);
        auto length = static_cast<size_t>(stop - piece);
        if (length >= shortest) {
            if (_isPunctuation(piece[length - 1])) --length;
            unsigned int const* number = _mayBeWord(piece, length) ? words.find(piece, length) : nullptr;
            if (number) numbers.push_back(*number);
        }
        piece = stop + 1;
    }
}

/// Length of the match at `text`, 1 where there is none. It grows from two characters for as long as
/// each length is a word, so a word whose beginnings are none is never found, and it stops one short
/// of the end of the line: installations compare these numbers.
size_t _matchAt(wchar_t const* text, size_t left, dict const& words, Numbers& numbers)
{
    if (left < 3) return 1;
    unsigned int const* last = nullptr;
    size_t length = 2;
    while (unsigned int const* number = words.find(text, length)) {
        last = number;
        if (++length >= left) break;
    }
    if (!last) return 1;
    numbers.push_back(*last);
    return length - 1;
}

void _runMatch(wchar_t* line, dict const& words, Numbers& numbers)
{
    auto const isDropped = [](wchar_t c) { return std::wcschr(L",.:_ -/\\", c) != nullptr; };
    wchar_t* const end = std::remove_if(line, line + std::wcslen(line), isDropped);
    auto const length = static_cast<size_t>(end - line);
    for (size_t i = 0; i < length;) i += _matchAt(line + i, length - i, words, numbers);
}

/// Decides the language; text in UTF-8 is looked at, for its charset says nothing.
TD::langID _languageOf(std::string const& charset, std::string_view text)
{
    TD::langID const language = configuration().languageOf(charset);
    if (language != TD::LanguageByScript) return language;
    Utf2lang script;
    script.proc(text.data(), text.size());
    if (script.chinese) return TD::LanguageSimplifiedChinese;
    if (script.japanese) return TD::LanguageJapanese;
    if (script.korean) return TD::LanguageKorean;
    return script.russian ? TD::LanguageCyrillic : TD::LanguageWestern;
}

/// Both ways to write Chinese share one list.
TD::langID _languageOfWords(TD::langID language)
{
    return language == TD::LanguageTraditionalChinese ? TD::LanguageSimplifiedChinese : language;
}

bool _hasBlanksBetweenWords(TD::langID language)
{
    return language == TD::LanguageWestern || language == TD::LanguageArabic || language == TD::LanguageCyrillic ||
           language == TD::LanguageHebrew;
}

} // namespace

bool TD::s_initConfig()
{
    static std::mutex once;
    Config* config = __atomic_load_n(&pconfig, __ATOMIC_ACQUIRE);
    if (!config) {
        std::lock_guard<std::mutex> const guard(once);
        config = __atomic_load_n(&pconfig, __ATOMIC_ACQUIRE);
        if (!config) {
            auto made = std::make_unique<Config>();
            std::thread([loaded = made.get()] { loaded->load(); }).detach();
            config = made.release(); // lives to process exit: descriptors read it without a lock
            __atomic_store_n(&pconfig, config, __ATOMIC_RELEASE);
        }
    }
    return config->ready();
}

TD::TD(std::string const& charset) : m_language(_languageOf(charset, {})), m_charset(stringToLower(charset))
{}

TD::TD(std::string const& text, std::string const& charset)
    : m_language(_languageOf(charset, text)), m_charset(stringToLower(charset))
{
    dict const& words = configuration().dictionary(_languageOfWords(m_language));
    if (_hasBlanksBetweenWords(m_language)) {
        getSemantics_1(text, words);
        return;
    }
    getSemantics_2(text, words);
    // Western text in an East Asian charset.
    if (m_tokens.empty()) getSemantics_1(text, configuration().dictionary(LanguageWestern));
}

TD::~TD() = default;

void TD::add(std::string const& tag)
{
    if (m_tokens.size() > _mostTags) return;
    unsigned int const number = configuration().getHtmlTagIdx(tag);
    if (number != 0) m_tokens.push_back(static_cast<wchar_t>(number));
}

void TD::getSemantics_1(std::string const& text, dict const& words)
{
    using namespace boost::placeholders;
    m_tokens = _tokensOf(text, words, {50, 2, true, boost::bind(_splitWords, _1, _2, _3, L' ', 2)});
}

void TD::getSemantics_2(std::string const& text, dict const& words)
{
    m_tokens = _tokensOf(text, words, {80, 3, false, _runMatch});
}

TDProperties::TDProperties() = default;
TDProperties::~TDProperties() = default;

MPartAttribute::Type TDProperties::type() const
{
    return TypeTD;
}

void TDProperties::addText(Buffer const& text, std::string const& charset)
{
    if (text.size() == 0 || m_descriptors.size() >= maxDescriptors) return;
    auto const* bytes = reinterpret_cast<char const*>(text.data());
    Ref<TD> tokens(new TD(std::string(bytes, ::strnlen(bytes, text.length())), charset), false);
    m_descriptors.push_back(std::move(tokens));
}

} // namespace Velmara
