#pragma once

#include "agentSimulator/ending.h"

#include <sys/types.h>

namespace agentSimulator
{

/// The companion as a process, as far as it is known.
struct Companion {
    pid_t parent = 0; ///< the companion started us: this process; 0: it did not
    pid_t child = 0;  ///< we started the companion: this process; 0: we did not
};

/// Ignores SIGPIPE and blocks the signals that watchProcesses takes. Call it before the first thread starts.
void prepareSignals();

/// Asks for the end, with status 0, when SIGTERM, SIGINT or SIGHUP arrives or the companion is gone. Reaps the child.
/// Thread: body of a thread of its own; returns when the end is asked for.
void watchProcesses(const Companion &companion, Ending &ending);

} // namespace agentSimulator
