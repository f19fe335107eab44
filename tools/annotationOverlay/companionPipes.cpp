// Commands come as bare texts, one for each opening of the pipe, and may run together when they come fast. The next
// read end is opened before the last one is closed, so that none falls between.

#include "tools/annotationOverlay/companionPipes.h"

#include <glib-unix.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace
{

constexpr char normalReport[] = "normal";
constexpr int reportTries = 100;
constexpr gulong reportStepUs = 10000;

/// The commands' pipe; lives as long as the program.
struct CommandPipe {
    std::string path;
    std::function<void(const std::string &)> handle;
};

void handleText(const CommandPipe &commands, const std::string &text)
{
    for (size_t at = 0; at < text.size(); at++) {
        if (text.compare(at, sizeof exitCommand - 1, exitCommand) == 0) {
            commands.handle(exitCommand);
            return;
        }
        commands.handle(std::string(1, text[at]));
    }
}

gboolean on_commands(int pipe, GIOCondition, gpointer data);

bool openCommands(CommandPipe *commands)
{
    const int pipe = open(commands->path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (pipe < 0)
        return false;
    g_unix_fd_add(pipe, GIOCondition(G_IO_IN | G_IO_HUP), on_commands, commands);
    return true;
}

gboolean on_commands(int pipe, GIOCondition, gpointer data)
{
    auto *const commands = static_cast<CommandPipe *>(data);
    char buffer[256];
    const ssize_t count = read(pipe, buffer, sizeof buffer);
    if (count > 0)
        handleText(*commands, std::string(buffer, size_t(count)));
    if (count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR)))
        return G_SOURCE_CONTINUE;
    openCommands(commands);
    close(pipe);
    return G_SOURCE_REMOVE;
}

int openForReport(const char *path)
{
    for (int tries = 0; tries < reportTries; tries++) {
        const int pipe = open(path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        if (pipe >= 0 || errno != ENXIO)
            return pipe;
        g_usleep(reportStepUs);
    }
    return -1;
}

} // namespace

bool watchCommands(const char *path, std::function<void(const std::string &)> handle)
{
    return openCommands(new CommandPipe{path, std::move(handle)});
}

void reportNormal(const char *path)
{
    const int pipe = openForReport(path);
    if (pipe < 0 || write(pipe, normalReport, sizeof normalReport - 1) < 0)
        g_message("nobody takes the report");
    if (pipe >= 0)
        close(pipe);
}
