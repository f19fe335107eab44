// How the threads of a session agree on its end: one request, remembered, that wakes waits on a condition as
// well as waits in poll. The script, the answer to "buttonClicked exit", a signal and the companion's end all
// come here.

#include "agentSimulator/ending.h"

#include <sys/eventfd.h>

namespace agentSimulator
{

Ending::Ending() : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void Ending::request(int status, const std::string &reason)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_requested)
            return;
        m_requested = true;
        m_status = status;
        m_reason = reason;
    }
    m_changed.notify_all();
    eventfd_write(m_event.get(), 1);
}

bool Ending::isRequested()
{
    const std::lock_guard lock(m_mutex);
    return m_requested;
}

bool Ending::waitFor(std::chrono::milliseconds duration)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, duration, [this] { return m_requested; });
}

void Ending::wait()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_requested; });
}

int Ending::status()
{
    const std::lock_guard lock(m_mutex);
    return m_status;
}

std::string Ending::reason()
{
    const std::lock_guard lock(m_mutex);
    return m_reason;
}

} // namespace agentSimulator
