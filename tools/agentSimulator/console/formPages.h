#pragma once

#include "agentSimulator/console/console.h"

namespace agentSimulator
{

/// Adds a page for each topic to the stack, with a button or a form for each line of the table. Thread: main.
void addFormPages(Console *console);

} // namespace agentSimulator
