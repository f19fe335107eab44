#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace agentSimulator
{

/// What a session is started with.
struct Options {
    std::vector<std::string> arguments = {}; ///< the command line as it came, program included
    std::string pipeDirectory = {};          ///< where "myfifo" and "Status" are
    std::string scriptPath = {};             ///< empty: no script
    std::string recordPath = {};             ///< empty: the record goes to standard output
    bool createsPipes = false;               ///< make the FIFOs that are missing
    bool isStartedByCompanion = false;       ///< the fixed agent command line was used: our parent is the companion
    std::vector<std::string> companionCommand = {}; ///< start this as our child; empty: nothing
    std::optional<int> exitStatus = {};             ///< end with it as soon as the script is over
    long sendTimeoutMs = 10000;                     ///< how long a text waits for its reader
    bool wantsHelp = false;
    bool wantsConsole = false; ///< the technician console takes over
};

struct ParsedOptions {
    Options options = {};
    std::string error = {}; ///< empty when the command line is good
};

/// Looks up an environment variable; null when it is not set.
using Environment = std::function<const char *(const char *name)>;

/// Reads either form of the command line: the agent's fixed one (first argument "-productType"), which takes the rest
/// from the environment, or the one for people (see refuseOptions).
ParsedOptions parseOptions(const std::vector<std::string> &arguments, const Environment &environment);

/// Tells a person how the program is called, because it was asked for or because the command line is no good.
/// Returns the program's exit status.
int refuseOptions(const ParsedOptions &parsed);

} // namespace agentSimulator
