#pragma once
// Finding real widgets as a customer names them. All searches look at a widget and everything below it, hidden parts
// and composite parts (dialog buttons, menu labels) included; null when there is none. Thread: main.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

/// The widget itself and everything below it, in the order of the tree; children of a menu button are not followed.
std::vector<GtkWidget *> allWidgets(GtkWidget *root);

/// First widget for which the question is answered yes.
GtkWidget *findWidget(GtkWidget *root, const std::function<bool(GtkWidget *)> &question);
/// First widget with this widget name (the name of the style sheet).
GtkWidget *findByName(GtkWidget *root, const std::string &name);
/// First button whose label is this.
GtkWidget *findButton(GtkWidget *root, const std::string &label);
/// First label that shows exactly this text.
GtkWidget *findLabel(GtkWidget *root, const std::string &text);
/// First widget with this tooltip.
GtkWidget *findByTooltip(GtkWidget *root, const std::string &tooltip);
/// First item of a menu with this label.
GtkWidget *findMenuItem(GtkWidget *menu, const std::string &label);

/// Open top-level windows, popups included, with this title.
std::vector<GtkWidget *> findWindows(const std::string &title);
/// The one open window with this title, or null when there is none or more than one.
GtkWidget *findWindow(const std::string &title);

/// Text of a label, a button's label or a menu item's label; empty for anything else.
std::string shownText(GtkWidget *widget);
/// The widget and all its parents are shown.
bool isShown(GtkWidget *widget);
/// Texts of all shown labels below a widget, for failure messages.
std::string describe(GtkWidget *root);
