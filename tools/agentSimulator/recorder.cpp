// The record of a session: every text of both pipes with the time since the start, one line each.
// A line is written with one write(2) at once, so that a reader of the file sees it while the session runs
// and nothing is lost however the program ends.

#include "agentSimulator/recorder.h"

#include "agentSimulator/wireText.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <utility>

namespace agentSimulator
{

namespace
{

Descriptor openRecord(const std::string &path)
{
    if (path.empty())
        return Descriptor();
    return Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
}

// A record that can't be written must not end the session: what is left is dropped.
void writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(descriptor, text.data(), text.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return;
        text.remove_prefix(static_cast<size_t>(count));
    }
}

} // namespace

std::string formatRecordLine(std::int64_t elapsedMs, char mark, std::string_view content)
{
    char lead[40];
    snprintf(lead, sizeof lead, "%7lld %c ", static_cast<long long>(elapsedMs), mark);
    return lead + escapeForRecord(content) + "\n";
}

Recorder::Recorder(const std::string &path, Observer observer)
    : m_path(path), m_file(openRecord(path)), m_echo(path.empty() || isatty(STDOUT_FILENO) == 1),
      m_observer(std::move(observer))
{
}

void Recorder::print(std::string_view text)
{
    note(text);
    if (m_echo)
        return;
    const std::lock_guard lock(m_mutex);
    writeAll(STDOUT_FILENO, std::string(text) + "\n");
}

void Recorder::write(char mark, std::string_view content)
{
    const std::lock_guard lock(m_mutex);
    // The time is taken under the lock, so that it never runs backwards down the file.
    const auto elapsed = std::chrono::steady_clock::now() - m_start;
    const auto elapsedMs = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    const std::string line = formatRecordLine(elapsedMs, mark, content);
    if (m_file)
        writeAll(m_file.get(), line);
    if (m_echo)
        writeAll(STDOUT_FILENO, line);
    if (m_observer)
        m_observer({elapsedMs, mark, std::string(content)});
}

} // namespace agentSimulator
