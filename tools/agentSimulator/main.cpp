// The agent simulator: reads the command line, plays one session.

#include "agentSimulator/options.h"
#include "agentSimulator/session.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    using namespace agentSimulator;
    const ParsedOptions parsed = parseOptions({argv, argv + argc}, [](const char *name) { return getenv(name); });
    if (parsed.options.wantsHelp) {
        fputs(usageText, stdout);
        return 0;
    }
    if (!parsed.error.empty()) {
        fprintf(stderr, "agentSimulator: %s\n%s", parsed.error.c_str(), usageText);
        return badUsageStatus;
    }
    return runSession(parsed.options);
}
