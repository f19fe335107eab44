// Starts the annotation program on a thread of its own, waits there for its end and cleans up. Each start has a
// number, so that what is left of an earlier one can't end a later one. The record and the pipe paths stay to the end
// of the process: the threads here are never joined.

#include "src/Annotation/annotationProgram.h"

#include "Logger/logger.h"
#include "src/Annotation/annotationPanel.h"
#include "src/Annotation/annotationPipes.h"
#include "src/Utils/pipeTransport.h"
#include "src/encoder.h"
#include "src/support.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

// Written under `Annotation.runMutex`.
std::atomic<bool> isAnnotationAlive = false;
// The program of the last start has ended, though its clean-up may still wait for the agent. Written by the start and
// by the starter thread, under `Annotation.runMutex`.
static std::atomic<bool> hasProgramEnded = false;

namespace
{

constexpr mode_t programMode = 0700;
constexpr mode_t pipeMode = 0666;

/// A collapse of the panel on its way to the main thread.
struct Collapse {
    Annotation *annotation;
    guint run;
};

/// Only for the run that has ended: a panel that was opened again meanwhile stays open.
gboolean collapseAfterRun(Collapse *collapse)
{
    if (collapse->annotation->run == collapse->run)
        collapseAnnotation(collapse->annotation);
    g_free(collapse);
    return G_SOURCE_REMOVE;
}

void replaceThread(GThread *&field, GThread *thread)
{
    g_clear_pointer(&field, g_thread_unref);
    field = thread;
}

void prepareFiles(const Annotation *annotation)
{
    chmod(annotation->AnnotationWindow, programMode);
    mkfifo(annotation->pipePath, pipeMode);
    mkfifo(annotation->pipeOutPath, pipeMode);
}

/// Runs in the new process before the program does; only what is async-signal-safe.
void resetSignals(gpointer)
{
    signal(SIGPIPE, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

bool runProgram(const Annotation *annotation, GError **error)
{
    const char *const status = g_AgentStatus ? g_AgentStatus : "";
    // clang-format off
    const char *const arguments[] = {annotation->AnnotationWindow,
                                     "-l", annotation->logPath,
                                     "-p", status,
                                     "-o", annotation->pipeOutPath,
                                     "-i", annotation->pipePath,
                                     nullptr};
    // clang-format on
    return g_spawn_sync(nullptr, const_cast<char **>(arguments), nullptr, G_SPAWN_DEFAULT, resetSignals, nullptr,
                        nullptr, nullptr, nullptr, error);
}

void noteProgramEnd(Annotation *annotation, guint run)
{
    const MutexLock lock(&annotation->runMutex);
    if (annotation->run == run)
        hasProgramEnded = true;
}

/// @return true when the run was the last one and has ended now.
bool endRunAndPipes(Annotation *annotation, guint run)
{
    const MutexLock lock(&annotation->runMutex);
    if (annotation->run != run)
        return false;
    annotation->buttonState = panelCollapsed;
    isAnnotationAlive = false;
    // The reader sees an end of file on what is about to have no name any more.
    wakeAnnotationReader(annotation->pipeOutPath);
    unlink(annotation->pipePath);
    unlink(annotation->pipeOutPath);
    g_clear_pointer(&annotation->PipeReader, g_thread_unref);
    return true;
}

} // namespace

int startAnnotationApplication(MainWindow *mainwindow)
{
    UI_ENTER();
    Annotation *const annotation = mainwindow->annotation;
    const MutexLock lock(&annotation->runMutex);
    if (isAnnotationAlive) {
        UI_INFO("annotation window is aleardy running");
        return 0;
    }
    isAnnotationAlive = true;
    hasProgramEnded = false;
    annotation->run++;
    prepareFiles(annotation);
    replaceThread(annotation->start, g_thread_new("AnnotationStarter", StartAnnotationWindow, annotation));
    replaceThread(annotation->PipeReader, g_thread_new("AnnotationReader", AnnotationPipeReader, mainwindow));
    return 1;
}

gpointer StartAnnotationWindow(gpointer data)
{
    auto *const annotation = static_cast<Annotation *>(data);
    UI_ENTER();
    const guint run = annotation->run;
    UI_INFO("started Annotation window");
    g_autoptr(GError) error = nullptr;
    if (!runProgram(annotation, &error))
        UI_DEBUG("error starting annoatation window %s", error->message);
    noteProgramEnd(annotation, run);
    UI_INFO("annotation window has been closed closing dialog");
    encodeMonitorMessage("AnnotationClose", g_UiStatus);
    closeAnnotation(annotation, run);
    return nullptr;
}

void closeAnnotation(Annotation *annotation, guint run)
{
    UI_ENTER();
    UI_INFO("cleaning up annotation");
    const guint ended = run ? run : annotation->run.load();
    if (!endRunAndPipes(annotation, ended))
        return;
    auto *const collapse = g_new(Collapse, 1);
    *collapse = {annotation, ended};
    schedule_on_main(collapseAfterRun, collapse);
}

bool isAnnotationProgramGone()
{
    return hasProgramEnded;
}

void endAnnotationRun(Annotation *annotation, guint run)
{
    const MutexLock lock(&annotation->runMutex);
    if (annotation->run == run)
        isAnnotationAlive = false;
}
