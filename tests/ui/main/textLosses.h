#pragma once
// What a window shows of its texts, and how it looks: for tests that change the language, the font or the theme.

#include <gtk/gtk.h>

#include <string>

/// A rectangle in the coordinates of a window.
struct Box {
    int x, y, width, height;
};

/// Where the letters of a label stand.
Box boxOfLetters(GtkLabel *label);
/// The room that a widget was given.
Box boxOfRoom(GtkWidget *widget);

/// Puts the built style sheet in force, as the program does.
void wearStyle();
/// Waits until a window is drawn: a label knows what it has no room for once it is laid out with its text.
void awaitLayout(GtkWidget *window);

/// What the labels of a window don't show of their texts; empty when they show all of it.
std::string lossesOf(GtkWidget *window);
/// Fails unless a window gets a size in which it shows all of its texts. It may take a moment: notices slide in.
void expectNothingLost(GtkWidget *window);
/// Fails when a window is larger than 1024 x 768.
void expectOnSmallScreen(GtkWidget *window);
