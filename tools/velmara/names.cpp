// `velmara names`: the vocabulary of verdicts.
#include <iostream>
#include <memory>
#include <string>

#include <velmara/ActionNames.h>
#include <velmara/ClassifierNames.h>

#include "Verb.h"
#include "facts/Shown.h"

namespace VelmaraCommand {

namespace {

using namespace Velmara;

int _showJson()
{
    ClassifierNames const& names = ClassifierNames::instance();
    Json json{{"classifiers", Json::array()}, {"actions", Json::array()}};
    for (ClassifierType type = 0; type < ClassifierNames::count; ++type)
        json["classifiers"].push_back(Json{{"number", type},
                                           {"name", names.mapToString(type)},
                                           {"category", static_cast<int>(names.category(type))},
                                           {"categoryName", names.categoryName(type)},
                                           {"spam", names.isSpamClassifier(type)}});
    for (auto const& [value, name] : ActionNames::instance().actions())
        json["actions"].push_back(Json{{"value", value}, {"name", name}});
    writeJsonLine(json);
    return Done;
}

int _showText()
{
    ClassifierNames const& names = ClassifierNames::instance();
    std::cout << "Classifiers: number, category, name\n";
    for (ClassifierType type = 0; type < ClassifierNames::count; ++type)
        std::cout << type << '\t' << static_cast<int>(names.category(type)) << ' ' << names.categoryName(type) << '\t'
                  << names.mapToString(type) << '\n';
    std::cout << "\nActions: bit, name\n";
    for (auto const& [value, name] : ActionNames::instance().actions()) std::cout << value << '\t' << name << '\n';
    return Done;
}

} // namespace

void addNames(CLI::App& commandLine, Action& action)
{
    auto json = std::make_shared<bool>(false);
    CLI::App* verb = commandLine.add_subcommand("names", "List the names of classifiers and actions");
    verb->add_flag("--json", *json, "One JSON object");
    verb->footer("Example: velmara names --json");
    verb->callback([json, &action] { action = [json] { return *json ? _showJson() : _showText(); }; });
}

} // namespace VelmaraCommand
