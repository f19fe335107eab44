#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace agentSimulator
{

class Ending;

/// Starts a program (searched in PATH) with default signal dispositions and an empty signal mask.
/// Returns its process id, or -1 with errno set. The caller waits for it.
/// Thread: the main thread, so that the child's parent-death signal means the end of the program.
pid_t startProcess(const std::vector<std::string> &command);

/// True when nothing is left of a shell command because it begins with a variable ($NAME or "$NAME") that is
/// unset or empty.
bool isEmptyCommand(const std::string &shellCommand);

/// Runs a command with /bin/sh and waits for it. When the end is asked for meanwhile, the command gets SIGTERM and
/// is waited for no longer than a second more before it is killed. Returns the wait status, or -1 when it could not
/// start.
int runShellCommand(const std::string &shellCommand, Ending &ending);

/// A wait status in words: "status 3" or "signal 9".
std::string describeWaitStatus(int waitStatus);

} // namespace agentSimulator
