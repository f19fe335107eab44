// Everything that the window and the questions show can be read in every theme: by the ratios that the guidelines for
// accessible content ask for. docs/accessibility.md names the colours that are as they are.

#include "src/Chat/chat.h"
#include "src/Chat/chatView.h"
#include "src/IdleThread/IdleThread.h"
#include "src/Utils/pipeTransport.h"
#include "src/controls.h"
#include "src/main.h"
#include "src/support.h"
#include "tests/support/waitUntil.h"
#include "tests/ui/main/contrastMeasure.h"
#include "tests/ui/main/everyQuestion.h"
#include "tests/ui/main/textLosses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace
{

struct Theme {
    const char *name;
    const char *called;
    bool isDark;
};
constexpr Theme themes[] = {{"Light", "Adwaita", false},
                            {"Dark", "Adwaita", true},
                            {"HighContrast", "HighContrast", false},
                            {"HighContrastInverse", "HighContrastInverse", true}};

void wearTheme(const Theme &theme)
{
    g_unsetenv("GTK_THEME"); // else the settings count for nothing
    g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", gboolean(theme.isDark),
                 "gtk-theme-name", theme.called, "gtk-enable-animations", FALSE, nullptr);
}

/// Colours of the conversation that are as they are: the name above a message, the word that opens a shared view.
const std::vector<std::string> exceptions = {"#9e9e9e on #ffffff", "#007ce6 on #e3f2fd"};

bool isException(const Reading &reading)
{
    return std::ranges::count(exceptions, nameOf(reading.front) + " on " + nameOf(reading.ground)) != 0;
}

void expectReadable(GtkWidget *window)
{
    awaitLayout(window);
    const std::vector<Reading> texts = readTexts(window);
    EXPECT_FALSE(texts.empty());
    for (const Reading &reading : texts)
        EXPECT_TRUE(reading.ratio >= reading.wanted || isException(reading)) << reading;
    for (const Reading &reading : readPictures(window))
        EXPECT_GE(reading.ratio, reading.wanted) << reading;
}

/// In a window with the keyboard, in one without, and under the pointer.
void expectReadableInEveryState(GtkWidget *window)
{
    const GtkStateFlags before = gtk_widget_get_state_flags(window);
    for (const GtkStateFlags state : {GTK_STATE_FLAG_NORMAL, GTK_STATE_FLAG_BACKDROP, GTK_STATE_FLAG_PRELIGHT}) {
        SCOPED_TRACE(testing::Message() << "state " << state);
        gtk_widget_unset_state_flags(window, GTK_STATE_FLAG_BACKDROP);
        if (state != GTK_STATE_FLAG_NORMAL)
            for (GtkWidget *const widget : allWidgets(window))
                if (state == GTK_STATE_FLAG_BACKDROP ? widget == window : GTK_IS_BUTTON(widget))
                    gtk_widget_set_state_flags(widget, state, FALSE);
        expectReadable(window);
    }
    gtk_widget_set_state_flags(window, before, TRUE);
}

class Contrast : public EveryQuestion, public ::testing::WithParamInterface<Theme>
{
protected:
    void SetUp() override
    {
        wearTheme(GetParam());
        wearStyle();
        EveryQuestion::SetUp();
    }
    /// The customer's and the technician's messages, and an invitation.
    void chat()
    {
        deliverToView(chatWindow, {OwnedText(g_strdup("Bob")), OwnedText(g_strdup("hello")), true});
        GtkTextView *const view = GTK_TEXT_VIEW(chatWindow->chatview);
        append_message_with_clickable_range_word(view, "You are invited, join now.", "join now.", LoadWebviewWrapper,
                                                 chatWindow);
        GtkWidget *const input = findByName(mainWindow->window, "ChatSend");
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(input)), "mine", -1);
        GdkEventKey event = {};
        event.type = GDK_KEY_RELEASE;
        event.keyval = GDK_KEY_Return;
        on_key_press(input, &event, chatWindow);
        pipewriter(g_UiStatus, "\n"); // the line of a message is ended by what follows
        gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(input)), "typed", -1);
        drainMainLoop();
    }
};

} // namespace

TEST_P(Contrast, LetsTheWindowBeReadWithAllPanelsOpen)
{
    openPanels();
    chat();
    startInfoBar(mainWindow->infoBarStruct, "A notice");
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(mainWindow->infoBarStruct->infoBarLabel); }));
    expectReadableInEveryState(mainWindow->window);
}

TEST_P(Contrast, LetsTheConversationBeReadButForTheNamedColours)
{
    openPanels();
    chat();
    awaitLayout(mainWindow->window);
    std::vector<std::string> weak;
    for (const Reading &reading : readTexts(mainWindow->window))
        if (const std::string colours = nameOf(reading.front) + " on " + nameOf(reading.ground);
            reading.ratio < reading.wanted && std::ranges::count(weak, colours) == 0)
            weak.push_back(colours);
    EXPECT_THAT(weak, testing::UnorderedElementsAreArray(exceptions));
}

TEST_P(Contrast, LetsEveryStatusBeRead)
{
    showSharingButton(mainWindow);
    gtk_widget_show(mainWindow->onDemandScreenSharingImage);
    for (const auto change : {ButtonChangeStart, ButtonChangeStop, noInternet}) {
        change(mainWindow);
        settle();
        expectReadableInEveryState(mainWindow->window);
    }
}

TEST_P(Contrast, LetsTheMenuOfAParticipantBeRead)
{
    openPanels();
    GtkWidget *const wheel = findByName(mainWindow->window, "settingsButton");
    ASSERT_TRUE(wheel);
    gtk_button_clicked(GTK_BUTTON(wheel));
    GtkWidget *const menu = GTK_WIDGET(g_object_get_data(G_OBJECT(wheel), "settingsMenu"));
    ASSERT_TRUE(menu);
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(menu); }));
    for (const bool isUnderPointer : {false, true}) {
        for (GtkWidget *const widget : allWidgets(menu))
            if (GTK_IS_MENU_ITEM(widget) && isUnderPointer)
                gtk_widget_set_state_flags(widget, GTK_STATE_FLAG_PRELIGHT, FALSE);
        expectReadable(gtk_widget_get_toplevel(menu));
    }
}

TEST_P(Contrast, LetsEveryQuestionBeRead)
{
    eachQuestion([](GtkWidget *dialog, const char *) { expectReadableInEveryState(dialog); });
}

INSTANTIATE_TEST_SUITE_P(In, Contrast, ::testing::ValuesIn(themes),
                         [](const auto &parameter) { return std::string(parameter.param.name); });
