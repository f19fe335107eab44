#pragma once
// The overlay's command line.

/// What the companion hands over; borrowed from `argv`.
struct Options {
    const char *logFolder = nullptr;   ///< -l
    const char *agentPipe = nullptr;   ///< -p; the overlay has nothing to tell the agent
    const char *reportPipe = nullptr;  ///< -o
    const char *commandPipe = nullptr; ///< -i
};

/// Reads the command line. @return false when it can't be understood or a pipe is missing.
bool readOptions(int argc, char **argv, Options &options);
