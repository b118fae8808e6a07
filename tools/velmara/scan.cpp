// `velmara scan`: one line of JSON for each message of files, mailboxes, directories and archives. What is
// found where stands in scan/; here are the options, and what they come to.
#include <sys/stat.h>

#include <charconv>
#include <csignal>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <oneapi/tbb/info.h>

#include "Input.h"
#include "Verb.h"
#include "facts/Fingerprint.h"
#include "facts/MessageFacts.h"
#include "facts/Text.h"
#include "scan/DirectoryWalk.h"
#include "scan/Interrupt.h"
#include "scan/MessageLine.h"
#include "scan/Pipeline.h"

namespace VelmaraCommand {

namespace {

struct Options {
    std::vector<std::string> paths;
    std::string list; // of paths with NULs between them
    unsigned int threads = static_cast<unsigned int>(oneapi::tbb::info::default_concurrency());
    std::string shard = "0/1";
    std::string output;
    bool resume = false, mbox = false;
    std::uint64_t maxBytes = 64 << 20, maxParts = 1000, maxItems = 20000;
    double timeout = 0;
    std::uint64_t textBytes = 1024;
};

/// Paths with NULs between them, read as they are asked for.
class PathList {
public:
    explicit PathList(std::string const& path)
    {
        if (path == "-") return;
        m_file.open(path, std::ios::binary);
        if (!m_file) throw FileFailure(path, ScanFailure::ofSystem().what());
    }
    bool next(std::string& path)
    {
        return static_cast<bool>(std::getline(m_file.is_open() ? m_file : std::cin, path, '\0'));
    }

private:
    std::ifstream m_file;
};

/// The paths of the command line, then those of the list.
std::function<bool(std::string&)> _pathsOf(Options const& options)
{
    auto list = options.list.empty() ? nullptr : std::make_shared<PathList>(options.list);
    return [&options, list, i = std::size_t(0)](std::string& path) mutable {
        if (i == options.paths.size()) return list && list->next(path);
        path = options.paths[i++];
        return true;
    };
}

/// What all files have in bytes, for the time left; of standard input only if it is a file.
void _addSizes(Options const& options, std::atomic<std::uint64_t>& bytes, std::atomic<bool> const& stop)
{
    auto const add = [&](char const* path) {
        struct stat status;
        bool const known = (path ? ::stat(path, &status) : ::fstat(STDIN_FILENO, &status)) == 0;
        if (known && S_ISREG(status.st_mode)) bytes += static_cast<std::uint64_t>(status.st_size);
    };
    for (std::string const& path : options.paths) {
        if (path == "-") add(nullptr);
        DirectoryWalk walk(path, [](auto&&...) {});
        for (DirectoryWalk::Found found; !stop && path != "-" && walk.next(found);) add(found.path.c_str());
    }
}

/// Reads digits from the front of a text; false if there are none, or too many for a number.
bool _takeNumber(std::string_view& text, std::uint64_t& number)
{
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

/// Reads "I/N"; false if it is none.
bool _readShard(std::string_view text, ScanOptions& scan)
{
    if (!_takeNumber(text, scan.shard) || !startsWith(text, "/")) return false;
    text.remove_prefix(1);
    return _takeNumber(text, scan.shards) && text.empty() && scan.shard < scan.shards;
}

/// Two runs with the same settings over the same input write the same lines.
std::string _settingsOf(Options const& options)
{
    Json settings{{"fingerprint", fingerprint()},  {"paths", options.paths},        {"files0-from", options.list},
                  {"shard", options.shard},        {"max-bytes", options.maxBytes}, {"max-parts", options.maxParts},
                  {"max-items", options.maxItems}, {"timeout", options.timeout},    {"text-bytes", options.textBytes},
                  {"mbox", options.mbox}};
    return settings.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::unique_ptr<LineOutput> _openOutput(Options const& options)
{
    if (options.output.empty()) return std::make_unique<LineOutput>();
    return std::make_unique<LineOutput>(options.output, _settingsOf(options), options.resume);
}

/// Goes on behind the last message that has a line.
void _resumeAt(LineOutput const& output, ScanOptions& scan)
{
    if (output.lastLine().empty()) return;
    LastMessage const last = lastMessageOf(output.lastLine());
    scan.first = last.number + 1;
    scan.checkLast = [last](FoundMessage const& now) { requireSame(last, now); };
}

class Run {
public:
    explicit Run(Options const& options)
        : m_options(options), m_progress([&options](auto& bytes, auto const& stop) { _addSizes(options, bytes, stop); })
    {}

    int run(ScanOptions scan)
    {
        InterruptScope const interrupts;
        std::unique_ptr<LineOutput> const output = _openOutput(m_options);
        _resumeAt(*output, scan);
        ScanContext context;
        context.complain = [this](auto severity, auto const& place, auto const& reason) {
            tell(severity, place, reason);
        };
        context.mbox = m_options.mbox;
        context.bytesDone = m_progress.bytesDone();
        if (m_options.maxBytes > 0) context.collect.most = m_options.maxBytes + 1; // enough to see that there is more
        std::unique_ptr<MessageSource> const source = messagesOfPaths(context, _pathsOf(m_options));
        ScanResult const result = scanAll(*source, context, scan, analyser(), *output, m_progress);
        if (interrupted()) return Done; // by then the process has ended
        output->finish();
        return m_unreadable ? WrongUseOrUnreadable : m_leftOut || result.capped > 0 ? DoneWithFindings : Done;
    }

private:
    Analyse analyser() const
    {
        Limits limits;
        limits.bytes = m_options.maxBytes;
        limits.parts = m_options.maxParts;
        limits.items = m_options.maxItems;
        limits.time = std::chrono::milliseconds(static_cast<std::int64_t>(m_options.timeout * 1000));
        Wanted wanted;
        wanted.runs = false;
        wanted.textBytes = m_options.textBytes;
        return [limits, wanted](FoundMessage const& message, std::uint64_t number) {
            return lineOf(message, number, limits, wanted);
        };
    }

    void tell(Severity severity, std::string const& place, std::string const& reason)
    {
        if (interrupted()) return; // what was cut short is not at fault
        (severity == Severity::Unreadable ? m_unreadable : m_leftOut) = true;
        m_progress.aside([&] { complain(place, reason); });
    }

    Options const& m_options;
    Progress m_progress;
    std::atomic<bool> m_leftOut{false}, m_unreadable{false};
};

int _scan(Options const& options)
{
    ScanOptions scan;
    scan.threads = options.threads;
    if (!_readShard(options.shard, scan)) {
        complain("--shard " + options.shard, "is not I/N with I from 0 to N - 1");
        return WrongUseOrUnreadable;
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows beyond a limit is an error like a full disk
    int status = Done;
    try {
        status = Run(options).run(scan);
    } catch (FileFailure const& failure) {
        status = WrongUseOrUnreadable;
        if (!interrupted()) complain(failure.place, failure.what());
    } catch (ScanFailure const& failure) {
        status = WrongUseOrUnreadable;
        complain(options.output, failure.what());
    }
    endByInterrupt();
    return status;
}

void _addOptions(CLI::App& verb, Options& options)
{
    verb.add_option("PATH", options.paths,
                    "Messages, mboxes, Maildirs, directories, tar or zip archives; \"-\" is "
                    "standard input");
    verb.add_option("--files0-from", options.list,
                    "Also the paths in this file, each ended by a NUL; \"-\" is "
                    "standard input");
    verb.add_option("-j,--jobs", options.threads, "Threads; as many as processors unless given")
        ->check(CLI::Range(1, 1024));
    verb.add_option("--shard", options.shard, "I/N: only the messages whose number, modulo N, is I")
        ->capture_default_str();
    verb.add_option("-o,--output", options.output, "Write to a file, which appears once it is whole");
    verb.add_flag("--resume", options.resume, "Go on with the file that an interrupted scan with these settings left")
        ->needs("--output");
    verb.add_flag("--mbox", options.mbox, "Every file is an mbox, even if its beginning has been cut off");
    verb.add_option("--max-bytes", options.maxBytes, "Read so much of a message; 0: all")
        ->transform(CLI::AsSizeValue(false))
        ->default_str("64M");
    verb.add_option("--max-parts", options.maxParts, "Read so many parts of a message; 0: all")->capture_default_str();
    verb.add_option("--max-items", options.maxItems,
                    "Read so many lines of headers, links, images and tokens of a message; "
                    "0: all")
        ->capture_default_str();
    verb.add_option("--timeout", options.timeout,
                    "Seconds for a message; 0: any time. Lines may then differ from "
                    "run to run")
        ->check(CLI::Range(0.0, 1e6))
        ->capture_default_str();
    verb.add_option("--text-bytes", options.textBytes, "Keep so much of the text of each part")->capture_default_str();
}

} // namespace

void addScan(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("scan", "Write one line of JSON for each message of an archive");
    _addOptions(*verb, *options);
    verb->footer("Example: velmara scan -j 4 -o archive.ndjson archive.mbox");
    verb->callback([options, &action] {
        if (options->paths.empty() && options->list.empty()) throw CLI::RequiredError("PATH or --files0-from");
        action = [options] { return _scan(*options); };
    });
}

} // namespace VelmaraCommand
