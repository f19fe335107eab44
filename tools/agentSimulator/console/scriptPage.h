#pragma once

#include "agentSimulator/console/console.h"

namespace agentSimulator
{

/// Adds the page where a script is written, recorded and played. Thread: main.
void addScriptPage(Console *console);

/// Puts a script there; bytes that are not UTF-8 are repaired. Thread: main.
void setScript(Console *console, const std::string &text, const std::string &path);
/// Plays what is there from its beginning. Thread: main.
void playScript(Console *console);
/// Adds lines at the end; nothing when there are none. Thread: main.
void extendScript(Console *console, const std::string &lines);
/// To be called when a script is over. @param failures  what it missed. Thread: main.
void noteReplayEnd(Console *console, int failures);

} // namespace agentSimulator
