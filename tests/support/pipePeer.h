#pragma once
// The agent's two ends of the pipes, for tests in one process.

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Reads a FIFO to end of file again and again on a thread of its own, as the agent reads "myfifo". No text is lost
/// between two rounds: the next read end is open before the last one is closed.
class PipeReader
{
public:
    /// @param path  of an existing FIFO
    explicit PipeReader(const std::string &path);
    ~PipeReader();
    PipeReader(const PipeReader &) = delete;
    PipeReader &operator=(const PipeReader &) = delete;

    /// One entry for each writer session, in order.
    std::vector<std::string> texts() const;
    /// All lines in order, without their newlines.
    std::vector<std::string> lines() const;
    /// Everything that came, as it came; for failure messages.
    std::string seen() const;
    /// Drops what came so far.
    void forget();

private:
    void readOn(int first);
    std::string readToEnd(int descriptor) const;

    std::string m_path;
    std::atomic<bool> m_stop = false;
    mutable std::mutex m_mutex; // guards m_texts
    std::vector<std::string> m_texts;
    std::thread m_thread;
};

/// Writes one text to a FIFO in one open-write-close cycle, waiting for its reader at most `deadlineMs`.
/// @return whether all of it was taken.
bool sendText(const std::string &path, const std::string &text, int deadlineMs = 10000);

/// Makes a FIFO. @return its path.
std::string makeFifo(const std::string &path);
