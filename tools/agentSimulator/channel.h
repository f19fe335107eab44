#pragma once

#include "agentSimulator/descriptor.h"
#include "agentSimulator/ending.h"
#include "agentSimulator/recorder.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace agentSimulator
{

/// The two FIFOs of a session.
struct PipePaths {
    std::string fromCompanion; ///< "myfifo": the companion writes, the agent reads
    std::string toCompanion;   ///< "Status": the agent writes, the companion reads
};

PipePaths pipePathsIn(const std::string &directory);

/// Makes the directory and the FIFOs that are missing, open to every user as the agent makes them.
/// Returns false and says why when one can't be made or is something else than a FIFO.
bool createPipes(const std::string &directory, std::string &whyNot);

/// Reads one FIFO round after round, each to end of file, and loses nothing between two rounds: the next read
/// end is open before the last one is closed. Waits for a FIFO that is not there yet and changes over to one
/// that was made anew under the same name.
/// Thread: run on one thread of its own; ends when the end is asked for, after taking what is still in the pipe.
class TextReader
{
public:
    using OnText = std::function<void(const std::string &text)>;

    /// @param onText  called on the reading thread with each whole text
    TextReader(std::string path, Ending &ending, OnText onText);
    void run();

private:
    void waitForInput();
    void drain();
    void deliver();
    bool isReplaced() const;

    const std::string m_path;
    Ending &m_ending;
    const OnText m_onText;
    Descriptor m_pipe;
    std::string m_text; ///< what the running round has read so far
};

/// Sends texts, each in one open-write-close cycle on the FIFO, and records them.
/// Thread: any; texts of two threads never interleave. The lock is held while a text waits for its reader.
class TextWriter
{
public:
    TextWriter(std::string path, Recorder &recorder, Ending &ending, std::chrono::milliseconds timeout);

    /// Waits for a reader, but no longer than the time-out and not past the end of the session: then the text is
    /// lost, a failure is recorded and false returned.
    bool send(std::string_view text);

private:
    using Deadline = std::chrono::steady_clock::time_point;
    enum class Outcome { written, noReader, lost };

    Descriptor openWhenRead(Deadline deadline);
    Outcome writeWhole(int descriptor, std::string_view text, Deadline deadline);

    const std::string m_path;
    Recorder &m_recorder;
    Ending &m_ending;
    const std::chrono::milliseconds m_timeout;
    std::mutex m_mutex;   ///< serialises whole cycles
    std::string m_whyNot; ///< why the last attempt failed; under m_mutex
};

} // namespace agentSimulator
