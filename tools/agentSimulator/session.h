#pragma once

namespace agentSimulator
{

struct Options;

inline constexpr int badUsageStatus = 64;    ///< command line, script or pipes are no good; nothing was played
inline constexpr int expectationStatus = 70; ///< played, but an expectation was not met or a text not sent

/// Plays one whole session and returns the program's exit status.
/// Thread: the main thread, while no other thread runs; it changes signal dispositions for the process.
int runSession(const Options &options);

} // namespace agentSimulator
