// `velmara selftest`: whether the library reads here as it does elsewhere, and the fingerprint of
// everything that results depend on.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>

#include "Verb.h"
#include "facts/Fingerprint.h"
#include "facts/SelfTest.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

void _writeJson(std::vector<VectorOutcome> const& outcomes)
{
    Json json{{"components", Json::array()}, {"vectors", Json::array()}};
    for (Component const& one : components()) json["components"].push_back({{"name", one.name}, {"value", one.value}});
    for (VectorOutcome const& one : outcomes)
        json["vectors"].push_back(
            {{"name", one.name}, {"holds", one.holds()}, {"expected", one.expected}, {"given", one.given}});
    writeJsonLine(json);
}

void _writeText(std::vector<VectorOutcome> const& outcomes)
{
    for (VectorOutcome const& one : outcomes)
        if (!one.holds())
            std::cout << "failed: " << shown(one.name) << "\n    expected " << shown(one.expected) << "\n    given    "
                      << shown(one.given) << '\n';
    size_t width = 0;
    for (Component const& one : components()) width = std::max(width, one.name.size());
    auto const write = [width](std::string const& name, std::string const& value) {
        std::cout << std::left << std::setw(static_cast<int>(width)) << name << "  " << shown(value) << '\n';
    };
    for (Component const& one : components()) write(one.name, one.value);
    write("fingerprint", fingerprint());
}

int _test(bool json)
{
    std::vector<VectorOutcome> const outcomes = runVectors();
    json ? _writeJson(outcomes) : _writeText(outcomes);
    bool const allHold = std::all_of(outcomes.begin(), outcomes.end(), [](auto const& one) { return one.holds(); });
    return allHold ? Done : DoneWithFindings;
}

} // namespace

void addSelfTest(CLI::App& commandLine, Action& action)
{
    auto json = std::make_shared<bool>(false);
    CLI::App* verb = commandLine.add_subcommand("selftest", "Test the installation and give its fingerprint");
    verb->add_flag("--json", *json, "One JSON object");
    verb->footer("Example: velmara selftest >here; diff here there");
    verb->callback([json, &action] { action = [json] { return _test(*json); }; });
}

} // namespace VelmaraCommand
