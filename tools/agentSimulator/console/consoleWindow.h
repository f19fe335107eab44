#pragma once

#include "agentSimulator/console/console.h"

namespace agentSimulator
{

/// Builds and shows the window; `console->session` is there already. Thread: main.
void buildConsoleWindow(Console *console, const Options &options);

/// Takes a line of the record over from any thread; see RecordEntry. The console outlives the main loop.
void handOverEntry(Console *console, const RecordEntry &entry);

} // namespace agentSimulator
