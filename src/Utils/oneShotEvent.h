#pragma once
// Something that happens once in the life of the process, and that another thread waits for with a limit.

#include "src/Utils/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <atomic>

/// Lives as long as the process, and so does its descriptor: a thread that is not joined may wait to the very end.
class OneShotEvent
{
public:
    OneShotEvent() : m_descriptor(newDescriptor()) {}
    /// It has happened; whoever waits goes on. Thread: any.
    void happen()
    {
        m_hasHappened = true;
        eventfd_write(m_descriptor, 1);
    }
    /// Waits until it has happened. @return false when that took longer. Thread: any.
    bool wait(int milliseconds) const
    {
        if (m_hasHappened)
            return true;
        // Without a descriptor this is a pause; it is noticed at the next wait then.
        struct pollfd event = {m_descriptor, POLLIN, 0};
        poll(&event, 1, milliseconds);
        return m_hasHappened;
    }

private:
    /// Above the standard ones: whoever starts the program may have closed those, and what is printed would go here.
    static int newDescriptor()
    {
        const Descriptor event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        return fcntl(event.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    }

    const int m_descriptor;
    std::atomic<bool> m_hasHappened = false;
};
