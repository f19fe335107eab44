// Other programs: the companion of an agent-started session and the shell commands of a script. Signals that the
// simulator ignores or blocks are given back to them as a program expects to find them.

#include "agentSimulator/childProcess.h"

#include "agentSimulator/ending.h"

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace agentSimulator
{

namespace
{

constexpr std::chrono::milliseconds pollPeriod{10};
constexpr std::chrono::milliseconds patience{1000};

std::vector<char *> argumentVector(const std::vector<std::string> &command)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &word : command)
        arguments.push_back(const_cast<char *>(word.c_str())); // posix_spawn takes them as char * and leaves them alone
    arguments.push_back(nullptr);
    return arguments;
}

bool isNameByte(char c)
{
    return isalnum(static_cast<unsigned char>(c)) || c == '_';
}

/// True when the child is gone; its wait status is then stored.
bool hasEnded(pid_t child, int &waitStatus)
{
    const pid_t result = waitpid(child, &waitStatus, WNOHANG);
    return result == child || (result < 0 && errno != EINTR);
}

int stopAndWait(pid_t child)
{
    int waitStatus = 0;
    kill(child, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!hasEnded(child, waitStatus)) {
        if (std::chrono::steady_clock::now() >= deadline)
            kill(child, SIGKILL);
        std::this_thread::sleep_for(pollPeriod);
    }
    return waitStatus;
}

} // namespace

pid_t startProcess(const std::vector<std::string> &command)
{
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<char *> arguments = argumentVector(command);
    pid_t child = -1;
    const int error = posix_spawnp(&child, arguments[0], nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    errno = error;
    return error == 0 ? child : -1;
}

bool isEmptyCommand(const std::string &shellCommand)
{
    const bool quoted = shellCommand.starts_with("\"$");
    if (!quoted && !shellCommand.starts_with("$"))
        return shellCommand.find_first_not_of(" \t") == std::string::npos;
    const size_t begin = quoted ? 2 : 1;
    size_t end = begin;
    while (end < shellCommand.size() && isNameByte(shellCommand[end]))
        end++;
    const std::string rest = shellCommand.substr(end);
    const bool wholeWord = quoted ? rest == "\"" || rest.starts_with("\" ") : rest.empty() || rest.starts_with(" ");
    if (!wholeWord || end == begin)
        return false;
    const char *value = getenv(shellCommand.substr(begin, end - begin).c_str());
    return !value || !*value;
}

int runShellCommand(const std::string &shellCommand, Ending &ending)
{
    const pid_t child = startProcess({"/bin/sh", "-c", shellCommand});
    if (child < 0)
        return -1;
    int waitStatus = 0;
    while (!hasEnded(child, waitStatus)) {
        if (ending.waitFor(pollPeriod))
            return stopAndWait(child);
    }
    return waitStatus;
}

std::string describeWaitStatus(int waitStatus)
{
    if (WIFSIGNALED(waitStatus))
        return "signal " + std::to_string(WTERMSIG(waitStatus));
    return "status " + std::to_string(WEXITSTATUS(waitStatus));
}

} // namespace agentSimulator
