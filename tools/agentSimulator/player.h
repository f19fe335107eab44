#pragma once

#include "agentSimulator/backgroundSender.h"
#include "agentSimulator/channel.h"
#include "agentSimulator/ending.h"
#include "agentSimulator/inbox.h"
#include "agentSimulator/recorder.h"
#include "agentSimulator/script.h"

#include <string>
#include <unistd.h>
#include <vector>

namespace agentSimulator
{

/// What a script acts on; everything is borrowed and outlives the player.
struct Stage {
    Recorder &recorder;
    TextWriter &writer;
    Inbox &inbox;
    BackgroundSender &background;
    Ending &ending;
    int inputDescriptor = STDIN_FILENO; ///< where "interactive" reads lines; -1: nowhere, it lasts until the end
    std::string baseDirectory = {};     ///< relative paths of "sendfile" start here; empty: the working directory
};

/// Plays scripts and typed lines.
/// Thread: one, and not the reading one.
class Player
{
public:
    explicit Player(const Stage &stage) : m_stage(stage) {}

    /// Plays to the last command, an "exit", or the end of the session.
    void play(const std::vector<Command> &commands);
    /// Takes lines from the input until it ends or the session does.
    void playInput();
    /// One typed line: a command, or else a line that is sent as it stands.
    void playTyped(const std::string &line);

    int failures() const { return m_failures; }         ///< expectations not met and texts not sent
    bool hasInputEnded() const { return m_inputEnded; } ///< the person at the keyboard has left

private:
    void playOne(const Command &command);
    void send(const std::string &text);
    void sendFile(const std::string &path);
    void expect(const Command &command);
    void run(const std::string &shellCommand);
    void killSelf(int signal);
    void fail(const Command &command, const std::string &what);

    const Stage m_stage;
    int m_failures = 0;
    bool m_inputEnded = false;
};

} // namespace agentSimulator
