// Builds the directory of word lists that the library reads. The number of a word is its place, and
// installations compare such numbers: the same inputs in the same order give the same bytes.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <system_error>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include <velmara/Velmara.h>

#include "WordSource.h"
#include "manual/Manual.h"

namespace VelmaraDict {
namespace {

namespace fs = std::filesystem;

struct Input {
    std::string format, file;
};

struct Options {
    std::string out, tags;
    std::vector<std::string> words;
};

/// The lists that are matched against running text; all others are for words between blanks.
std::set<std::string> const _runningLists = {"xdict-ce-gb.idx", "xdict-ce-big5.idx", "jmdict-ja-en.idx",
                                             "KoreanEnglishDic.idx"};
std::set<std::string> const _wordLists = {
    "xdict-ec-gb.idx", "e2i.idx", "Dico_result_38.xdxf.idx", "rus_eng_full.idx", "Babylon_Hebrew_English.idx",
    "ara-eng.index"};

bool _holdsLineFeed(std::uint32_t character)
{
    for (; character != 0; character >>= 8)
        if ((character & 0xFF) == '\n') return true;
    return false;
}

/// Records end at the first byte of 10, so a character that holds one cannot be stored.
bool _canBeStored(std::wstring const& word)
{
    constexpr size_t longest = 500;
    return word.size() <= longest && std::none_of(word.begin(), word.end(), _holdsLineFeed);
}

bool _isLetter(wchar_t c)
{
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c >= 0x80;
}

bool _canBeFound(std::wstring const& word, bool running)
{
    constexpr size_t longest = 50;
    if (std::none_of(word.begin(), word.end(), _isLetter)) return false; // ornaments between entries
    if (running) return word.size() >= 2 && word.find_first_of(L",.:_ -/\\") == std::wstring::npos;
    return word.size() >= 3 && word.size() <= longest && word.find_first_of(L"0123456789. ") == std::wstring::npos;
}

/// Text is searched with its ASCII letters lowered where words stand between blanks.
void _lower(std::wstring& word)
{
    for (wchar_t& c : word)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c + (L'a' - L'A'));
}

void _append(std::string& bytes, std::uint32_t number)
{
    bytes.append(reinterpret_cast<char const*>(&number), sizeof number);
}

std::string _recordsOf(std::vector<Input> const& inputs, bool running, size_t& count)
{
    std::set<std::wstring> seen;
    std::string bytes;
    for (Input const& input : inputs)
        for (std::wstring word : readWords(input.format, input.file)) {
            if (!running) _lower(word);
            if (!_canBeFound(word, running) || !_canBeStored(word) || !seen.insert(word).second) continue;
            for (wchar_t c : word) _append(bytes, static_cast<std::uint32_t>(c));
            _append(bytes, 0);
            bytes += '\n';
        }
    count = seen.size();
    return bytes;
}

std::string _tagRecordsOf(std::string const& file, size_t& count)
{
    std::string bytes;
    count = 0;
    for (std::string const& tag : readTags(file)) {
        _append(bytes, static_cast<std::uint32_t>(tag.size()));
        bytes += tag;
        _append(bytes, static_cast<std::uint32_t>(++count));
    }
    return bytes;
}

/// "NAME=FORMAT:FILE", in the order of the command line.
std::map<std::string, std::vector<Input>> _inputsOf(std::vector<std::string> const& words)
{
    std::map<std::string, std::vector<Input>> lists;
    for (std::string const& word : words) {
        size_t const equals = word.find('='), colon = word.find(':', equals == std::string::npos ? 0 : equals);
        if (equals == std::string::npos || colon == std::string::npos)
            throw BadInput(word, "is no NAME=FORMAT:FILE, such as e2i.idx=plain:/usr/share/dict/words");
        std::string const name = word.substr(0, equals);
        if (_runningLists.count(name) + _wordLists.count(name) == 0)
            throw BadInput(word, "the library reads no list of that name");
        lists[name].push_back({word.substr(equals + 1, colon - equals - 1), word.substr(colon + 1)});
    }
    return lists;
}

/// Writes a directory beside its place and moves it there when it is whole.
class NewDirectory {
public:
    explicit NewDirectory(std::string const& place)
        : m_place(place), m_beside(place + ".new-" + std::to_string(::getpid()))
    {
        fs::create_directories(m_beside);
    }
    ~NewDirectory()
    {
        std::error_code ignored;
        fs::remove_all(m_beside, ignored);
    }
    void write(std::string const& name, std::string const& bytes) const
    {
        std::ofstream out(m_beside / name, std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out)
            throw BadInput((m_beside / name).string(), "cannot be written: " + std::generic_category().message(errno));
    }
    void moveToPlace() const
    {
        fs::path const old = m_place.string() + ".old-" + std::to_string(::getpid());
        if (fs::exists(m_place)) fs::rename(m_place, old);
        fs::rename(m_beside, m_place);
        fs::remove_all(old);
    }

private:
    fs::path m_place, m_beside;
};

void _build(Options const& options)
{
    NewDirectory const directory(options.out);
    size_t count = 0;
    if (!options.tags.empty()) {
        directory.write("html.dict", _tagRecordsOf(options.tags, count));
        std::printf("html.dict: %zu names\n", count);
    }
    for (auto const& [name, inputs] : _inputsOf(options.words)) {
        directory.write(name, _recordsOf(inputs, _runningLists.count(name) != 0, count));
        std::printf("%s: %zu words\n", name.c_str(), count);
    }
    directory.moveToPlace();
}

VelmaraManual::Manual _manual()
{
    return {VELMARA_VERSION,
            {{"EXIT STATUS",
              {{"0", "The directory is there."},
               {"2", "Wrong use, or an input that cannot be read. Nothing is left behind, and a directory that was "
                     "there before stays."}}},
             {"SEE ALSO", {{"velmara(1)", "The command that reads mail with these lists."}}}}};
}

int _run(int argc, char** argv)
{
    CLI::App commandLine("Builds the directory of word lists for semantic tokens.", "velmara-dict");
    commandLine.set_version_flag("--version", "velmara-dict " VELMARA_VERSION, "Print the version and exit");
    Options options;
    commandLine.add_option("--out", options.out, "The directory to make, in place of one that is there")->required();
    commandLine.add_option("--tags", options.tags, "Names of HTML tags, one a line, for html.dict");
    commandLine.add_option("--words", options.words, "NAME=FORMAT:FILE; inputs of one NAME are joined in their order")
        ->type_size(1)
        ->allow_extra_args(false);
    commandLine.footer("Formats: plain, hunspell, dictd, edict.\n"
                       "Example: velmara-dict --out dict --tags data/html-tags.txt \\\n"
                       "           --words e2i.idx=plain:/usr/share/dict/words");
    if (VelmaraManual::printed(commandLine, _manual(), argc, argv)) return 0;
    try {
        commandLine.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return commandLine.exit(error) == 0 ? 0 : 2;
    }
    _build(options);
    return 0;
}

} // namespace
} // namespace VelmaraDict

int main(int argc, char** argv)
{
    try {
        return VelmaraDict::_run(argc, argv);
    } catch (std::filesystem::filesystem_error const& error) {
        std::fprintf(stderr, "velmara-dict: %s: %s\n", error.path1().c_str(), error.code().message().c_str());
        return 2;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "velmara-dict: %s\n", error.what());
        return 2;
    }
}
