#pragma once

#include "agentSimulator/backgroundSender.h"
#include "agentSimulator/channel.h"
#include "agentSimulator/ending.h"
#include "agentSimulator/processWatch.h"
#include "agentSimulator/recorder.h"

#include <functional>
#include <string>
#include <thread>

namespace agentSimulator
{

struct Options;

/// The pipes and threads of a running session, whoever plays in it: one reads the companion's texts, records them and
/// hands their lines on; one sends pings and answers; one watches signals and the companion.
/// Thread: made and ended on one thread; its parts say for themselves who may call them.
class LiveSession
{
public:
    /// Both are called on the reading thread.
    struct Listener {
        std::function<void(const std::string &line)> onLine;
        std::function<void()> onEnd; ///< no more lines will come
    };

    LiveSession(const Options &options, Recorder &usedRecorder, const Companion &companion, Listener listener);
    /// Asks for the end when nobody has, and waits for the threads.
    ~LiveSession();
    LiveSession(const LiveSession &) = delete;
    LiveSession &operator=(const LiveSession &) = delete;

    Recorder &recorder;
    Ending ending;
    TextWriter writer;
    BackgroundSender background;

private:
    TextReader m_reader;
    std::thread m_watching;
    std::thread m_sending;
    std::thread m_reading;
};

} // namespace agentSimulator
