#pragma once
// What stands in a log file.

#include <string>
#include <vector>

/// One line of the log, taken apart. A trace line has the level "TRACE_CALL" and no message.
struct LogLine {
    std::string time;     ///< "2024/3/7 9:5:2"
    std::string level;    ///< "INFO"
    std::string function; ///< "main"
    std::string message;  ///< what follows ": ", or the whole line when it has no prefix
};

/// All lines of a log file, in order; empty when there is none.
std::vector<LogLine> readLog(const std::string &path);

/// The messages of a log, in order, trace lines left out.
std::vector<std::string> readLogMessages(const std::string &path);

/// How many lines carry exactly this message.
int countLogMessages(const std::string &path, const std::string &message);
