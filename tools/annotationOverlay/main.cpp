// Draws on the customer's screen at the companion's command, until it is told "Exit", the customer presses Escape, or
// the companion is gone.

#include "tools/annotationOverlay/companionPipes.h"
#include "tools/annotationOverlay/options.h"
#include "tools/annotationOverlay/overlayWindow.h"

#include <gtk/gtk.h>

#include <csignal>
#include <sys/prctl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>

namespace
{

/// What the overlay says goes where the companion's log is; without such a folder to the standard error.
void openLog(const char *folder)
{
    if (!folder)
        return;
    g_autofree char *path = g_strdup_printf("%s/annotation.log", folder);
    if (FILE *const log = fopen(path, "ae")) {
        setvbuf(log, nullptr, _IOLBF, 0);
        dup2(fileno(log), STDERR_FILENO);
        fclose(log);
    }
}

/// An overlay without its companion would stay on the screen for ever.
/// @return false when the companion was gone already
bool endWithCompanion(pid_t companion)
{
    signal(SIGPIPE, SIG_IGN);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == companion;
}

} // namespace

int main(int argc, char **argv)
{
    const pid_t companion = getppid();
    Options options;
    if (!readOptions(argc, argv, options)) {
        fprintf(stderr, "usage: %s -l LOG_FOLDER -p AGENT_PIPE -o REPORT_PIPE -i COMMAND_PIPE\n", argv[0]);
        return 2;
    }
    openLog(options.logFolder);
    if (!endWithCompanion(companion) || !gtk_init_check(&argc, &argv))
        return 1;
    openOverlay([&options] { reportNormal(options.reportPipe); });
    if (!watchCommands(options.commandPipe, obeyCommand)) {
        g_warning("the command pipe %s can't be opened", options.commandPipe);
        return 1;
    }
    gtk_main();
    return 0;
}
