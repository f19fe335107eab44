#pragma once
// A session in which everything can be looked at: all panels, and every question one after the other.

#include "tests/ui/Dialog/dialogSession.h"

#include <functional>
#include <string>

class EveryQuestion : public DialogSession
{
protected:
    inline static const std::string customer = "Ann Lee";

    void SetUp() override;
    /// Shows what all panels hold, and a participant.
    void openPanels();
    /// Looks at each question while it is on the screen, and closes it.
    /// @param look  gets the dialog and the translation key of a text in it, null where nothing is translated
    void eachQuestion(const std::function<void(GtkWidget *, const char *)> &look);
    /// Waits for a dialog with any title.
    static GtkWidget *awaitAnyDialog();
};
