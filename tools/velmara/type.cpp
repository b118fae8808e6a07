// `velmara type`: what a file is by its content and its name, and on demand why.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <velmara/Exception.h>
#include <velmara/SharedMimeInfo.h>

#include "MessageVerb.h"
#include "facts/Shown.h"
#include "facts/TypeReasons.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;
using Why = MimeTypeExplanation;

struct Options : MessageOptions {
    std::string database;
    bool explain = false;
};

/// All tests of the database that people use lie within.
constexpr unsigned _lookedAt = 64 * 1024;

Json _jsonOf(Why::GlobHit const& hit)
{
    return Json{{"type", hit.type->mimeType},
                {"pattern", hit.glob->pattern},
                {"weight", hit.glob->weight},
                {"ignoreCase", hit.glob->ignoreCase},
                {"kept", hit.kept}};
}

Json _jsonOf(Why::MagicHit const& hit)
{
    Json json{
        {"type", hit.type->mimeType}, {"priority", hit.magic->priority},       {"test", kindOf(*hit.match)},
        {"value", hit.match->value},  {"offsetStart", hit.match->offsetStart}, {"offsetEnd", hit.match->offsetEnd}};
    if (hit.match->hasMask) json["mask"] = hit.match->mask;
    json["nested"] = hit.match->matches.size();
    return json;
}

template <class Hits> Json _jsonOf(Hits const& hits)
{
    Json json = Json::array();
    for (auto const& hit : hits) json.push_back(_jsonOf(hit));
    return json;
}

void _showJson(Input const& input, Why const& why, unsigned int code, bool explain)
{
    Json json{{"type", *why.mimeType}, {"code", code}};
    if (explain) {
        json["reason"] = nameOf(why.reason);
        json["globs"] = _jsonOf(why.globs);
        json["magic"] = _jsonOf(why.magics);
    }
    writeJson(input, json);
}

void _showReasons(Why const& why)
{
    for (Why::GlobHit const& hit : why.globs)
        std::cout << "    name:    " << shown(hit.type->mimeType) << " by " << shown(hit.glob->pattern) << ", weight "
                  << hit.glob->weight << (hit.kept ? "\n" : ", dropped for a heavier or longer one\n");
    for (Why::MagicHit const& hit : why.magics)
        std::cout << "    content: " << shown(hit.type->mimeType) << " by " << testOf(*hit.match) << ", priority "
                  << hit.magic->priority << '\n';
    std::cout << "    because: " << textOf(why.reason) << '\n';
}

int _tellType(Input& input, SharedMimeInfoImpl const& database, Options const& options)
{
    Buffer start(static_cast<int>(_lookedAt), 0);
    input.media().read(start, _lookedAt);
    Why const why = database.explain(start, input.fileName());
    unsigned int const code = database.type(*why.mimeType);
    if (options.json)
        _showJson(input, why, code, options.explain);
    else {
        std::cout << shown(input.name()) << ": " << shown(*why.mimeType) << ", "
                  << (code ? "code " + std::to_string(code) : "no code") << '\n';
        if (options.explain) _showReasons(why);
    }
    return Done;
}

int _tellTypes(SharedMimeInfoImpl const& database, Options const& options)
{
    return forEachInput(options.files, [&](Input& in) { return _tellType(in, database, options); });
}

int _run(Options const& options)
{
    try {
        if (!options.database.empty()) return _tellTypes(SharedMimeInfoImpl(options.database), options);
        return _tellTypes(SharedMimeInfoImpl::instance(), options);
    } catch (Exception const& failure) {
        complain("type database", failure.stringParameter());
        return WrongUseOrUnreadable;
    }
}

} // namespace

void addType(CLI::App& commandLine, Action& action)
{
    auto options = std::make_shared<Options>();
    CLI::App* verb = commandLine.add_subcommand("type", "Tell what files are by their content and name");
    verb->add_option("FILE", options->files, "Files of any kind; \"-\" is standard input, which has no name")
        ->required();
    verb->add_flag("--json", options->json, "One JSON object a file");
    verb->add_flag("--explain", options->explain, "Show what fits the name and the content, and what decided");
    verb->add_option("--database", options->database, "A shared-mime-info file other than the installed one");
    verb->footer("Example: velmara type --explain report.docx");
    verb->callback([options, &action] { action = [options] { return _run(*options); }; });
}

} // namespace VelmaraCommand
