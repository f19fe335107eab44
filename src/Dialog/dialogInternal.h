#pragma once
// What the dialogs share among themselves: building, guarding, reporting, closing by time. Thread: main.

#include "src/Dialog/dialogText.h"
#include "src/main.h"
#include "src/support.h"

/// Builds a modal dialog without parent, buttons and text, named for the style sheet. @param title shown as given.
GtkWidget *newQuestionWindow(const char *title);

/// Adds a button with a label as given. @return the button.
GtkWidget *addAnswer(GtkWidget *dialog, const char *label, int response);
/// Adds the button that agrees, named for the style sheet.
GtkWidget *addAcceptAnswer(GtkWidget *dialog, const char *label, int response);

/// Makes the text of a question, wrapped. What is too long to be read whole is cut. Nobody agrees to what can't be
/// read: for a cut or empty text the agreeing button is insensitive. @param longestRoom what the text may take.
/// @return the label, in no container yet.
GtkWidget *newAskingLabel(GtkWidget *dialog, const char *text, int acceptResponse, int longestRoom = readableTextRoom);
/// Adds the text of a question, lifted, in a scrolled area when it is long. @return the label.
GtkWidget *addQuestionLabel(GtkWidget *dialog, const char *text, int acceptResponse);
/// The label itself, or a scrolled area around one whose text is long or high.
GtkWidget *scrolledWhenLong(GtkWidget *label);
/// Makes a label wrap, wide enough for a readable shape; a word that is longer than a line is broken.
void wrapLabel(GtkWidget *label);

/// Centres the dialog on the screen.
void centreDialog(GtkWidget *dialog);

/// Connects `Key_Press`, and in a "normal" session takes the focus from every button, so that only the pointer and
/// assistive technology answer. After the last button was added.
void guardFromKeyboard(GtkWidget *dialog, MainWindow *mainwindow);

/// Has every change of place and size reported to the agent. @param key the dialog's kind; copied.
void reportPosition(GtkWidget *dialog, const char *key);
/// Shows a question with the focus on the button that refuses, since it may come while the customer types; without such
/// a button on nothing, until Tab is pressed. @param refusingResponse the button's
void showOnRefusal(GtkWidget *dialog, int refusingResponse = GTK_RESPONSE_REJECT);

/// Adds the structure events to the main window, unless it has gone.
void listenToStructure(const MainWindow *mainwindow);

/// Name of the timer of `closeAfter` among the dialog's data; its value is the source's id, 0 without a timer.
inline constexpr char closingTimerKey[] = "closing-timer";
/// Destroys the dialog after a while, unless it goes earlier.
void closeAfter(GtkWidget *dialog, guint afterMs);
/// Disarms `closeAfter`.
void keepOpen(GtkWidget *dialog);

/// Takes an owned text out of its field. @param mutex the lock of the field.
OwnedText takeText(GMutex *mutex, char *&field);

/// True for a window that was not destroyed. @param window null, or an object that is still referenced.
bool isOpenWindow(GtkWidget *window);

/// True when the session type is "normal".
bool isNormalSession(const MainWindow *mainwindow);
