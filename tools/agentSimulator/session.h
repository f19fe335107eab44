#pragma once

#include "agentSimulator/processWatch.h"
#include "agentSimulator/recorder.h"
#include "agentSimulator/script.h"

#include <functional>
#include <string>

namespace agentSimulator
{

struct Options;

inline constexpr int badUsageStatus = 64;    ///< command line, script or pipes are no good; nothing was played
inline constexpr int expectationStatus = 70; ///< played, but an expectation was not met or a text not sent

/// A script file as it is and as it is read.
struct LoadedScript {
    std::string text = {};
    ParsedScript parsed = {};
};

/// How a session ended, once all of its threads are gone.
struct SessionEnd {
    int status = 0;
    std::string reason = {};
};

/// What leads a session that is ready to begin.
using PlaySession = std::function<SessionEnd(const Options &options, Recorder &recorder, const LoadedScript &script,
                                             const Companion &companion)>;

/// Plays one whole session and returns the program's exit status.
/// Thread: the main thread, while no other thread runs; it changes signal dispositions for the process.
int runSession(const Options &options);

/// The same, led by somebody else. @param observer  see Recorder
int runSession(const Options &options, const PlaySession &play, Recorder::Observer observer);

} // namespace agentSimulator
