// chatWriter FIFO COUNT FIRST STATUS_MS: writes COUNT chat messages, numbered from FIRST, each as a text of its own:
// the next one follows when the reader has read the last one to its end and closed it. Unless STATUS_MS is 0, a status
// line goes between two messages every so many milliseconds; the moment at which each left is printed, in seconds of
// the monotonic clock.

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int patienceMs = 30000;

[[noreturn]] void fail(const char *what)
{
    perror(what);
    exit(1);
}

/// The pipe, with an eye on its reader.
class Status
{
public:
    explicit Status(const char *path) : m_path(path), m_watch(inotify_init1(IN_CLOEXEC))
    {
        // A reader closes without having written; this program's own closings are the other kind.
        if (m_watch < 0 || inotify_add_watch(m_watch, path, IN_CLOSE_NOWRITE) < 0)
            fail(path);
    }
    ~Status() { close(m_watch); }
    Status(const Status &) = delete;
    Status &operator=(const Status &) = delete;

    void write(const std::string &text) const
    {
        const int pipe = open(m_path, O_WRONLY | O_CLOEXEC);
        if (pipe < 0 || ::write(pipe, text.data(), text.size()) != ssize_t(text.size()) || close(pipe) != 0)
            fail(m_path);
        waitForReader();
    }

private:
    void waitForReader() const
    {
        struct pollfd closed = {m_watch, POLLIN, 0};
        if (poll(&closed, 1, patienceMs) != 1)
            fail("the reader doesn't close");
        alignas(inotify_event) char events[4096];
        if (read(m_watch, events, sizeof events) <= 0)
            fail("inotify");
    }

    const char *m_path;
    int m_watch;
};

double seconds(Clock::time_point moment)
{
    return std::chrono::duration<double>(moment.time_since_epoch()).count();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 5)
        return 64;
    signal(SIGPIPE, SIG_IGN);
    const Status status(argv[1]);
    const int first = atoi(argv[3]), end = first + atoi(argv[2]);
    const std::chrono::milliseconds period(atoi(argv[4]));
    Clock::time_point next = Clock::now() + period;
    for (int i = first; i < end; i++) {
        status.write("chat Ann\nThis%20is%20message%20" + std::to_string(i) + "%20of%20the%20conversation.");
        if (period.count() == 0 || Clock::now() < next)
            continue;
        printf("%.6f\n", seconds(Clock::now()));
        status.write("sessionStatus Connected\n");
        next = Clock::now() + period;
    }
    return 0;
}
