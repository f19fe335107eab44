// Plays a script command by command. Every wait also ends with the session, so a signal or the companion's end is
// never held up by a script. An expectation that is not met is counted and the script goes on: one run shows
// everything that is missing.

#include "agentSimulator/player.h"

#include "agentSimulator/childProcess.h"
#include "agentSimulator/wireText.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>

namespace agentSimulator
{

namespace
{

/// Where the script goes on after the command at the index. The counters say how many rounds each loop still has.
size_t nextIndex(const std::vector<Command> &commands, size_t index, std::vector<long> &roundsLeft)
{
    const Command &command = commands[index];
    if (command.kind == CommandKind::loop) {
        roundsLeft[index] = command.number;
        return command.number > 0 ? index + 1 : command.partner + 1;
    }
    if (command.kind == CommandKind::end && --roundsLeft[command.partner] > 0)
        return command.partner + 1;
    return index + 1;
}

std::string placeOf(const Command &command)
{
    return command.line > 0 ? "line " + std::to_string(command.line) + ": " : std::string();
}

} // namespace

void Player::play(const std::vector<Command> &commands)
{
    std::vector<long> roundsLeft(commands.size(), 0);
    size_t index = 0;
    while (index < commands.size() && !m_stage.ending.isRequested()) {
        if (commands[index].kind == CommandKind::interactive)
            playInput();
        else
            playOne(commands[index]);
        index = nextIndex(commands, index, roundsLeft);
    }
    if (index < commands.size())
        m_stage.recorder.note("script left before line " + std::to_string(commands[index].line));
}

void Player::playOne(const Command &command)
{
    switch (command.kind) {
    case CommandKind::send:
        return send(command.text);
    case CommandKind::sendFile:
        return sendFile(command.text);
    case CommandKind::wait:
        m_stage.ending.waitFor(std::chrono::milliseconds(command.number));
        return;
    case CommandKind::expect:
    case CommandKind::expectPrefix:
        return expect(command);
    case CommandKind::pingOn:
        return m_stage.background.startPings(std::chrono::milliseconds(command.number));
    case CommandKind::pingOff:
        return m_stage.background.stopPings();
    case CommandKind::answerOn:
        return m_stage.background.setAnswering(true);
    case CommandKind::answerOff:
        return m_stage.background.setAnswering(false);
    case CommandKind::print:
        return m_stage.recorder.print(command.text);
    case CommandKind::run:
        return run(command.text);
    case CommandKind::exit:
        return m_stage.ending.request(static_cast<int>(command.number), placeOf(command) + "exit");
    case CommandKind::kill:
        return killSelf(static_cast<int>(command.number));
    case CommandKind::interactive:
    case CommandKind::loop:
    case CommandKind::end:
        return; // play() itself does these
    }
}

void Player::playInput()
{
    std::string line;
    while (!m_stage.ending.isRequested()) {
        pollfd waits[] = {{m_stage.inputDescriptor, POLLIN, 0}, {m_stage.ending.descriptor(), POLLIN, 0}};
        poll(waits, 2, -1);
        if (waits[0].revents == 0)
            continue;
        char typed = 0;
        // Byte by byte: what follows this line may be meant for a command that it starts.
        const ssize_t count = read(m_stage.inputDescriptor, &typed, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 1 && typed != '\n') {
            line += typed;
            continue;
        }
        if (count == 1 || !line.empty())
            playTyped(line);
        line.clear();
        if (count != 1) {
            m_inputEnded = true;
            return;
        }
    }
}

void Player::playTyped(const std::string &line)
{
    if (!startsWithCommand(line)) {
        if (!trimmed(line).empty())
            send(line + "\n");
        return;
    }
    const ParsedLine parsed = parseLine(line);
    if (!parsed.command)
        return m_stage.recorder.failure("typed: " + parsed.error);
    const CommandKind kind = parsed.command->kind;
    if (kind == CommandKind::loop || kind == CommandKind::end || kind == CommandKind::interactive)
        return m_stage.recorder.failure("typed: only a script can say that");
    playOne(*parsed.command);
}

void Player::send(const std::string &text)
{
    if (!m_stage.writer.send(text))
        m_failures++;
}

void Player::sendFile(const std::string &path)
{
    const std::filesystem::path whole = std::filesystem::path(m_stage.baseDirectory) / path;
    std::ifstream file(whole, std::ios::binary);
    if (!file.is_open()) {
        m_failures++;
        return m_stage.recorder.failure("sendfile " + whole.string() + ": " + strerror(errno));
    }
    send(std::string(std::istreambuf_iterator<char>(file), {}));
}

void Player::expect(const Command &command)
{
    const bool whole = command.kind == CommandKind::expect;
    const Inbox::Wanted isWanted = [&](const std::string &line) {
        return whole ? line == command.text : line.starts_with(command.text);
    };
    if (m_stage.inbox.takeUntil(isWanted, std::chrono::milliseconds(command.number)))
        return;
    const std::string limit =
        m_stage.ending.isRequested() ? "before the end" : "within " + std::to_string(command.number) + " ms";
    fail(command, std::string(whole ? "expect" : "expectprefix") + " not met " + limit + ": " + command.text);
}

void Player::run(const std::string &shellCommand)
{
    if (isEmptyCommand(shellCommand))
        return;
    m_stage.recorder.note("run " + shellCommand);
    const int waitStatus = runShellCommand(shellCommand, m_stage.ending);
    if (waitStatus == 0)
        return;
    const std::string outcome = waitStatus < 0 ? strerror(errno) : describeWaitStatus(waitStatus);
    m_stage.recorder.failure("run ended with " + outcome + ": " + shellCommand);
}

void Player::killSelf(int signal)
{
    m_stage.recorder.note("kill " + std::to_string(signal));
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    // The handlers and the blocked signals of a clean end would keep this one from ending anything.
    ::signal(signal, SIG_DFL);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(signal);
}

void Player::fail(const Command &command, const std::string &what)
{
    m_failures++;
    m_stage.recorder.failure(placeOf(command) + what);
}

} // namespace agentSimulator
