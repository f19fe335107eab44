#pragma once
// How the screen shows through the overlay. Thread: main.

#include <gtk/gtk.h>

/// Gives the window a visual with transparency, where the screen has one. Before the window is realized.
void useTransparentVisual(GtkWidget *window);
/// Whether transparent pixels of the window show what is behind it.
bool isTransparent(GtkWidget *window);
/// A picture of the screen as it is now; the caller destroys it.
cairo_surface_t *pictureScreen(GtkWidget *window);

/// Lets the window take the pointer everywhere, or nowhere so that clicks reach what is behind it.
void takePointer(GtkWidget *window, bool takes);
/// Cuts the window down to the drawn parts of a picture, or with null to nothing less than itself.
void cutWindow(GtkWidget *window, cairo_surface_t *picture);
