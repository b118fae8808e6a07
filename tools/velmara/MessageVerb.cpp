#include "MessageVerb.h"

#include <iostream>

#include "facts/Shown.h"

namespace VelmaraCommand {

void printName(Input const& input, MessageOptions const& options)
{
    if (options.files.size() > 1) std::cout << shown(input.name()) << ":\n";
}

void writeJson(Input const& input, Json const& fields)
{
    Json json{{"file", input.name()}};
    json.update(fields);
    writeJsonLine(json);
}

} // namespace VelmaraCommand
