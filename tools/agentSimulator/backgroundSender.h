#pragma once

#include "agentSimulator/channel.h"
#include "agentSimulator/ending.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace agentSimulator
{

/// What an agent says to a received line; see answerTo.
struct Answer {
    std::string_view line; ///< the received line
    std::string_view text; ///< what goes back; empty: the agent ends
};

/// The agent's own answer to a line, null when it has none.
const Answer *answerTo(std::string_view line);

/// Sends what is not in the script: pings in their period and the answers to the companion's buttons.
/// Thread: run() is the body of a thread of its own; the others may be called from any thread.
class BackgroundSender
{
public:
    BackgroundSender(TextWriter &writer, Ending &ending) : m_writer(writer), m_ending(ending) {}

    void run();
    void stop(); ///< ends run(); what is not sent by then stays unsent

    void startPings(std::chrono::milliseconds period); ///< the first one at once
    void stopPings();
    void setAnswering(bool answering);
    bool isPinging();
    bool isAnswering();
    void noteReceived(std::string_view line); ///< to be called for every received line

private:
    using Clock = std::chrono::steady_clock;

    std::string takeDueText();
    void endWhenDue();
    Clock::time_point nextDue() const;

    TextWriter &m_writer;
    Ending &m_ending;
    std::mutex m_mutex; ///< guards everything below; never held while a text is sent
    std::condition_variable m_changed;
    bool m_stopped = false;
    bool m_answering = false;
    std::deque<std::string> m_answers;
    std::chrono::milliseconds m_pingPeriod{0};
    std::optional<Clock::time_point> m_nextPing; ///< unset: no pings
    std::optional<Clock::time_point> m_endAt;    ///< set once "buttonClicked exit" was answered
};

} // namespace agentSimulator
