// The annotation panel. A click on the toolbar button shows it and starts the program; a click on a tool sends the
// program one command.

#include "src/Annotation/annotationPanel.h"

#include "Logger/logger.h"
#include "src/Annotation/annotationPipes.h"
#include "src/Annotation/annotationProgram.h"
#include "src/IdleThread/infoBar.h"
#include "src/IdleThread/widgetCallbacks.h"
#include "src/Utils/panels.h"
#include "src/localizationText.h"
#include "src/support.h"

#include <cstring>

namespace
{

/// A tool as its widget's name tells it; the first row whose prefix fits counts.
struct Tool {
    const char *namePrefix;
    const char *command;            ///< null: nothing is sent
    GtkWidget *Annotation::*button; ///< the tool that is greyed out
};

constexpr Tool tools[] = {
    {"Text", "2", &Annotation::brush},
    {"annotationBrush", "2", &Annotation::brush},
    {"annotationRectangle", "3", &Annotation::rectangle},
    {"annotationCircle", "4", &Annotation::circle},
    {"annotationHighlighter", nullptr, &Annotation::highlighter},
    {"AnnotationEraser", "6", &Annotation::eraser},
    {"AnnotationDeleteAll", "7", &Annotation::eraseAll},
    {"AnnotationLine", "8", &Annotation::line},
};

/// The tools that are connected, greyed out and made usable again; the highlighter is none of them.
constexpr GtkWidget *Annotation::*workingTools[] = {&Annotation::brush,  &Annotation::rectangle, &Annotation::circle,
                                                    &Annotation::eraser, &Annotation::eraseAll,  &Annotation::line};

const Tool *findTool(const char *name)
{
    for (const Tool &tool : tools)
        if (g_str_has_prefix(name, tool.namePrefix))
            return &tool;
    return nullptr;
}

/// Releases the button, too.
gboolean greyOut(GtkWidget *button)
{
    MakeButtonInSensitive(button);
    g_object_unref(button);
    return G_SOURCE_REMOVE;
}

/// Greys out first: the program may report itself back to normal before the write returns.
void chooseTool(const Tool &tool, const Annotation *annotation)
{
    if (!tool.command)
        return;
    schedule_on_main(greyOut, GTK_WIDGET(g_object_ref(annotation->*tool.button)));
    AnnotationPipeWriter(annotation->pipePath, tool.command);
}

void showHint(const InfoBar *infoBar)
{
    gtk_label_set_text(GTK_LABEL(infoBar->infoBarLabel),
                       getString("Click the right mouse button to switch to cursor."));
    gtk_widget_show(infoBar->infoBar);
}

void expand(MainWindow *mainwindow)
{
    Annotation *const annotation = mainwindow->annotation;
    startAnnotationApplication(mainwindow);
    annotation->buttonState = panelExpanded;
    gtk_widget_show_all(annotation->contentArea);
    UI_INFO_AS("on_annotation_clicked", "Expaning annotation");
}

void minimize(Annotation *annotation)
{
    UI_INFO_AS("on_annotation_clicked", "minimizing annotation");
    annotation->buttonState = panelCollapsed;
    gtk_widget_hide(annotation->contentArea);
}

} // namespace

int setupAnnotationClickHandling(MainWindow *mainwindow)
{
    UI_ENTER();
    for (GtkWidget *Annotation::*const working : workingTools)
        connect_signal(mainwindow->annotation->*working, "clicked", HandleButtonClick, mainwindow);
    return 1;
}

void on_annotation_clicked(GtkWidget *, MainWindow *mainwindow)
{
    UI_ENTER();
    if (!mainwindow->isAnnotationAllowed)
        return;
    UI_INFO("annotation is allowed");
    if (mainwindow->annotation->buttonState == panelCollapsed)
        expand(mainwindow);
    else
        minimize(mainwindow->annotation);
    // Also when collapsing, on purpose: the panel opens with its content the next time.
    setArrow(mainwindow->annotationExpander, true, GTK_ICON_SIZE_SMALL_TOOLBAR);
    mainwindow->annotationExpander->isVisible = true;
    resizeMainWindow(mainwindow->annotation->mainWindow);
}

void HandleButtonClick(GtkWidget *button, MainWindow *mainwindow)
{
    UI_ENTER();
    const char *const name = gtk_widget_get_name(button);
    UI_INFO("%s", name);
    if (const Tool *const tool = findTool(name))
        chooseTool(*tool, mainwindow->annotation);
    showHint(mainwindow->infoBarStruct);
}

gboolean MakeButtonInSensitive(GtkWidget *button)
{
    UI_ENTER();
    gtk_widget_set_sensitive(button, false);
    return G_SOURCE_REMOVE;
}

gboolean MakeButtonSensitive(MainWindow *mainwindow)
{
    UI_ENTER();
    for (GtkWidget *Annotation::*const working : workingTools)
        gtk_widget_set_sensitive(mainwindow->annotation->*working, true);
    schedule_on_main(hideInfoBar, mainwindow->infoBarStruct);
    return G_SOURCE_REMOVE;
}

void collapseAnnotation(Annotation *annotation)
{
    annotation->buttonState = panelCollapsed;
    minimizeExpander(annotation->contentArea);
}
