// A recorded script is made of the commands of any other script. The pauses of a person are kept; where the script
// waits for the customer's answer, the pause begins with the answer.

#include "agentSimulator/scriptRecording.h"

#include "agentSimulator/lineForm.h"

namespace agentSimulator
{

namespace
{

constexpr char answerTimeout[] = " timeout 60000";

/// Where a dialog stands differs from screen to screen, and how often it says so does as well.
bool isRepeatable(std::string_view line)
{
    return !line.starts_with("dialogResponse dialog_position ");
}

} // namespace

void ScriptRecording::start(bool waitsForAnswers)
{
    m_running = true;
    m_waitsForAnswers = waitsForAnswers;
    m_last.reset();
}

std::string ScriptRecording::addCommand(std::string_view command, Time now)
{
    if (!m_running)
        return {};
    std::string added;
    if (m_last && now > *m_last)
        added = "wait " + std::to_string((now - *m_last).count()) + "\n";
    m_last = now;
    return added + std::string(command) + "\n";
}

std::string ScriptRecording::addReceived(std::string_view line, Time now)
{
    if (!m_running || !m_waitsForAnswers || line.empty() || !isRepeatable(line))
        return {};
    m_last = now;
    return expectCommandFor(line) + answerTimeout + "\n";
}

} // namespace agentSimulator
