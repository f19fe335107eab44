#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace agentSimulator
{

enum class CommandKind {
    send,         ///< text: the bytes of one text for the companion
    sendFile,     ///< text: path; the content goes out as one text
    wait,         ///< number: milliseconds
    expect,       ///< text: a received line; number: time-out in milliseconds
    expectPrefix, ///< text: how a received line begins; number: time-out in milliseconds
    pingOn,       ///< number: period in milliseconds
    pingOff,
    answerOn,
    answerOff,
    print, ///< text
    run,   ///< text: shell command
    exit,  ///< number: status
    kill,  ///< number: signal
    interactive,
    loop, ///< number: rounds; partner: the matching end
    end,  ///< partner: the matching loop
};

/// One step of a script, ready to be played.
struct Command {
    CommandKind kind = CommandKind::wait;
    std::string text = {}; ///< see CommandKind; escapes are already replaced
    long number = 0;       ///< see CommandKind
    size_t partner = 0;    ///< index of the other end of a loop
    int line = 0;          ///< line of the script, from 1; 0 for a typed command
};

/// One line read: a command, or nothing (empty line, comment), or what is wrong with it.
struct ParsedLine {
    std::optional<Command> command = {};
    std::string error = {}; ///< empty when the line is good
};

ParsedLine parseLine(std::string_view line);

/// Whether the first word of the line is a command; a typed line that has none is sent as it stands.
bool startsWithCommand(std::string_view line);

} // namespace agentSimulator
