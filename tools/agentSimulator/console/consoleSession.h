#pragma once

#include "agentSimulator/inbox.h"
#include "agentSimulator/liveSession.h"
#include "agentSimulator/script.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace agentSimulator
{

/// A session that a person leads. What waits for the companion waits on a thread of its own: one carries out single
/// commands in their order, another plays a script, and neither holds up the other.
/// Thread: every function returns at once and may be called from any thread; made and destroyed on one.
class ConsoleSession
{
public:
    /// @param onReplayEnd  called on the script's thread when it is over; the argument counts what it missed
    ConsoleSession(const Options &options, Recorder &recorder, const Companion &companion,
                   std::function<void(int failures)> onReplayEnd);
    ~ConsoleSession();

    /// Carries out a script command; what is none is sent as it stands, with a newline.
    void perform(std::string command);

    /// Plays a script. False while another one is played.
    bool startReplay(std::vector<Command> commands, const std::string &baseDirectory);
    void stopReplay();

    BackgroundSender &background() { return m_live->background; }
    Ending &ending() { return m_live->ending; }

private:
    struct Replay {
        Ending ending;
        Inbox inbox; ///< lines since the script began
        bool isOver = false;
        std::thread thread;
    };

    void hear(const std::string &line);
    void hearNoMore();
    void performAll();
    void play(Replay &replay, const std::vector<Command> &commands, const std::string &baseDirectory);
    std::unique_ptr<Replay> takeFinishedReplay();

    const std::function<void(int)> m_onReplayEnd;
    Inbox m_inbox;      ///< lines for single commands
    std::mutex m_mutex; ///< guards everything below but the session itself
    std::condition_variable m_changed;
    std::deque<std::string> m_commands;
    bool m_isOver = false;
    std::unique_ptr<Replay> m_replay;
    std::unique_ptr<LiveSession> m_live;
    std::thread m_performing;
};

} // namespace agentSimulator
