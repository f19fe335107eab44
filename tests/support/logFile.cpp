// What stands in a log file.

#include "tests/support/logFile.h"

#include "tests/support/temporaryFolder.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace
{

LogLine takeApart(const std::string &line)
{
    static const std::regex message(R"((\d+/\d+/\d+ \d+:\d+:\d+) <([A-Z]+)> \[([^\]]*)\]: )");
    static const std::regex trace(R"((\d+/\d+/\d+ \d+:\d+:\d+) <(TRACE_CALL)> \[([^\]]*)\] )");
    std::smatch match;
    for (const std::regex &form : {message, trace})
        if (std::regex_search(line, match, form, std::regex_constants::match_continuous))
            return {match[1], match[2], match[3], match.suffix()};
    return {"", "", "", line};
}

} // namespace

std::vector<LogLine> readLog(const std::string &path)
{
    std::istringstream stream(readWholeFile(path));
    std::vector<LogLine> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(takeApart(line));
    return lines;
}

std::vector<std::string> readLogMessages(const std::string &path)
{
    std::vector<std::string> messages;
    for (const LogLine &line : readLog(path))
        if (line.level != "TRACE_CALL")
            messages.push_back(line.message);
    return messages;
}

int countLogMessages(const std::string &path, const std::string &message)
{
    const std::vector<std::string> messages = readLogMessages(path);
    return static_cast<int>(std::count(messages.begin(), messages.end(), message));
}
