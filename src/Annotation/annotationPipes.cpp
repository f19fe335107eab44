// Both ways between the window and the annotation program. A command is one open-write-close on "AnnotationIn"; a
// report is what the program writes into "AnnotationOut" between its open and its close.
// The reader never blocks inside open(): it holds a non-blocking read end and waits in poll(), and it opens the next
// end before it closes the last one, so that no report falls between two.

#include "src/Annotation/annotationPipes.h"

#include "Logger/logger.h"
#include "src/Annotation/annotationPanel.h"
#include "src/Annotation/annotationProgram.h"
#include "src/Dialog/dialogText.h"
#include "src/Utils/descriptor.h"
#include "src/Utils/pipeWaiting.h"
#include "src/lostDisplay.h"
#include "src/support.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

namespace
{

constexpr gint64 lastCommandWaitUs = 1500000;
constexpr gsize longestReport = 65536; // what is behind it is read and dropped

// When the wait of a command at the end of the session is over. Written by the thread that ends it.
std::atomic<gint64> lastCommandDeadlineUs = 0;

bool sessionEnds()
{
    if (quit_requested())
        return true;
    leave_lost_display();
    return false;
}

bool sessionEndsOrProgramGone()
{
    return sessionEnds() || !isAnnotationAlive || isAnnotationProgramGone();
}

/// A plain file in the pipe's place would swallow the commands.
bool isPlainFile(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && !S_ISFIFO(status.st_mode);
}

bool lastCommandIsLate()
{
    return g_get_monotonic_time() > lastCommandDeadlineUs;
}

/// What ends the wait of a command that is written now.
GiveUp chooseGiveUp()
{
    if (quit_requested()) {
        lastCommandDeadlineUs = g_get_monotonic_time() + lastCommandWaitUs;
        return lastCommandIsLate;
    }
    return isAnnotationAlive ? sessionEndsOrProgramGone : sessionEnds;
}

/// One run of the program, as its reader knows it.
struct Run {
    MainWindow *mainwindow;
    guint number;
};

bool isOver(const Run &run)
{
    return !isAnnotationAlive || run.mainwindow->annotation->run != run.number;
}

/// Opens a FIFO for reading without waiting for its writer.
/// @return a descriptor, or -1 with errno set; anything but a FIFO is refused
int openForReading(const char *path)
{
    Descriptor pipe(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status;
    if (pipe.get() < 0 || fstat(pipe.get(), &status) != 0)
        return -1;
    if (!S_ISFIFO(status.st_mode)) {
        errno = EINVAL;
        return -1;
    }
    return pipe.release();
}

/// Waits for data or for the writer's end. @return false when there is neither and no wait is wanted
bool waitForReport(int pipe, bool isRunOver)
{
    struct pollfd ready = {pipe, POLLIN, 0};
    int count;
    do
        count = poll(&ready, 1, isRunOver ? 0 : -1);
    while (count < 0 && errno == EINTR);
    return count != 0;
}

enum class Reading { report, nothing, failed };

/// Reads until the writer closes.
Reading readReport(int pipe, const Run &run, std::string &report)
{
    if (!waitForReport(pipe, isOver(run)))
        return Reading::nothing;
    char buffer[4096];
    for (;;) {
        // Reads before it waits: poll() does not tell of a writer that had come and gone before this end was opened.
        const ssize_t count = read(pipe, buffer, sizeof buffer);
        if (count == 0) // with nothing to say at the end of a run it is taken for `wakeAnnotationReader`
            return report.empty() && isOver(run) ? Reading::nothing : Reading::report;
        if (count > 0)
            report.append(buffer, std::min(gsize(count), longestReport - report.size()));
        else if (errno == EAGAIN && !waitForReport(pipe, isOver(run)))
            return report.empty() ? Reading::nothing : Reading::report;
        else if (errno != EAGAIN && errno != EINTR)
            return Reading::failed;
    }
}

/// A report as one message of the log: its line breaks begin none of their own. The one at its end is a writer's habit.
OwnedText inOneLine(std::string report)
{
    const bool endsLine = report.ends_with('\n');
    if (endsLine)
        report.pop_back();
    return OwnedText(g_strconcat(plainName(report.c_str()).get(), endsLine ? "\n" : "", nullptr));
}

void handleReport(const std::string &report, MainWindow *mainwindow)
{
    if (g_str_has_prefix(report.c_str(), "normal"))
        schedule_on_main(MakeButtonSensitive, mainwindow);
    else
        UI_INFO_AS("AnnotationPipeReader", "unhandled Message %s ", inOneLine(report).get());
}

/// One report. @return false when the run is over and nothing is left to read.
bool takeReport(int pipe, const Run &run)
{
    std::string report;
    switch (readReport(pipe, run, report)) {
    case Reading::nothing:
        return false;
    case Reading::failed:
        UI_INFO_AS("AnnotationPipeReader", "error occured while writing pipes");
        return true;
    case Reading::report:
        break;
    }
    handleReport(report, run.mainwindow);
    return true;
}

/// Reception ends; the program of this run counts as gone, so that the next click on the panel starts it again.
void giveUpReading(const Run &run)
{
    if (isOver(run))
        return; // the clean-up has deleted the pipe
    UI_INFO_AS("AnnotationPipeReader", "error reading pipe %s ", g_strerror(errno));
    endAnnotationRun(run.mainwindow->annotation, run.number);
}

void readReports(const char *path, const Run &run)
{
    Descriptor pipe;
    do {
        const int next = openForReading(path);
        if (next < 0) {
            giveUpReading(run);
            return;
        }
        if (pipe.reset(next) != 0)
            UI_INFO_AS("AnnotationPipeReader", "Error has occured");
    } while (takeReport(pipe.get(), run));
}

} // namespace

int AnnotationPipeWriter(const char *pipePath, const char *text)
{
    UI_ENTER();
    const GiveUp giveUp = chooseGiveUp();
    Descriptor pipe(isPlainFile(pipePath) ? -1 : openForWriting(pipePath, giveUp));
    const bool isWritten = pipe.get() >= 0 && writeWhole(pipe.get(), text, strlen(text), giveUp);
    if (pipe.reset(-1) != 0 || !isWritten)
        UI_INFO("error writing to pipe\n");
    return 0;
}

gpointer AnnotationPipeReader(gpointer data)
{
    auto *const mainwindow = static_cast<MainWindow *>(data);
    UI_ENTER();
    if (!isAnnotationAlive)
        return nullptr;
    const OwnedText path(g_strdup(mainwindow->annotation->pipeOutPath));
    readReports(path.get(), {mainwindow, mainwindow->annotation->run});
    return nullptr;
}

void wakeAnnotationReader(const char *pipeOutPath)
{
    // A writer that comes and goes reads as an end of file. No wait: without a reader there is nobody to wake.
    const Descriptor pipe(open(pipeOutPath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
}
