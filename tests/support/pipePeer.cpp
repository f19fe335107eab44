// The agent's two ends of the pipes. Both poll with deadlines, so that no test hangs in a FIFO.

#include "tests/support/pipePeer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <sstream>
#include <stdexcept>

namespace
{

constexpr int stepMs = 10;

int openReadEnd(const std::string &path)
{
    return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

bool readable(const int descriptor)
{
    pollfd waiting = {descriptor, POLLIN, 0};
    return poll(&waiting, 1, stepMs) > 0;
}

} // namespace

PipeReader::PipeReader(const std::string &path) : m_path(path)
{
    const int first = openReadEnd(path);
    if (first < 0)
        throw std::runtime_error("can't read " + path);
    // Signals that a test sends to its process go to the test's own threads.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread(&PipeReader::readOn, this, first);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

PipeReader::~PipeReader()
{
    m_stop = true;
    m_thread.join();
}

std::vector<std::string> PipeReader::texts() const
{
    const std::scoped_lock lock(m_mutex);
    return m_texts;
}

std::vector<std::string> PipeReader::lines() const
{
    std::istringstream stream(seen());
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string PipeReader::seen() const
{
    std::string all;
    for (const std::string &text : texts())
        all += text;
    return all;
}

void PipeReader::forget()
{
    const std::scoped_lock lock(m_mutex);
    m_texts.clear();
}

void PipeReader::readOn(int current)
{
    while (!m_stop && current >= 0) {
        if (!readable(current))
            continue;
        const std::string text = readToEnd(current);
        {
            const std::scoped_lock lock(m_mutex);
            if (!text.empty())
                m_texts.push_back(text);
        }
        const int next = openReadEnd(m_path);
        close(current);
        current = next;
    }
    if (current >= 0)
        close(current);
}

std::string PipeReader::readToEnd(const int descriptor) const
{
    std::string text;
    char buffer[65536];
    while (!m_stop) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count == 0)
            break;
        if (count > 0)
            text.append(buffer, static_cast<size_t>(count));
        else if (errno == EAGAIN)
            readable(descriptor);
        else if (errno != EINTR)
            break;
    }
    return text;
}

bool sendText(const std::string &path, const std::string &text, const int deadlineMs)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(deadlineMs);
    int descriptor = -1;
    while ((descriptor = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0 && errno == ENXIO &&
           Clock::now() < deadline)
        poll(nullptr, 0, 1);
    if (descriptor < 0)
        return false;
    size_t sent = 0;
    while (sent < text.size() && Clock::now() < deadline) {
        const ssize_t count = write(descriptor, text.data() + sent, text.size() - sent);
        if (count > 0)
            sent += static_cast<size_t>(count);
        else if (errno == EAGAIN) {
            pollfd waiting = {descriptor, POLLOUT, 0};
            poll(&waiting, 1, stepMs);
        } else if (errno != EINTR)
            break;
    }
    close(descriptor);
    return sent == text.size();
}

std::string makeFifo(const std::string &path)
{
    if (mkfifo(path.c_str(), 0600) != 0)
        throw std::runtime_error("can't make the FIFO " + path);
    return path;
}
