// The threads between the console's window and the pipes. The end of the session wakes all of them.

#include "agentSimulator/console/consoleSession.h"

#include "agentSimulator/options.h"
#include "agentSimulator/player.h"

#include <utility>

namespace agentSimulator
{

namespace
{

constexpr int noInput = -1; // the console has no keyboard of its own: "interactive" leaves the session to its buttons
constexpr char stoppedByHand[] = "the script was stopped";

} // namespace

ConsoleSession::ConsoleSession(const Options &options, Recorder &recorder, const Companion &companion,
                               std::function<void(int)> onReplayEnd)
    : m_onReplayEnd(std::move(onReplayEnd)),
      m_live(std::make_unique<LiveSession>(
          options, recorder, companion,
          LiveSession::Listener{[this](const std::string &line) { hear(line); }, [this] { hearNoMore(); }})),
      m_performing([this] { performAll(); })
{
}

ConsoleSession::~ConsoleSession()
{
    m_live->ending.request(0, "the console was left");
    hearNoMore();
    m_performing.join();
    if (m_replay)
        m_replay->thread.join();
    m_live.reset();
}

void ConsoleSession::perform(std::string command)
{
    {
        const std::lock_guard lock(m_mutex);
        m_commands.push_back(std::move(command));
    }
    m_changed.notify_all();
}

bool ConsoleSession::startReplay(std::vector<Command> commands, const std::string &baseDirectory)
{
    const std::unique_ptr<Replay> last = takeFinishedReplay();
    if (last)
        last->thread.join();
    const std::lock_guard lock(m_mutex);
    if (m_replay || m_isOver)
        return false;
    m_replay = std::make_unique<Replay>();
    m_replay->thread = std::thread([this, &replay = *m_replay, played = std::move(commands), baseDirectory] {
        play(replay, played, baseDirectory);
    });
    return true;
}

void ConsoleSession::stopReplay()
{
    const std::lock_guard lock(m_mutex);
    if (!m_replay)
        return;
    m_replay->ending.request(0, stoppedByHand);
    m_replay->inbox.close();
}

/// Called on the reading thread.
void ConsoleSession::hear(const std::string &line)
{
    m_inbox.add(line);
    const std::lock_guard lock(m_mutex);
    if (m_replay)
        m_replay->inbox.add(line);
}

void ConsoleSession::hearNoMore()
{
    m_inbox.close();
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    stopReplay();
    m_changed.notify_all();
}

/// Body of the thread for single commands.
void ConsoleSession::performAll()
{
    Player player({m_live->recorder, m_live->writer, m_inbox, m_live->background, m_live->ending, noInput, {}});
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isOver || !m_commands.empty(); });
        if (m_isOver)
            return;
        const std::string command = std::move(m_commands.front());
        m_commands.pop_front();
        lock.unlock();
        player.playTyped(command);
        lock.lock();
    }
}

/// Body of the thread for a script. Its "exit" ends the session as well.
void ConsoleSession::play(Replay &replay, const std::vector<Command> &commands, const std::string &baseDirectory)
{
    Player player(
        {m_live->recorder, m_live->writer, replay.inbox, m_live->background, replay.ending, noInput, baseDirectory});
    player.play(commands);
    if (replay.ending.isRequested() && replay.ending.reason() != stoppedByHand)
        m_live->ending.request(replay.ending.status(), replay.ending.reason());
    {
        const std::lock_guard lock(m_mutex);
        replay.isOver = true;
    }
    m_onReplayEnd(player.failures());
}

std::unique_ptr<ConsoleSession::Replay> ConsoleSession::takeFinishedReplay()
{
    const std::lock_guard lock(m_mutex);
    return m_replay && m_replay->isOver ? std::move(m_replay) : nullptr;
}

} // namespace agentSimulator
