// Puts a session together: record, script, pipes, threads, companion; then plays and takes everything down again.
//
// Threads: the caller's plays the script; one reads the companion's texts, records them and hands their lines to the
// script and to the answers; one sends pings and answers; one watches signals and the companion. All end when the
// end is asked for, and all are joined.

#include "agentSimulator/session.h"

#include "agentSimulator/childProcess.h"
#include "agentSimulator/options.h"
#include "agentSimulator/player.h"
#include "agentSimulator/processWatch.h"
#include "agentSimulator/wireText.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace agentSimulator
{

namespace
{

ParsedScript loadScript(const std::string &path)
{
    if (path.empty())
        return {};
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open())
        return {{}, strerror(errno)};
    // Read whole before the first command: a script may replace its own file for the next start.
    return parseScript(std::string(std::istreambuf_iterator<char>(file), {}));
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

int playSession(const Options &options, Recorder &recorder, const std::vector<Command> &commands)
{
    Companion companion;
    const std::string whyNot = findCompanion(options, companion);
    if (!whyNot.empty())
        return refuse(recorder, whyNot);

    Ending ending;
    Inbox inbox;
    const PipePaths paths = pipePathsIn(options.pipeDirectory);
    TextWriter writer(paths.toCompanion, recorder, ending, std::chrono::milliseconds(options.sendTimeoutMs));
    BackgroundSender background(writer, ending);
    TextReader reader(paths.fromCompanion, ending, [&](const std::string &text) {
        recorder.received(text);
        for (const std::string &line : splitLines(text)) {
            background.noteReceived(line);
            inbox.add(line);
        }
    });
    std::thread watching([&] { watchProcesses(companion, ending); });
    std::thread sending([&] { background.run(); });
    std::thread reading([&] {
        reader.run();
        inbox.close();
    });

    Stage stage{recorder, writer, inbox, background, ending};
    stage.baseDirectory = std::filesystem::path(options.scriptPath).parent_path().string();
    Player player(stage);
    playToTheEnd(options, player, stage, commands);

    background.stop();
    for (std::thread *thread : {&reading, &sending, &watching})
        thread->join();
    const int status = ending.status() == 0 && player.failures() > 0 ? expectationStatus : ending.status();
    recorder.note("exit " + std::to_string(status) + " (" + ending.reason() + ")");
    return status;
}

} // namespace

int runSession(const Options &options)
{
    prepareSignals();
    Recorder recorder(options.recordPath);
    if (!recorder.isOpen())
        return refuse(recorder, options.recordPath + ": " + strerror(errno));
    recordStart(options, recorder);
    const ParsedScript script = loadScript(options.scriptPath);
    if (!script.error.empty())
        return refuse(recorder, options.scriptPath + ": " + script.error);
    std::string whyNot;
    if (options.createsPipes && !createPipes(options.pipeDirectory, whyNot))
        return refuse(recorder, whyNot);
    return playSession(options, recorder, script.commands);
}

} // namespace agentSimulator
