// `velmara group`: the campaigns among the messages of a scan. Lines of another schema or of other data are
// refused, for their signatures would be alike or differ by chance.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <memory>
#include <system_error>

#include "Input.h"
#include "Verb.h"
#include "facts/JsonLine.h"
#include "facts/MailDate.h"
#include "facts/Shown.h"
#include "group/Groups.h"

namespace VelmaraCommand {

namespace {

constexpr std::uint64_t _maxComplaints = 10; // of one file

struct Options {
    std::vector<std::string> files;
    std::vector<std::string> kinds; // empty: all
    std::string temporary;
    std::uint64_t least = 2;
    size_t most = 5;
    bool json = false;
};

constexpr char const* _headings[groupKinds] = {"text signatures", "tag tokens", "image signatures", "link hosts"};

/// A file of the command line that is open for reading; closed at the end of the scope.
class File {
public:
    explicit File(std::string const& path)
        : m_descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_descriptor < 0) throw std::system_error(errno, std::generic_category());
    }
    ~File()
    {
        if (m_descriptor != STDIN_FILENO) ::close(m_descriptor);
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    int descriptor() const { return m_descriptor; }

private:
    int const m_descriptor;
};

/// What all lines have in common, as the first one tells it.
struct Origin {
    std::string schema, fingerprint;
    std::string place; // of that line; "" before it
};

/// Why grouping ends at once.
struct Mixture : std::runtime_error {
    Mixture(std::string where, std::string const& reason) : std::runtime_error(reason), place(std::move(where)) {}
    std::string place;
};

void _requireSame(char const* what, std::string const& value, std::string const& before, Origin const& origin,
                  std::string const& place)
{
    if (value == before) return;
    throw Mixture(place, what + (" " + value) + ", but " + origin.place + " has " + before +
                             ": such results cannot be compared; group them apart, or scan again with one version");
}

void _note(Origin& origin, ScanLine const& line, std::string const& place)
{
    if (origin.place.empty()) {
        if (line.schema != jsonSchema)
            throw Mixture(place, "schema " + line.schema + ", but this version reads " + jsonSchema);
        origin = Origin{line.schema, line.fingerprint, place};
    }
    _requireSame("schema", line.schema, origin.schema, origin, place);
    _requireSame("fingerprint", line.fingerprint, origin.fingerprint, origin, place);
}

/// Gives the number of lines that could not be read; of the first ones it is told why.
std::uint64_t _addLines(std::string const& path, Groups& groups, Origin& origin)
{
    File const file(path);
    ScanLineReader reader(file.descriptor());
    ScanLine line;
    std::string reason;
    std::uint64_t broken = 0;
    for (;;) {
        ScanLineReader::Outcome const outcome = reader.next(line, reason);
        if (outcome == ScanLineReader::AtEnd) break;
        std::string const place = nameOfInput(path) + ":" + std::to_string(reader.number());
        if (outcome == ScanLineReader::Read) {
            _note(origin, line, place);
            groups.add(line);
        } else if (++broken <= _maxComplaints) {
            complain(place, reason);
        }
    }
    if (broken > _maxComplaints)
        complain(nameOfInput(path), std::to_string(broken - _maxComplaints) + " more lines cannot be read");
    return broken;
}

int _addFile(std::string const& path, Groups& groups, Origin& origin)
{
    try {
        return _addLines(path, groups, origin) == 0 ? Done : DoneWithFindings;
    } catch (std::system_error const& failure) {
        complain(nameOfInput(path), failure.code().message());
        return WrongUseOrUnreadable;
    }
}

// ---- showing ----------------------------------------------------------------------------------

std::string _plural(std::uint64_t number, char const* noun)
{
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

void _showFacet(char const* label, Json const& facet)
{
    Json const& most = facet["most"];
    if (most.empty()) return;
    std::cout << "    " << label;
    char const* between = "";
    for (Json const& one : most) {
        std::cout << between << shown(one["value"].get_ref<std::string const&>()) << " (" << one["messages"] << ')';
        between = ", ";
    }
    std::uint64_t const others = facet["distinct"].get<std::uint64_t>() - most.size();
    if (others > 0) std::cout << ", and " << others << " more";
    std::cout << '\n';
}

void _showGroup(Json const& group)
{
    std::cout << _plural(group["messages"].get<std::uint64_t>(), "message") << "  "
              << shown(group["key"].get_ref<std::string const&>()) << '\n';
    if (group.contains("first"))
        std::cout << "    dates    " << shownTime(group["first"].get<std::int64_t>()) << " to "
                  << shownTime(group["last"].get<std::int64_t>()) << '\n';
    _showFacet("from     ", group["senders"]);
    _showFacet("subject  ", group["subjects"]);
    _showFacet("hosts    ", group["hosts"]);
}

void _showAll(Groups& groups)
{
    std::cout << _plural(groups.messages(), "message") << '\n';
    groups.finish(
        [](GroupKind kind, std::uint64_t number) {
            std::cout << '\n' << _headings[static_cast<size_t>(kind)] << ": " << _plural(number, "group") << '\n';
        },
        _showGroup);
}

void _writeAll(Groups& groups, Origin const& origin)
{
    groups.finish([](GroupKind, std::uint64_t) {},
                  [&](Json const& group) {
                      Json json{{"scannedWith", origin.fingerprint}};
                      for (auto const& field : group.items()) json[field.key()] = field.value();
                      writeJsonLine(json);
                  });
}

GroupOptions _optionsOf(Options const& options)
{
    GroupOptions group;
    group.least = options.least;
    group.most = options.most;
    group.sort.directory = options.temporary;
    if (options.kinds.empty()) return group;
    for (size_t i = 0; i < groupKinds; ++i)
        group.kinds[i] = std::count(options.kinds.begin(), options.kinds.end(), nameOf(static_cast<GroupKind>(i))) > 0;
    return group;
}

int _group(Options const& options)
{
    try {
        Groups groups(_optionsOf(options));
        Origin origin;
        int status = Done;
        for (std::string const& path : options.files) status = std::max(status, _addFile(path, groups, origin));
        options.json ? _writeAll(groups, origin) : _showAll(groups);
        return status;
    } catch (Mixture const& mixture) {
        complain(mixture.place, mixture.what());
    } catch (SpillFailure const& failure) {
        complain("group", std::string(failure.what()) + "; --temporary names another directory");
    }
    return WrongUseOrUnreadable;
}

std::vector<std::string> _kindNames()
{
    std::vector<std::string> names;
    for (size_t i = 0; i < groupKinds; ++i) names.push_back(nameOf(static_cast<GroupKind>(i)));
    return names;
}

} // namespace

void addGroup(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("group", "Find the campaigns among the messages of a scan");
    verb->add_option("FILE", options->files, "Lines that velmara scan wrote; \"-\" is standard input")->required();
    verb->add_option("--by", options->kinds, "What the messages of a group share: text, tags, image, host (all)")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(_kindNames()));
    verb->add_option("--min", options->least, "Messages of the smallest group that is shown (2)")
        ->check(CLI::PositiveNumber);
    verb->add_option("--top", options->most, "Senders, subjects and hosts to name of each group (5)")
        ->check(CLI::Range(0, 1000));
    verb->add_option("--temporary", options->temporary, "Directory of temporary files (TMPDIR, or /tmp)");
    verb->add_flag("--json", options->json, "One JSON object a group");
    verb->footer("Example: velmara group --by text,image --min 10 archive.ndjson");
    verb->callback([options, &action] { action = [options] { return _group(*options); }; });
}

} // namespace VelmaraCommand
