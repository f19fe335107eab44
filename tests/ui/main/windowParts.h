#pragma once
// Looking at the parts of the control window.

#include <gtk/gtk.h>

#include <string>
#include <vector>

/// Children of a container in the order in which they were added.
std::vector<GtkWidget *> childrenOf(GtkWidget *container);
/// Name of the resource file whose picture an image shows; empty for a picture from elsewhere.
std::string shownFile(GtkWidget *image);
/// The image on a button, put there by `gtk_button_set_image` or as its only child; borrowed.
GtkWidget *imageOn(GtkWidget *button);
/// As `shownFile`, for the image on a button.
std::string shownFileOn(GtkWidget *button);
/// Width and height of an image's picture as "18x18"; empty for an image without one.
std::string pictureSize(GtkWidget *image);
/// Named icon and its size as "pan-down-symbolic 4".
std::string shownIcon(GtkWidget *image);
/// Name that a screen reader speaks.
std::string accessibleName(GtkWidget *widget);
std::string tooltipOf(GtkWidget *widget);
/// Margins as "start end top bottom".
std::string marginsOf(GtkWidget *widget);
/// Packing in a box as "start expand fill 2"; what is off is left out.
std::string packingOf(GtkWidget *child);
/// Emits a click on a header's event box with any mouse button. @return whether the event was swallowed.
bool clickHeader(GtkWidget *panel, guint button = 1);
