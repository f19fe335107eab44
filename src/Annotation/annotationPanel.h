#pragma once
// The annotation panel: its toolbar button and its tools. Thread: main.

#include "src/main.h"

/// Values of `Annotation.buttonState`.
inline constexpr int panelExpanded = 1, panelCollapsed = 2;

/// Connects the tool buttons. @return 1.
int setupAnnotationClickHandling(MainWindow *mainwindow);
/// The panel's toolbar button: opens the panel and starts the program, or closes the panel.
void on_annotation_clicked(GtkWidget *button, MainWindow *mainwindow);
/// A tool button was clicked: tells the program, greys the tool out and shows how to get back to the cursor.
void HandleButtonClick(GtkWidget *button, MainWindow *mainwindow);
/// Greys a tool out. @return 0.
gboolean MakeButtonInSensitive(GtkWidget *button);
/// Makes every tool usable again and has the hint hidden. @return 0.
gboolean MakeButtonSensitive(MainWindow *mainwindow);
/// Closes the panel: the program has ended.
void collapseAnnotation(Annotation *annotation);
