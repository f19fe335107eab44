// The two command lines. As an agent the simulator gets the fixed list that the companion passes to its agent, where
// there is no room for anything of our own, so script, record, status and console come from the environment.

#include "agentSimulator/options.h"

#include "agentSimulator/session.h"
#include "agentSimulator/wireText.h"

#include <cstddef>
#include <cstdio>

namespace agentSimulator
{

namespace
{

constexpr char usageText[] =
    "Usage: agentSimulator --pipes DIR [--script FILE] [--record FILE] [--create-pipes]\n"
    "                      [--send-timeout MS] [--run CMD ARGS...]\n"
    "       agentSimulator -productType true ... -applicationPath HOME ...\n"
    "Plays the agent's side of the pipes in DIR (second form, as the companion starts it: HOME/.brindle/temp;\n"
    "BRINDLE_AGENT_SCRIPT, BRINDLE_AGENT_RECORD and BRINDLE_AGENT_EXIT name script, record and exit status).\n"
    "technicianConsole takes the same arguments, and takes over where BRINDLE_AGENT_CONSOLE is 1.\n";

std::string textOf(const char *value)
{
    return value ? value : "";
}

/// The value that follows the name; names and values alternate after the program.
const std::string *findAgentArgument(const std::vector<std::string> &arguments, const std::string &name)
{
    for (size_t i = 1; i + 1 < arguments.size(); i += 2) {
        if (arguments[i] == name)
            return &arguments[i + 1];
    }
    return nullptr;
}

ParsedOptions parseAgentForm(const std::vector<std::string> &arguments, const Environment &environment)
{
    ParsedOptions parsed;
    Options &options = parsed.options;
    options.arguments = arguments;
    options.isStartedByCompanion = true;
    // A list that was cut short, by a value that its sender did not have, still names the user's home by the
    // environment.
    const std::string *const home = findAgentArgument(arguments, "-applicationPath");
    options.pipeDirectory = (home ? *home : textOf(environment("HOME"))) + "/.brindle/temp";
    options.scriptPath = textOf(environment("BRINDLE_AGENT_SCRIPT"));
    options.recordPath = textOf(environment("BRINDLE_AGENT_RECORD"));
    options.wantsConsole = textOf(environment("BRINDLE_AGENT_CONSOLE")) == "1";
    const std::string status = textOf(environment("BRINDLE_AGENT_EXIT"));
    if (status.empty())
        return parsed;
    if (const std::optional<long> number = readNumber(status, 255))
        options.exitStatus = static_cast<int>(*number);
    else
        parsed.error = "BRINDLE_AGENT_EXIT is no status from 0 to 255";
    return parsed;
}

struct ValueOption {
    const char *name;
    std::string Options::*field;
};

constexpr ValueOption valueOptions[] = {
    {"--pipes", &Options::pipeDirectory},
    {"--script", &Options::scriptPath},
    {"--record", &Options::recordPath},
};

/// The field that an option fills with the argument that follows it; null when it is no such option.
std::string *findField(Options &options, const std::string &name)
{
    for (const ValueOption &row : valueOptions) {
        if (name == row.name)
            return &(options.*row.field);
    }
    return nullptr;
}

/// Reads the option at the index and moves the index to its last argument. Returns what is wrong, or nothing.
std::string readOption(const std::vector<std::string> &arguments, size_t &index, Options &options)
{
    const std::string &name = arguments[index];
    if (name == "--create-pipes") {
        options.createsPipes = true;
        return {};
    }
    std::string *const field = findField(options, name);
    if (!field && name != "--send-timeout" && name != "--run")
        return "unknown option " + name;
    if (++index == arguments.size())
        return name + " needs a value";
    if (field) {
        *field = arguments[index];
    } else if (name == "--run") {
        options.companionCommand.assign(arguments.begin() + static_cast<std::ptrdiff_t>(index), arguments.end());
        index = arguments.size() - 1;
    } else if (const std::optional<long> number = readNumber(arguments[index], 3600000)) {
        options.sendTimeoutMs = *number;
    } else {
        return name + " needs a number of milliseconds";
    }
    return {};
}

} // namespace

ParsedOptions parseOptions(const std::vector<std::string> &arguments, const Environment &environment)
{
    if (arguments.size() > 1 && arguments[1] == "-productType")
        return parseAgentForm(arguments, environment);
    ParsedOptions parsed;
    parsed.options.arguments = arguments;
    if (arguments.size() > 1 && (arguments[1] == "--help" || arguments[1] == "-h")) {
        parsed.options.wantsHelp = true;
        return parsed;
    }
    for (size_t i = 1; i < arguments.size() && parsed.error.empty(); i++)
        parsed.error = readOption(arguments, i, parsed.options);
    if (parsed.error.empty() && parsed.options.pipeDirectory.empty())
        parsed.error = "--pipes DIR is missing";
    return parsed;
}

int refuseOptions(const ParsedOptions &parsed)
{
    if (parsed.options.wantsHelp) {
        fputs(usageText, stdout);
        return 0;
    }
    fprintf(stderr, "%s: %s\n%s", parsed.options.arguments.empty() ? "" : parsed.options.arguments[0].c_str(),
            parsed.error.c_str(), usageText);
    return badUsageStatus;
}

} // namespace agentSimulator
