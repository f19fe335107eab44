#pragma once

#include "agentSimulator/descriptor.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace agentSimulator
{

/// The one place that says that the session is to end, why, and with which status.
/// Thread: every function may be called from any thread.
class Ending
{
public:
    Ending();

    /// Asks for the end and wakes whoever waits. The first request counts, later ones change nothing.
    void request(int status, const std::string &reason);

    bool isRequested();
    /// Waits until the end is asked for, at most so long. Returns whether it is.
    bool waitFor(std::chrono::milliseconds duration);
    void wait();

    int status();
    std::string reason();

    /// Readable from the moment the end is asked for; for poll, beside other descriptors.
    int descriptor() const { return m_event.get(); }

private:
    std::mutex m_mutex; ///< guards the three fields below
    bool m_requested = false;
    int m_status = 0;
    std::string m_reason;
    std::condition_variable m_changed;
    const Descriptor m_event;
};

} // namespace agentSimulator
