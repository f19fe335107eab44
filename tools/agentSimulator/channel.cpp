// The agent's end of both FIFOs. All descriptors are non-blocking and every wait also watches for the end of the
// session, so a companion that went away never holds the simulator.
//
// Reading: open, read to end of file, open the next read end, close the last one. As long as one read end is
// open, the kernel keeps what writers put into the FIFO, so texts that arrive between two rounds are not lost.
// Two texts that follow each other faster than the reader turns arrive as one.

#include "agentSimulator/channel.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/stat.h>
#include <utility>

namespace agentSimulator
{

namespace
{

constexpr std::chrono::milliseconds retryPeriod{2};
constexpr int lookAfterFifoMs = 50; // how often a silent reader looks whether its FIFO was made anew

bool isFifo(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

/// What is not a FIFO counts as not there: a regular file would be read in a circle.
Descriptor openFifo(const std::string &path, int access)
{
    Descriptor pipe(open(path.c_str(), access | O_NONBLOCK | O_CLOEXEC));
    if (!pipe || isFifo(pipe.get()))
        return pipe;
    errno = EINVAL;
    return Descriptor();
}

bool createFifo(const std::string &path)
{
    struct stat status;
    if (stat(path.c_str(), &status) == 0) {
        errno = EEXIST;
        return S_ISFIFO(status.st_mode);
    }
    // The companion may run as another user, so the umask must not take the rights away again.
    return mkfifo(path.c_str(), 0666) == 0 && chmod(path.c_str(), 0666) == 0;
}

} // namespace

PipePaths pipePathsIn(const std::string &directory)
{
    return {directory + "/myfifo", directory + "/Status"};
}

bool createPipes(const std::string &directory, std::string &whyNot)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    const PipePaths paths = pipePathsIn(directory);
    for (const std::string &path : {paths.toCompanion, paths.fromCompanion}) {
        if (createFifo(path))
            continue;
        whyNot = path + ": " + strerror(errno);
        return false;
    }
    return true;
}

TextReader::TextReader(std::string path, Ending &ending, OnText onText)
    : m_path(std::move(path)), m_ending(ending), m_onText(std::move(onText))
{
}

void TextReader::run()
{
    while (!m_ending.isRequested()) {
        if (!m_pipe)
            m_pipe = openFifo(m_path, O_RDONLY);
        if (m_pipe)
            waitForInput();
        else
            m_ending.waitFor(retryPeriod);
    }
    if (m_pipe)
        drain();
    deliver();
}

void TextReader::waitForInput()
{
    pollfd waits[] = {{m_pipe.get(), POLLIN, 0}, {m_ending.descriptor(), POLLIN, 0}};
    poll(waits, 2, lookAfterFifoMs);
    if (waits[0].revents != 0)
        return drain();
    if (waits[1].revents != 0 || !isReplaced())
        return;
    // Nothing is left in the old FIFO, and nobody can reach it by its name any more.
    deliver();
    m_pipe.reset();
}

/// Reads what is there. At end of file the text is whole and the next round begins.
void TextReader::drain()
{
    char buffer[16384];
    for (;;) {
        const ssize_t count = read(m_pipe.get(), buffer, sizeof buffer);
        if (count > 0) {
            m_text.append(buffer, static_cast<size_t>(count));
            continue;
        }
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return; // the writer is still there: the text is not whole yet
        break;
    }
    // A FIFO that was made anew meanwhile is opened here too: the old one has just been read to its end.
    m_pipe = openFifo(m_path, O_RDONLY);
    deliver();
}

void TextReader::deliver()
{
    if (m_text.empty())
        return;
    m_onText(std::exchange(m_text, {}));
}

bool TextReader::isReplaced() const
{
    struct stat ours;
    struct stat named;
    if (fstat(m_pipe.get(), &ours) != 0 || stat(m_path.c_str(), &named) != 0)
        return true;
    return ours.st_dev != named.st_dev || ours.st_ino != named.st_ino;
}

TextWriter::TextWriter(std::string path, Recorder &recorder, Ending &ending, std::chrono::milliseconds timeout)
    : m_path(std::move(path)), m_recorder(recorder), m_ending(ending), m_timeout(timeout)
{
}

bool TextWriter::send(std::string_view text)
{
    const std::lock_guard lock(m_mutex);
    const Deadline deadline = std::chrono::steady_clock::now() + m_timeout;
    bool recorded = false;
    Outcome outcome = Outcome::noReader;
    while (outcome == Outcome::noReader) {
        const Descriptor pipe = openWhenRead(deadline);
        if (!pipe)
            break;
        // Recorded before it is written: the companion's answer must stand below it.
        if (!std::exchange(recorded, true))
            m_recorder.sent(text);
        outcome = writeWhole(pipe.get(), text, deadline);
    }
    if (outcome == Outcome::written)
        return true;
    m_recorder.failure("not sent (" + m_path + ": " + m_whyNot + "): " + std::string(text));
    return false;
}

/// Opens the FIFO as soon as somebody has it open for reading. Empty when that takes too long.
Descriptor TextWriter::openWhenRead(Deadline deadline)
{
    for (;;) {
        Descriptor pipe = openFifo(m_path, O_WRONLY);
        if (pipe)
            return pipe;
        m_whyNot = errno == ENXIO ? "nobody reads it" : strerror(errno);
        if (std::chrono::steady_clock::now() >= deadline || m_ending.waitFor(retryPeriod))
            return Descriptor();
    }
}

/// A reader that left before the first byte lost nothing: the caller may try again.
TextWriter::Outcome TextWriter::writeWhole(int descriptor, std::string_view text, Deadline deadline)
{
    const size_t size = text.size();
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<size_t>(count));
            continue;
        }
        if (errno == EINTR)
            continue;
        m_whyNot = errno == EAGAIN ? "its reader takes nothing" : strerror(errno);
        if (errno == EPIPE && text.size() == size)
            return Outcome::noReader;
        if (errno != EAGAIN || std::chrono::steady_clock::now() >= deadline || m_ending.waitFor(retryPeriod))
            return Outcome::lost;
    }
    return Outcome::written;
}

} // namespace agentSimulator
