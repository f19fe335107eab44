// The places of the annotation program, by session type.

#include "src/Annotation/annotationLayout.h"

#include "Logger/logger.h"
#include "src/support.h"

#include <cstring>

namespace
{

/// One kind of installation; "~" at the start of a path stands for the home directory.
struct AnnotationLayout {
    const char *sessionType; ///< null: any other
    const char *logLine;
    const char *logFolder;
    const char *pipeFolder;
    const char *program;
};

constexpr AnnotationLayout layouts[] = {
    {"normal", "Normal log path has been set for Annotation window", "~/.brindle/Brindle/Logs", "~/.brindle/temp",
     "~/.brindle/Brindle/bin/Annotation"},
    {"ras", "Ras log path has been set for Annotation window", "/usr/local/.brindle/Brindle/Logs",
     "/usr/local/.brindle/temp", "/usr/local/.brindle/Brindle/bin/Annotation"},
    {"oreach", "OstrelReach log path has been set for Annotation window", "/var/log/OstrelReach",
     "/usr/local/OstrelReach/temp", "/usr/local/OstrelReach/bin/Annotation"},
    {nullptr, "Urs log path has been set for Annotation window", "/var/log/Brindle", "/usr/local/Brindle/temp",
     "/usr/local/Brindle/bin/Annotation"},
};
constexpr const AnnotationLayout &homeLayout = layouts[0];

const AnnotationLayout &findLayout(const char *sessionType)
{
    const AnnotationLayout *row = layouts;
    while (row->sessionType && g_strcmp0(row->sessionType, sessionType) != 0)
        row++;
    return *row;
}

char *newPath(const char *place, const char *homeDir)
{
    return *place == '~' ? g_strconcat(homeDir, place + 1, nullptr) : g_strdup(place);
}

void takePath(char *&field, char *path)
{
    g_free(field);
    field = path;
}

void fillPaths(const AnnotationLayout &layout, Annotation *annotation, const char *homeDir)
{
    g_autofree char *pipeFolder = newPath(layout.pipeFolder, homeDir);
    takePath(annotation->logPath, newPath(layout.logFolder, homeDir));
    takePath(annotation->pipePath, g_strconcat(pipeFolder, "/AnnotationIn", nullptr));
    takePath(annotation->pipeOutPath, g_strconcat(pipeFolder, "/AnnotationOut", nullptr));
    takePath(annotation->AnnotationWindow, newPath(layout.program, homeDir));
}

} // namespace

int setAnnotationPath(const char *sessionType, Annotation *annotation, const MainWindow *mainwindow)
{
    UI_ENTER();
    const char *const homeDir = mainwindow->homeDir ? mainwindow->homeDir : "";
    const AnnotationLayout &layout = findLayout(sessionType);
    UI_INFO("%s", layout.logLine);
    const bool isDynamic = g_strcmp0(layout.sessionType, "ras") == 0 && *homeDir;
    fillPaths(isDynamic ? homeLayout : layout, annotation, homeDir);
    if (isDynamic)
        UI_INFO("Dynamic log path has been set for Annotation window: %s", homeDir);
    return 0;
}
