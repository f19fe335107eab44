#pragma once

#include "agentSimulator/descriptor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace agentSimulator
{

/// One line of the record: milliseconds right-aligned in 7 columns, a blank, the mark, a blank, the escaped content.
std::string formatRecordLine(std::int64_t elapsedMs, char mark, std::string_view content);

/// What one line of the record says.
struct RecordEntry {
    std::int64_t elapsedMs = 0;
    char mark = '#'; ///< see Recorder
    std::string content = {};
};

/// Writes down the conversation of both pipes, each line at once and in one write.
/// Thread: every function may be called from any thread; the lines of two threads never mix.
class Recorder
{
public:
    using Observer = std::function<void(const RecordEntry &entry)>;

    /// @param path  file that is appended to (made when missing); empty: no file, standard output instead.
    /// With a file, standard output gets the lines too when it is a terminal.
    /// @param observer  called for each line in their order, on the thread that wrote it; may be empty
    explicit Recorder(const std::string &path, Observer observer = {});

    bool isOpen() const { return m_path.empty() || m_file; } ///< false when the file could not be opened

    void received(std::string_view text) { write('<', text); } ///< one text from the companion, read to end of file
    void sent(std::string_view text) { write('>', text); }     ///< one text to the companion, one open-write-close
    void note(std::string_view text) { write('#', text); }     ///< what the simulator itself did
    void failure(std::string_view text) { write('!', text); }  ///< what should have happened and did not

    /// A note that is also shown on standard output where the record is not.
    void print(std::string_view text);

private:
    void write(char mark, std::string_view content);

    const std::string m_path;
    const Descriptor m_file;
    const bool m_echo; ///< lines go to standard output
    const Observer m_observer;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    std::mutex m_mutex; ///< guards the order of the lines, in the file and on standard output
};

} // namespace agentSimulator
