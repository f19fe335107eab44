#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>

namespace agentSimulator
{

/// Received lines that no "expect" has looked at yet, oldest first.
/// Thread: every function may be called from any thread.
class Inbox
{
public:
    using Wanted = std::function<bool(const std::string &line)>;

    void add(std::string line);

    /// No more lines will come; a wait that finds nothing in what is left ends at once.
    void close();

    /// Takes lines, oldest first, up to and including the first wanted one; what comes before it is dropped,
    /// so that one wait after the other also checks the order. Returns false when the time is over or the
    /// inbox is closed without a wanted line.
    bool takeUntil(const Wanted &isWanted, std::chrono::milliseconds timeout);

private:
    bool dropUntilWanted(const Wanted &isWanted);

    std::mutex m_mutex; ///< guards the two fields below
    std::deque<std::string> m_lines;
    bool m_closed = false;
    std::condition_variable m_changed;
};

} // namespace agentSimulator
