#pragma once
// How well what a window shows stands out from what is behind it, as it is really drawn.

#include <gtk/gtk.h>

#include <string>
#include <vector>

struct Colour {
    double red, green, blue; ///< 0 to 1
};

/// Ratio of the lighter colour to the darker one, 1 to 21.
double contrastOf(const Colour &one, const Colour &other);
/// As "#rrggbb".
std::string nameOf(const Colour &colour);

/// One text or picture of a window.
struct Reading {
    std::string what;
    Colour front, ground; ///< where they are closest
    double ratio;
    double wanted;
};
std::ostream &operator<<(std::ostream &out, const Reading &reading);

/// Every text that a window shows, labels and text views; what is insensitive is left out. Thread: main.
std::vector<Reading> readTexts(GtkWidget *window);
/// Every picture that a window shows, by what stands out most in it; what is insensitive is left out. Thread: main.
std::vector<Reading> readPictures(GtkWidget *window);
