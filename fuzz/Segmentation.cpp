// Both ways of cutting text give what a plain reading of their rules gives.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <velmara/Config.h>
#include <velmara/Utf2lang.h>

namespace {

using namespace Velmara;

dict const& _words()
{
    static dict const words = [] {
        dict list;
        unsigned int number = 2;
        for (wchar_t const* word : {L"the", L"garden", L"chair", L"a,b", L"x-y", L"\x4E2D\x6587", L"\x4E2D\x6587\x5B57",
                                    L"ab", L"abc", L"abcd"})
            list.words[word] = number++;
        return list;
    }();
    return words;
}

unsigned int _numberOf(std::wstring const& word)
{
    auto const found = _words().words.find(word);
    return found == _words().words.end() ? 0 : found->second;
}

std::vector<unsigned int> _plainWords(std::wstring const& line)
{
    std::vector<unsigned int> numbers;
    std::wstring piece;
    for (wchar_t c : line + L' ') {
        if (c != L' ') {
            piece += c;
            continue;
        }
        if (piece.size() > 1) {
            wchar_t const last = piece.back();
            if (last == L',' || last == L'.' || last == L':') piece.pop_back();
            bool const spoiled = piece.find_first_of(L"0123456789.") != std::wstring::npos;
            if (piece.size() >= 3 && piece.size() <= 50 && !spoiled && _numberOf(piece) != 0)
                numbers.push_back(_numberOf(piece));
        }
        piece.clear();
    }
    return numbers;
}

std::vector<unsigned int> _plainRun(std::wstring const& line)
{
    std::wstring kept;
    for (wchar_t c : line)
        if (std::wstring(L",.:_ -/\\").find(c) == std::wstring::npos) kept += c;
    std::vector<unsigned int> numbers;
    size_t i = 0;
    while (i < kept.size()) {
        size_t const left = kept.size() - i;
        size_t length = 2;
        unsigned int last = 0;
        while (left >= 3) {
            unsigned int const number = _numberOf(kept.substr(i, length));
            if (number == 0) break;
            last = number;
            ++length;
            if (length >= left) break;
        }
        if (last == 0) {
            ++i;
        } else {
            numbers.push_back(last);
            i += length - 1;
        }
    }
    return numbers;
}

std::string _lowered(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

template <class Cut>
std::wstring _plain(std::string const& text, size_t maxLines, size_t minTokens, bool lower, Cut cut)
{
    std::wstring tokens;
    size_t at = 0;
    for (size_t lines = 0; lines < maxLines && at < text.size() && tokens.size() < 600; ++lines) {
        size_t const end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        at = end + 1;
        if (line.size() > 8095) break;
        if (line.size() < 11) continue;
        if (_lowered(line).find("disclaimer") != std::string::npos) break;
        if (line.back() == '\r') line.pop_back();
        if (lower) line = _lowered(line);
        wchar_t wide[2048];
        Utf2lang().str2wc(line.data(), line.size(), wide, 2048, "UTF-8");
        std::vector<unsigned int> const numbers = cut(std::wstring(wide));
        if (numbers.size() < minTokens) continue;
        for (unsigned int number : numbers)
            if (tokens.size() < 600) tokens += static_cast<wchar_t>(number);
    }
    return tokens;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    TD tokens("us-ascii");
    tokens.getSemantics_1(text, _words());
    if (tokens.tokens() != _plain(text, 50, 2, true, _plainWords)) std::abort();
    tokens.getSemantics_2(text, _words());
    if (tokens.tokens() != _plain(text, 80, 3, false, _plainRun)) std::abort();
    return 0;
}
