#pragma once

#include "agentSimulator/console/console.h"

namespace agentSimulator
{

/// The list of everything both sides said, with what decides about its rows. Thread: main.
GtkWidget *buildConversation(Console *console);

/// Adds what a line of the record says: one row for each line of a received text. Thread: main.
void showEntry(Console *console, const RecordEntry &entry);

} // namespace agentSimulator
