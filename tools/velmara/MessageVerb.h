#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Input.h"
#include "Verb.h"
#include "facts/JsonLine.h"

namespace VelmaraCommand {

/// What all verbs take that tell something of messages.
struct MessageOptions {
    std::vector<std::string> files;
    bool json = false;
};

/// The name of the message ahead of what is printed of it, if there are several.
void printName(Input const& input, MessageOptions const& options);

/// The name of the message and the fields of an object, as one line of JSON.
void writeJson(Input const& input, Json const& fields);

/// A verb over message files. Options are MessageOptions, or derived from them where it takes more.
///
///     MessageVerb<Options> verb(commandLine, "tree", "Draw the parts of a message");
///     verb->add_flag("--headers", verb.options().headers, "Show each header");
///     verb.runForEach(_showTree, action);
template <class Options> class MessageVerb {
public:
    MessageVerb(CLI::App& commandLine, char const* name, char const* description,
                char const* json = "One JSON object a message")
        : m_verb(commandLine.add_subcommand(name, description)), m_options(std::make_shared<Options>())
    {
        m_verb->add_option("FILE", m_options->files, "Message files; \"-\" is standard input")->required();
        m_verb->add_flag("--json", m_options->json, json);
    }

    CLI::App* operator->() const { return m_verb; }
    Options& options() const { return *m_options; }

    void run(int (*work)(Options const&), Action& action) const
    {
        m_verb->callback([options = m_options, work, &action] { action = [=] { return work(*options); }; });
    }
    /// `show` gives the exit status of one message.
    void runForEach(int (*show)(Input&, Options const&), Action& action) const
    {
        m_verb->callback([options = m_options, show, &action] {
            action = [=] { return forEachInput(options->files, [&](Input& in) { return show(in, *options); }); };
        });
    }

private:
    CLI::App* m_verb; // the command line's
    std::shared_ptr<Options> m_options;
};

} // namespace VelmaraCommand
