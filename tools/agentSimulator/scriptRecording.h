#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace agentSimulator
{

/// Turns what a technician does into a script that does it again, at the same pace.
class ScriptRecording
{
public:
    using Time = std::chrono::milliseconds; ///< since any one moment

    bool isRunning() const { return m_running; }
    void start(bool waitsForAnswers);
    void stop() { m_running = false; }

    /// What the script gains by a command that was just carried out; empty while nothing is recorded.
    std::string addCommand(std::string_view command, Time now);
    /// What it gains by a line of the companion: nothing, or the wait for this line.
    std::string addReceived(std::string_view line, Time now);

private:
    bool m_running = false;
    bool m_waitsForAnswers = false;
    std::optional<Time> m_last; ///< when the last command or awaited line was added
};

} // namespace agentSimulator
