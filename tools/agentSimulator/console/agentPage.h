#pragma once

#include "agentSimulator/console/console.h"

namespace agentSimulator
{

/// Adds the page where the agent's own end is chosen. @param status  what its exit status is at first. Thread: main.
void addAgentPage(Console *console, int status);

} // namespace agentSimulator
