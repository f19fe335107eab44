// Reads a whole script: its lines one by one, then the loops that tie some of them together.
// Pure: text in, commands out.

#include "agentSimulator/script.h"

#include <utility>

namespace agentSimulator
{

namespace
{

/// Ties every loop to its end. Returns what is wrong, or nothing.
std::string connectLoops(std::vector<Command> &commands)
{
    std::vector<size_t> open;
    for (size_t i = 0; i < commands.size(); i++) {
        if (commands[i].kind == CommandKind::loop)
            open.push_back(i);
        if (commands[i].kind != CommandKind::end)
            continue;
        if (open.empty())
            return "line " + std::to_string(commands[i].line) + ": end without a loop";
        commands[i].partner = open.back();
        commands[open.back()].partner = i;
        open.pop_back();
    }
    return open.empty() ? std::string()
                        : "line " + std::to_string(commands[open.back()].line) + ": loop without an end";
}

} // namespace

ParsedScript parseScript(std::string_view text)
{
    ParsedScript script;
    for (int number = 1; !text.empty(); number++) {
        const size_t end = text.find('\n');
        ParsedLine parsed = parseLine(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (!parsed.error.empty())
            return {{}, "line " + std::to_string(number) + ": " + parsed.error};
        if (!parsed.command)
            continue;
        parsed.command->line = number;
        script.commands.push_back(std::move(*parsed.command));
    }
    script.error = connectLoops(script.commands);
    return script;
}

} // namespace agentSimulator
