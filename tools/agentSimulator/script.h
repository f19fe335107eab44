#pragma once

#include "agentSimulator/command.h"

#include <string>
#include <string_view>
#include <vector>

namespace agentSimulator
{

/// A whole script read: its commands, or the first mistake with its line number.
struct ParsedScript {
    std::vector<Command> commands = {};
    std::string error = {}; ///< empty when the script is good
};

ParsedScript parseScript(std::string_view text);

} // namespace agentSimulator
