// The technician console: a session that is led by buttons and forms. It takes the simulator's command lines, and is
// the simulator where there is no display.

#include "agentSimulator/console/consoleSession.h"
#include "agentSimulator/console/consoleWindow.h"
#include "agentSimulator/console/scriptPage.h"
#include "agentSimulator/options.h"
#include "agentSimulator/session.h"
#include "src/support.h"

#include <glib-unix.h>

#include <cstdlib>
#include <memory>

using namespace agentSimulator;

namespace
{

/// What the end of the first script still has to know.
struct Start {
    Console console;
    const Options *options = nullptr;
    bool isFirstScript = false;
};

/// The end of a script on its way to the main thread.
struct ReplayEnd {
    Start *start;
    int failures;
};

gboolean showReplayEnd(ReplayEnd *record)
{
    const std::unique_ptr<ReplayEnd> end(record);
    noteReplayEnd(&end->start->console, end->failures);
    if (std::exchange(end->start->isFirstScript, false) && end->start->options->exitStatus)
        end->start->console.session->ending().request(*end->start->options->exitStatus, "BRINDLE_AGENT_EXIT");
    return G_SOURCE_REMOVE;
}

gboolean on_ending(int, GIOCondition, gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_REMOVE;
}

/// Leads the session from the window until its end is asked for.
SessionEnd leadSession(Start &start, const Options &options, Recorder &recorder, const LoadedScript &script,
                       const Companion &companion)
{
    ConsoleSession session(options, recorder, companion, [&start](int failures) {
        schedule_on_main(showReplayEnd, new ReplayEnd{&start, failures});
    });
    Console *const console = &start.console;
    console->session = &session;
    console->loop = g_main_loop_new(nullptr, FALSE);
    g_unix_fd_add(session.ending().descriptor(), G_IO_IN, on_ending, console->loop);
    buildConsoleWindow(console, options);
    if (!options.scriptPath.empty()) {
        start.isFirstScript = true;
        setScript(console, script.text, options.scriptPath);
        playScript(console);
    }
    g_main_loop_run(console->loop);
    gtk_widget_destroy(console->window);
    g_main_loop_unref(console->loop);
    return {session.ending().status(), session.ending().reason()};
}

} // namespace

int main(int argc, char **argv)
{
    const ParsedOptions parsed = parseOptions({argv, argv + argc}, [](const char *name) { return getenv(name); });
    if (parsed.options.wantsHelp || !parsed.error.empty())
        return refuseOptions(parsed);
    prepareSignals(); // before the toolkit starts threads of its own
    g_set_prgname("technicianConsole");
    if (!gtk_init_check(nullptr, nullptr))
        return runSession(parsed.options);
    // The last lines of the record may still be on their way when the loop has ended.
    static Start start;
    start.options = &parsed.options;
    const PlaySession lead = [](const Options &options, Recorder &recorder, const LoadedScript &script,
                                const Companion &companion) {
        return leadSession(start, options, recorder, script, companion);
    };
    return runSession(parsed.options, lead, [](const RecordEntry &entry) { handOverEntry(&start.console, entry); });
}
