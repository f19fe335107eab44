#pragma once
// The three kinds of lines that carry a category word. Each writes one line to the agent and returns 0.
// Thread: any; blocks as `pipewriter` does. Both arguments are borrowed.

/// Writes "buttonClicked <text>\n".
int encodeButtonClickMessage(const char *text, const char *pipePath);
/// Writes "dialogResponse <text>\n".
int encodeDialogeResponseMessage(const char *text, const char *pipePath);
/// Writes "monitorData <text>\n".
int encodeMonitorMessage(const char *text, const char *pipePath);
