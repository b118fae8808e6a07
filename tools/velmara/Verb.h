#pragma once

#include <functional>

#include <CLI/CLI.hpp>

namespace VelmaraCommand {

/// Exit statuses. A broken mail alone is never an error.
enum Status { Done = 0, DoneWithFindings = 1, WrongUseOrUnreadable = 2 };

/// What a verb does once its arguments are known; gives the exit status.
using Action = std::function<int()>;

/// Adds one verb with its options to the command line. When the verb is called, it leaves what is to
/// be done in the action. Each stands in a file of its own, named after the verb.
using AddVerb = void (*)(CLI::App& commandLine, Action& action);

void addBody(CLI::App& commandLine, Action& action);
void addDecode(CLI::App& commandLine, Action& action);
void addExplain(CLI::App& commandLine, Action& action);
void addGroup(CLI::App& commandLine, Action& action);
void addHeaders(CLI::App& commandLine, Action& action);
void addHtml(CLI::App& commandLine, Action& action);
void addInspect(CLI::App& commandLine, Action& action);
void addLinks(CLI::App& commandLine, Action& action);
void addNames(CLI::App& commandLine, Action& action);
void addReply(CLI::App& commandLine, Action& action);
void addReport(CLI::App& commandLine, Action& action);
void addRoute(CLI::App& commandLine, Action& action);
void addScan(CLI::App& commandLine, Action& action);
void addSelfTest(CLI::App& commandLine, Action& action);
void addSign(CLI::App& commandLine, Action& action);
void addText(CLI::App& commandLine, Action& action);
void addTokens(CLI::App& commandLine, Action& action);
void addTree(CLI::App& commandLine, Action& action);
void addType(CLI::App& commandLine, Action& action);

} // namespace VelmaraCommand
