// Puts a session together: record, script, pipes, companion; then has it played and takes everything down again.

#include "agentSimulator/session.h"

#include "agentSimulator/childProcess.h"
#include "agentSimulator/inbox.h"
#include "agentSimulator/liveSession.h"
#include "agentSimulator/options.h"
#include "agentSimulator/player.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace agentSimulator
{

namespace
{

LoadedScript loadScript(const std::string &path)
{
    if (path.empty())
        return {};
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open())
        return {{}, {{}, strerror(errno)}};
    // Read whole before the first command: a script may replace its own file for the next start.
    LoadedScript script = {std::string(std::istreambuf_iterator<char>(file), {}), {}};
    script.parsed = parseScript(script.text);
    return script;
}

int refuse(Recorder &recorder, const std::string &why)
{
    recorder.failure(why);
    fprintf(stderr, "agentSimulator: %s\n", why.c_str());
    return badUsageStatus;
}

void recordStart(const Options &options, Recorder &recorder)
{
    for (size_t i = 0; i < options.arguments.size(); i++)
        recorder.note("argv[" + std::to_string(i) + "] " + options.arguments[i]);
    recorder.note("pipes " + options.pipeDirectory);
}

/// Plays the script, or the keyboard when there is none, and stays until the session ends.
void playToTheEnd(const Options &options, Player &player, Stage &stage, const std::vector<Command> &commands)
{
    player.play(commands);
    if (options.scriptPath.empty() && !options.exitStatus && isatty(stage.inputDescriptor) == 1)
        player.playInput();
    const bool knowsCompanion = options.isStartedByCompanion || !options.companionCommand.empty();
    if (options.exitStatus)
        stage.ending.request(*options.exitStatus, "BRINDLE_AGENT_EXIT");
    else if (player.hasInputEnded() && !knowsCompanion)
        stage.ending.request(0, "end of input");
    stage.ending.wait();
}

/// Starts the companion when the command line names one. Returns what is wrong, or nothing.
std::string findCompanion(const Options &options, Companion &companion)
{
    if (options.isStartedByCompanion)
        companion.parent = getppid();
    if (options.companionCommand.empty())
        return {};
    companion.child = startProcess(options.companionCommand);
    return companion.child > 0 ? std::string() : options.companionCommand[0] + ": " + strerror(errno);
}

/// The session of the command line: the script, then the keyboard.
SessionEnd playScript(const Options &options, Recorder &recorder, const LoadedScript &script,
                      const Companion &companion)
{
    Inbox inbox;
    LiveSession live(options, recorder, companion,
                     {[&](const std::string &line) { inbox.add(line); }, [&] { inbox.close(); }});
    Stage stage{recorder, live.writer, inbox, live.background, live.ending};
    stage.baseDirectory = std::filesystem::path(options.scriptPath).parent_path().string();
    Player player(stage);
    playToTheEnd(options, player, stage, script.parsed.commands);
    const bool isShort = live.ending.status() == 0 && player.failures() > 0;
    return {isShort ? expectationStatus : live.ending.status(), live.ending.reason()};
}

} // namespace

int runSession(const Options &options)
{
    return runSession(options, playScript, {});
}

int runSession(const Options &options, const PlaySession &play, Recorder::Observer observer)
{
    prepareSignals();
    Recorder recorder(options.recordPath, std::move(observer));
    if (!recorder.isOpen())
        return refuse(recorder, options.recordPath + ": " + strerror(errno));
    recordStart(options, recorder);
    const LoadedScript script = loadScript(options.scriptPath);
    if (!script.parsed.error.empty())
        return refuse(recorder, options.scriptPath + ": " + script.parsed.error);
    std::string whyNot;
    if (options.createsPipes && !createPipes(options.pipeDirectory, whyNot))
        return refuse(recorder, whyNot);
    Companion companion;
    whyNot = findCompanion(options, companion);
    if (!whyNot.empty())
        return refuse(recorder, whyNot);
    const SessionEnd end = play(options, recorder, script, companion);
    recorder.note("exit " + std::to_string(end.status) + " (" + end.reason + ")");
    return end.status;
}

} // namespace agentSimulator
