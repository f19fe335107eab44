// The agent simulator: reads the command line, plays one session, or leaves it to the technician console beside it.

#include "agentSimulator/options.h"
#include "agentSimulator/session.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace
{

/// The console takes over in this process, so that whoever started it still watches the right one.
/// Returns, with the exit status, only when that is not possible.
int becomeConsole(char **argv)
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::string console = self.parent_path() / "technicianConsole";
    execv(console.c_str(), argv);
    fprintf(stderr, "agentSimulator: %s: %s\n", console.c_str(), strerror(errno));
    return agentSimulator::badUsageStatus;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace agentSimulator;
    const ParsedOptions parsed = parseOptions({argv, argv + argc}, [](const char *name) { return getenv(name); });
    if (parsed.options.wantsHelp || !parsed.error.empty())
        return refuseOptions(parsed);
    return parsed.options.wantsConsole ? becomeConsole(argv) : runSession(parsed.options);
}
