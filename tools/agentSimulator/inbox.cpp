// Hands received lines from the reading thread to the script. The reading thread closes it after its last
// round, so a script never gives up on a line that was still in the pipe.

#include "agentSimulator/inbox.h"

#include <utility>

namespace agentSimulator
{

void Inbox::add(std::string line)
{
    {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back(std::move(line));
    }
    m_changed.notify_all();
}

void Inbox::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
    }
    m_changed.notify_all();
}

// Called with the lock held.
bool Inbox::dropUntilWanted(const Wanted &isWanted)
{
    while (!m_lines.empty()) {
        const std::string line = std::move(m_lines.front());
        m_lines.pop_front();
        if (isWanted(line))
            return true;
    }
    return false;
}

bool Inbox::takeUntil(const Wanted &isWanted, std::chrono::milliseconds timeout)
{
    bool found = false;
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, timeout, [&] { return (found = dropUntilWanted(isWanted)) || m_closed; });
    return found;
}

} // namespace agentSimulator
