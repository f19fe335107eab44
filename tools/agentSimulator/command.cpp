// Reads one command: a line, looked up by its first word in one table whose rows say how the rest of it is read.
// Commands that only differ in how they build a text become the same "send". Pure: text in, commands out.

#include "agentSimulator/command.h"

#include "agentSimulator/agentTexts.h"
#include "agentSimulator/wireText.h"

#include <csignal>
#include <cstring>

namespace agentSimulator
{

namespace
{

constexpr long defaultTimeoutMs = 10000;
constexpr long defaultPingMs = 5000;
constexpr long maxNumber = 1000000000;
constexpr char badEscape[] = "an escape is none of \\n \\t \\\\ \\xHH";

ParsedLine failed(const std::string &error)
{
    return {std::nullopt, error};
}

ParsedLine made(CommandKind kind, std::string text, long number = 0)
{
    return {Command{kind, std::move(text), number}, {}};
}

struct SplitText {
    std::string_view first;
    std::string_view rest;
};

SplitText splitFirstWord(std::string_view text)
{
    text = trimmed(text);
    const size_t end = text.find_first_of(" \t");
    if (end == std::string_view::npos)
        return {text, {}};
    return {text.substr(0, end), trimmed(text.substr(end))};
}

SplitText splitLastWord(std::string_view text)
{
    const size_t begin = text.find_last_of(" \t");
    if (begin == std::string_view::npos)
        return {text, {}};
    return {text.substr(begin + 1), trimmed(text.substr(0, begin))};
}

ParsedLine parseText(CommandKind kind, std::string_view rest, const char *ending)
{
    const std::optional<std::string> text = unescapeText(rest);
    if (!text)
        return failed(badEscape);
    return made(kind, *text + ending);
}

ParsedLine parseSend(std::string_view rest)
{
    return parseText(CommandKind::send, rest, "\n");
}

ParsedLine parseSendRaw(std::string_view rest)
{
    return parseText(CommandKind::send, rest, "");
}

ParsedLine parsePrint(std::string_view rest)
{
    return parseText(CommandKind::print, rest, "");
}

ParsedLine parseSendFile(std::string_view rest)
{
    return rest.empty() ? failed("the path is missing") : made(CommandKind::sendFile, std::string(rest));
}

ParsedLine parseRun(std::string_view rest)
{
    return made(CommandKind::run, std::string(rest));
}

ParsedLine parseNumber(CommandKind kind, std::string_view rest)
{
    const std::optional<long> number = readNumber(rest, maxNumber);
    return number ? made(kind, {}, *number) : failed("a number is wanted");
}

ParsedLine parseWait(std::string_view rest)
{
    return parseNumber(CommandKind::wait, rest);
}

ParsedLine parseLoop(std::string_view rest)
{
    return parseNumber(CommandKind::loop, rest);
}

ParsedLine parseExit(std::string_view rest)
{
    const std::optional<long> status = rest.empty() ? 0 : readNumber(rest, 255);
    if (!status)
        return failed("a status from 0 to 255 is wanted");
    return made(CommandKind::exit, {}, *status);
}

ParsedLine parseExpectation(CommandKind kind, std::string_view rest)
{
    long timeoutMs = defaultTimeoutMs;
    const SplitText tail = splitLastWord(rest);
    const std::optional<long> number = readNumber(tail.first, maxNumber);
    const SplitText before = splitLastWord(tail.rest);
    if (number && before.first == "timeout") {
        timeoutMs = *number;
        rest = before.rest;
    }
    if (rest.empty())
        return failed("the expected text is missing");
    ParsedLine parsed = parseText(kind, rest, "");
    if (parsed.command)
        parsed.command->number = timeoutMs;
    return parsed;
}

ParsedLine parseExpect(std::string_view rest)
{
    return parseExpectation(CommandKind::expect, rest);
}

ParsedLine parseExpectPrefix(std::string_view rest)
{
    return parseExpectation(CommandKind::expectPrefix, rest);
}

ParsedLine parsePing(std::string_view rest)
{
    const SplitText words = splitFirstWord(rest);
    if (words.first == "off" && words.rest.empty())
        return made(CommandKind::pingOff, {});
    const std::optional<long> periodMs = words.rest.empty() ? defaultPingMs : readNumber(words.rest, maxNumber);
    if (words.first != "on" || !periodMs || *periodMs == 0)
        return failed("\"on\", \"on MS\" or \"off\" is wanted");
    return made(CommandKind::pingOn, {}, *periodMs);
}

ParsedLine parseAnswer(std::string_view rest)
{
    if (rest != "on" && rest != "off")
        return failed("\"on\" or \"off\" is wanted");
    return made(rest == "on" ? CommandKind::answerOn : CommandKind::answerOff, {});
}

ParsedLine parseChat(std::string_view rest)
{
    const size_t bar = rest.find('|');
    if (bar == std::string_view::npos)
        return failed("NAME | MESSAGE is wanted");
    const std::optional<std::string> name = unescapeText(trimmed(rest.substr(0, bar)));
    const std::optional<std::string> message = unescapeText(trimmed(rest.substr(bar + 1)));
    if (!name || !message)
        return failed(badEscape);
    return made(CommandKind::send, chatText(*name, *message));
}

ParsedLine parseTechnicianName(std::string_view rest)
{
    const std::optional<std::string> name = unescapeText(rest);
    return name ? made(CommandKind::send, technicianNameText(*name)) : failed(badEscape);
}

/// The name is everything up to the flag, and the flag is a last word that begins with "true" or "false".
ParsedLine parseParticipantAdd(std::string_view identifier, std::string_view rest)
{
    std::string_view flag = "true";
    const SplitText tail = splitLastWord(rest);
    if (!tail.rest.empty() && (tail.first.starts_with("true") || tail.first.starts_with("false"))) {
        flag = tail.first;
        rest = tail.rest;
    }
    return made(CommandKind::send, participantAddText(identifier, rest, flag));
}

ParsedLine parseParticipant(std::string_view rest)
{
    const SplitText verb = splitFirstWord(rest);
    const SplitText fields = splitFirstWord(verb.rest);
    if (fields.rest.empty())
        return failed("\"add ID NAME [flag]\", \"delete ID NAME\" or \"modify ID flag\" is wanted");
    const std::optional<std::string> last = unescapeText(fields.rest);
    if (!last)
        return failed(badEscape);
    if (verb.first == "add")
        return parseParticipantAdd(fields.first, *last);
    if (verb.first == "delete")
        return made(CommandKind::send, participantDeleteText(fields.first, *last));
    if (verb.first == "modify")
        return made(CommandKind::send, participantModifyText(fields.first, *last));
    return failed("\"add\", \"delete\" or \"modify\" is wanted");
}

ParsedLine parseKill(std::string_view rest)
{
    if (rest.starts_with("SIG"))
        rest.remove_prefix(3);
    const std::optional<long> given = readNumber(rest, maxNumber);
    for (int number = 1; number < NSIG; number++) {
        const char *const name = sigabbrev_np(number);
        if ((given && *given == number) || (name && rest == name))
            return made(CommandKind::kill, {}, number);
    }
    return failed("a signal's name or number is wanted");
}

template <CommandKind kind> ParsedLine parseAlone(std::string_view rest)
{
    return rest.empty() ? made(kind, {}) : failed("nothing may follow");
}

struct CommandWord {
    std::string_view word;
    ParsedLine (*parse)(std::string_view rest);
};

constexpr CommandWord commandWords[] = {
    {"send", parseSend},
    {"sendraw", parseSendRaw},
    {"sendfile", parseSendFile},
    {"wait", parseWait},
    {"expect", parseExpect},
    {"expectprefix", parseExpectPrefix},
    {"ping", parsePing},
    {"answer", parseAnswer},
    {"chat", parseChat},
    {"participant", parseParticipant},
    {"techname", parseTechnicianName},
    {"print", parsePrint},
    {"run", parseRun},
    {"exit", parseExit},
    {"kill", parseKill},
    {"interactive", parseAlone<CommandKind::interactive>},
    {"loop", parseLoop},
    {"end", parseAlone<CommandKind::end>},
};

const CommandWord *findCommandWord(std::string_view word)
{
    for (const CommandWord &row : commandWords) {
        if (row.word == word)
            return &row;
    }
    return nullptr;
}

} // namespace

ParsedLine parseLine(std::string_view line)
{
    const SplitText words = splitFirstWord(line);
    if (words.first.empty() || words.first[0] == '#')
        return {};
    const CommandWord *const row = findCommandWord(words.first);
    if (!row)
        return failed("there is no command \"" + std::string(words.first) + "\"");
    ParsedLine parsed = row->parse(words.rest);
    if (!parsed.command)
        parsed.error = std::string(words.first) + ": " + parsed.error;
    return parsed;
}

bool startsWithCommand(std::string_view line)
{
    return findCommandWord(splitFirstWord(line).first) != nullptr;
}

} // namespace agentSimulator
