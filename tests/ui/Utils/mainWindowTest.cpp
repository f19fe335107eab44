// The control window as it is built: what stands where, under which name, with which words and pictures.

#include "src/Utils/mainWindowBuilder.h"

#include "src/Dialog/dialog.h"
#include "src/Utils/Utils.h"
#include "src/localizationText.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using ::testing::ElementsAre;

class ControlWindow : public WindowSession
{
protected:
    using WindowSession::WindowSession;

    GtkWidget *mainBox() const { return gtk_bin_get_child(GTK_BIN(mainWindow->window)); }
    GtkWidget *named(const char *name) const { return findByName(mainWindow->window, name); }
    GtkWidget *toolbar() const { return childrenOf(named("actionContainer")).at(0); }
};

class RenamedControlWindow : public ControlWindow
{
protected:
    RenamedControlWindow() : ControlWindow("normal", {"-n", "REACH_CLOUD"}) {}
};

/// A window that is built on its own terms: `prepare` runs between start-up's paths and the building.
class BuiltWindow : public TestSession
{
protected:
    void build()
    {
        EXPECT_EQ(createMainWindow(mainWindow, chatWindow), 0);
        gtk_widget_show_all(mainWindow->window);
        drainMainLoop();
    }
    void TearDown() override
    {
        gtk_widget_destroy(mainWindow->window);
        drainMainLoop();
        g_isEnglish = true;
        TestSession::TearDown();
    }
    /// Every text of this list has the translation "<text>".
    static void translate(std::initializer_list<const char *> texts)
    {
        g_hash = g_hash_table_new(g_str_hash, g_str_equal);
        for (const char *const text : texts)
            g_hash_table_insert(g_hash, g_strdup(text), g_strdup_printf("<%s>", text));
        g_isEnglish = false;
    }
};

} // namespace

TEST_F(ControlWindow, StandsAboveOthersAndKeepsItsWidth)
{
    GtkWindow *const window = GTK_WINDOW(mainWindow->window);
    int width = 0, height = 0;
    gtk_widget_get_size_request(mainWindow->window, &width, &height);
    EXPECT_EQ(width, 350);
    EXPECT_EQ(height, -1);
    EXPECT_FALSE(gtk_window_get_resizable(window));
    EXPECT_TRUE(gtk_window_get_decorated(window));
    EXPECT_EQ(gtk_window_get_gravity(window), GDK_GRAVITY_CENTER);
    EXPECT_EQ(gtk_window_get_window_type(window), GTK_WINDOW_TOPLEVEL);
    EXPECT_TRUE(waitUntil([&] {
        return (gdk_window_get_state(gtk_widget_get_window(mainWindow->window)) & GDK_WINDOW_STATE_ABOVE) != 0;
    }));
}

TEST_F(ControlWindow, CarriesTheProductsTitle)
{
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(mainWindow->window)), "Brindle");
    EXPECT_EQ(tooltipOf(mainWindow->window), "");
    EXPECT_TRUE(logHas("Window title: Brindle"));
    EXPECT_FALSE(logHas("Settings title as OstrelReach"));
}

TEST_F(RenamedControlWindow, KeepsTheBlanksOfItsTitle)
{
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(mainWindow->window)), "Ostrel Reach  ");
    EXPECT_THAT(readWholeFile(logPath()), ::testing::HasSubstr("Window title: Ostrel Reach  \n\n"));
}

TEST_F(ControlWindow, HasItsRowsFromTopToBottom)
{
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(mainBox())), GTK_ORIENTATION_VERTICAL);
    EXPECT_THAT(childrenOf(mainBox()),
                ElementsAre(mainWindow->infoBarStruct->infoBar, named("actionContainer"), named("StatusContainer")));
    for (GtkWidget *const row : childrenOf(mainBox()))
        EXPECT_EQ(packingOf(row), "start fill 0");
}

TEST_F(ControlWindow, HasThePanelsUnderTheToolbar)
{
    const std::vector<GtkWidget *> rows = childrenOf(named("actionContainer"));
    ASSERT_EQ(rows.size(), 10u);
    EXPECT_THAT(rows, ElementsAre(toolbar(), rows[1], mainWindow->participants->contentArea,
                                  mainWindow->participants->seperator, mainWindow->chat->contentArea,
                                  mainWindow->chat->seperator, mainWindow->fileTransfer->contentArea,
                                  mainWindow->fileTransfer->seperator, mainWindow->annotation->contentArea, rows[9]));
    for (const size_t line : {1, 3, 5, 7, 9}) {
        EXPECT_TRUE(GTK_IS_SEPARATOR(rows[line])) << line;
        EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(rows[line])), GTK_ORIENTATION_HORIZONTAL) << line;
    }
    for (GtkWidget *const row : rows)
        EXPECT_EQ(packingOf(row), "start fill 0");
}

TEST_F(ControlWindow, HasItsToolbarButtonsInOrder)
{
    EXPECT_THAT(childrenOf(toolbar()), ElementsAre(mainWindow->participants->button, mainWindow->chat->button,
                                                   mainWindow->fileTransfer->button, mainWindow->annotation->button,
                                                   mainWindow->settingsButton));
    for (GtkWidget *const button : childrenOf(toolbar())) {
        EXPECT_EQ(packingOf(button), button == mainWindow->settingsButton ? "end fill 0" : "start fill 0");
        EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(button)), GTK_RELIEF_NONE);
    }
}

TEST_F(ControlWindow, ToolbarButtonsHaveTheirPictureAndName)
{
    struct Case {
        GtkWidget *button, *image;
        const char *size, *text;
    };
    const Case cases[] = {
        {mainWindow->participants->button, mainWindow->participantsButtonImage, "18x18", "Participant"},
        {mainWindow->chat->button, mainWindow->chatButtonImage, "20x20", "Chat"},
        {mainWindow->annotation->button, mainWindow->annotationButtonImage, "20x20", "Annotation"},
        {mainWindow->fileTransfer->button, mainWindow->fileTransferButtonImage, "20x20", "File Transfer"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(gtk_button_get_image(GTK_BUTTON(each.button)), each.image) << each.text;
        EXPECT_EQ(pictureSize(each.image), each.size) << each.text;
        EXPECT_EQ(marginsOf(each.image), "2 2 2 2") << each.text;
        EXPECT_EQ(tooltipOf(each.button), each.text);
        EXPECT_EQ(accessibleName(each.button), each.text);
    }
}

TEST_F(ControlWindow, TheSettingsPictureWaitsForStartUp)
{
    EXPECT_EQ(pictureSize(mainWindow->settingsButtonImage), "14x14");
    EXPECT_EQ(marginsOf(mainWindow->settingsButtonImage), "0 0 0 0");
    EXPECT_STREQ(gtk_widget_get_name(mainWindow->settingsButtonImage), "settingsImage");
    EXPECT_EQ(gtk_button_get_image(GTK_BUTTON(mainWindow->settingsButton)), nullptr);
    EXPECT_EQ(tooltipOf(mainWindow->settingsButton), "More");
    EXPECT_EQ(accessibleName(mainWindow->settingsButton), "More");
}

TEST_F(ControlWindow, AnnotationToolsStandInOrder)
{
    struct Tool {
        GtkWidget *button, *image;
        const char *name, *text;
    };
    const Annotation &panel = *mainWindow->annotation;
    const Tool tools[] = {
        {panel.brush, panel.brushImage, "annotationBrush", "Pen"},
        {panel.rectangle, panel.rectangeImage, "annotationRectangle", "Rectangle"},
        {panel.circle, panel.circleImage, "annotationCircle", "Ellipse"},
        {panel.line, panel.lineImage, "AnnotationLine", "Line"},
        {panel.eraser, panel.eraserImage, "AnnotationEraser", "Eraser"},
        {panel.eraseAll, panel.eraseAllImage, "AnnotationDeleteAll", "Clear Screen"},
    };
    const std::vector<GtkWidget *> buttons = childrenOf(mainWindow->annotationExpander->expanderContent);
    ASSERT_EQ(buttons.size(), std::size(tools));
    for (size_t i = 0; i < buttons.size(); i++) {
        EXPECT_EQ(buttons[i], tools[i].button) << tools[i].text;
        EXPECT_STREQ(gtk_widget_get_name(buttons[i]), tools[i].name);
        EXPECT_EQ(gtk_button_get_image(GTK_BUTTON(buttons[i])), tools[i].image) << tools[i].text;
        EXPECT_EQ(pictureSize(tools[i].image), "16x16") << tools[i].text;
        EXPECT_EQ(marginsOf(tools[i].image), "0 0 0 0") << tools[i].text;
        EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(buttons[i])), GTK_RELIEF_NONE) << tools[i].text;
        EXPECT_EQ(tooltipOf(buttons[i]), tools[i].text);
        EXPECT_EQ(accessibleName(buttons[i]), tools[i].text);
    }
}

TEST_F(ControlWindow, PanelsHaveTheirTitles)
{
    const std::pair<GtkWidget *, const char *> panels[] = {
        {mainWindow->participants->contentArea, "Participants"},
        {mainWindow->chat->contentArea, "Chat"},
        {mainWindow->fileTransfer->contentArea, "File Transfer"},
        {mainWindow->annotation->contentArea, "Annotation"},
    };
    for (const auto &[panel, title] : panels) {
        GtkWidget *const header = findByName(panel, "expander");
        ASSERT_NE(header, nullptr) << title;
        EXPECT_NE(findLabel(header, title), nullptr) << title;
    }
}

TEST_F(ControlWindow, EveryPanelStartsClosed)
{
    for (const Expander *const panel : {mainWindow->participants, mainWindow->chat, mainWindow->fileTransfer}) {
        EXPECT_EQ(panel->buttonState, 2);
        EXPECT_EQ(panel->mainWindow, panel == mainWindow->chat ? panel->mainWindow : mainWindow->window);
    }
    EXPECT_EQ(mainWindow->annotation->buttonState, 2);
    EXPECT_EQ(mainWindow->annotation->mainWindow, mainWindow->window);
    for (const CustomExpander *const header : {mainWindow->participantsExpander, mainWindow->chatExpander,
                                               mainWindow->fileTransferExpander, mainWindow->annotationExpander}) {
        EXPECT_FALSE(header->isVisible);
        EXPECT_EQ(shownIcon(header->arrowImage), "pan-end-symbolic 0");
    }
}

TEST_F(ControlWindow, ParticipantsPanelSaysThatNobodyJoined)
{
    GtkWidget *const notice = mainWindow->participants->textBar;
    EXPECT_EQ(shownText(notice), "No participant has joined");
    EXPECT_EQ(marginsOf(notice), "0 0 2 2");
    EXPECT_EQ(packingOf(notice), "start 0");
    EXPECT_EQ(gtk_widget_get_parent(notice), mainWindow->participantsExpander->expanderContent);
}

TEST_F(ControlWindow, TheTranscriptCanNotBeSavedYet)
{
    GtkWidget *const download = mainWindow->chatExpander->rightButton;
    EXPECT_STREQ(gtk_widget_get_name(download), "downloadchat");
    EXPECT_EQ(tooltipOf(download), "Download Chat");
    EXPECT_EQ(accessibleName(download), "Download Chat");
    EXPECT_FALSE(gtk_widget_get_sensitive(download));
    EXPECT_EQ(shownFileOn(download), "download.png");
    EXPECT_EQ(gtk_button_get_image(GTK_BUTTON(download)), mainWindow->chatExpander->Rightimage);
}

TEST_F(ControlWindow, TheChatRecordKnowsItsPanel)
{
    EXPECT_EQ(chatWindow->chat, mainWindow->chat);
    EXPECT_EQ(chatWindow->chatExpander, mainWindow->chatExpander);
    EXPECT_EQ(chatWindow->chat_area, mainWindow->chat->contentArea);
    EXPECT_EQ(chatWindow->infobar, mainWindow->infoBarStruct);
}

TEST_F(ControlWindow, FileTransferPanelHasButtonThenNotice)
{
    GtkWidget *const send = mainWindow->sendFile;
    GtkWidget *const notice = mainWindow->fileTransfer->textBar;
    EXPECT_THAT(childrenOf(mainWindow->fileTransferExpander->expanderContent), ElementsAre(send, notice));
    EXPECT_EQ(shownText(send), "Send File");
    EXPECT_STREQ(gtk_widget_get_name(send), "sendFiles");
    EXPECT_EQ(gtk_widget_get_halign(send), GTK_ALIGN_CENTER);
    EXPECT_EQ(gtk_widget_get_valign(send), GTK_ALIGN_CENTER);
    EXPECT_EQ(shownText(notice),
              " Multiple technicians are present! Request the\n technician to intiate file transfer");
    EXPECT_EQ(packingOf(send), "start 5");
    EXPECT_EQ(packingOf(notice), "start 5");
}

TEST_F(ControlWindow, StatusRowHasIconTextRecordingAndButton)
{
    GtkWidget *const icon = mainWindow->statusIcon, *const text = mainWindow->statusLabel;
    GtkWidget *const button = mainWindow->startStopSharingButton;
    GtkWidget *const recording = mainWindow->onDemandScreenSharingImage;
    EXPECT_THAT(childrenOf(named("StatusContainer")), ElementsAre(icon, text, recording, button));
    EXPECT_EQ(packingOf(icon), "start fill 0");
    EXPECT_EQ(packingOf(text), "start fill 0");
    EXPECT_EQ(packingOf(button), "end fill 0");
    EXPECT_EQ(packingOf(recording), "end fill 1");
    EXPECT_EQ(shownFile(icon), "offline.png");
    EXPECT_EQ(shownText(text), "");
    EXPECT_STREQ(gtk_widget_get_name(recording), "glowing-image");
    EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(recording)), GTK_IMAGE_ANIMATION);
    EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(button)), GTK_RELIEF_NONE);
}

TEST_F(ControlWindow, StatusRowKeepsItsDistances)
{
    EXPECT_EQ(marginsOf(mainWindow->statusIcon), "3 0 0 0");
    EXPECT_EQ(marginsOf(mainWindow->statusLabel), "3 0 2 2");
    EXPECT_EQ(marginsOf(mainWindow->startStopSharingButton), "0 3 2 2");
    EXPECT_EQ(marginsOf(mainWindow->onDemandScreenSharing), "0 0 2 2");
}

TEST_F(ControlWindow, TheOnDemandButtonIsNowhere)
{
    GtkWidget *const button = mainWindow->onDemandScreenSharing;
    EXPECT_EQ(gtk_widget_get_parent(button), nullptr);
    EXPECT_FALSE(gtk_widget_get_sensitive(button));
    EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(button)), GTK_RELIEF_NONE);
}

TEST_F(ControlWindow, InfoBarHoldsAnEmptyText)
{
    const InfoBar &bar = *mainWindow->infoBarStruct;
    GtkWidget *const content = gtk_info_bar_get_content_area(GTK_INFO_BAR(bar.infoBar));
    EXPECT_EQ(bar.infoBarText, nullptr);
    EXPECT_EQ(bar.mainWindow, mainWindow->window);
    EXPECT_THAT(childrenOf(content), ElementsAre(bar.infoBarLabel));
    EXPECT_EQ(shownText(bar.infoBarLabel), "");
}

TEST_F(ControlWindow, StartsWithToolbarLinesAndStatusOnly)
{
    const std::vector<GtkWidget *> rows = childrenOf(named("actionContainer"));
    for (const size_t shown : {0, 1, 5, 9})
        EXPECT_TRUE(isShown(rows.at(shown))) << shown;
    for (const size_t hidden : {2, 3, 4, 6, 7, 8})
        EXPECT_FALSE(isShown(rows.at(hidden))) << hidden;
    EXPECT_TRUE(isShown(mainWindow->statusLabel));
    EXPECT_FALSE(isShown(mainWindow->infoBarStruct->infoBar));
    EXPECT_FALSE(isShown(mainWindow->onDemandScreenSharingImage));
}

TEST_F(ControlWindow, HearsOfChangesOfItsStructure)
{
    EXPECT_TRUE(gtk_widget_get_events(mainWindow->window) & GDK_STRUCTURE_MASK);
}

TEST_F(ControlWindow, SendFileAsksForFilesToEveryTechnician)
{
    gtk_button_clicked(GTK_BUTTON(mainWindow->sendFile));
    EXPECT_STREQ(g_receiverId, "-1");
    EXPECT_FALSE(findWindow("Send File")); // it opens when the main loop turns
    bool wasOpen = false;
    g_timeout_add(
        20,
        [](gpointer data) -> gboolean {
            GtkWidget *const chooser = findWindow("Send File");
            if (!chooser)
                return G_SOURCE_CONTINUE;
            *static_cast<bool *>(data) = true;
            gtk_dialog_response(GTK_DIALOG(chooser), GTK_RESPONSE_CANCEL);
            return G_SOURCE_REMOVE;
        },
        &wasOpen);
    EXPECT_TRUE(waitUntil([&] { return wasOpen && !findWindow("Send File"); }));
}

TEST_F(ControlWindow, AnEndlessStatusLeavesTheWidthAsItIs)
{
    gtk_label_set_text(GTK_LABEL(mainWindow->statusLabel), std::string(3000, 'W').c_str());
    drainMainLoop();
    int natural = 0;
    gtk_widget_get_preferred_width(mainWindow->window, nullptr, &natural);
    EXPECT_EQ(natural, 350);
}

TEST_F(BuiltWindow, OfTheReachProductHasTheTranslatedTitle)
{
    translate({"Ostrel Reach  "});
    mainWindow->urs = "oreach";
    build();
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(mainWindow->window)), "<Ostrel Reach  >");
    EXPECT_EQ(tooltipOf(mainWindow->window), "<Ostrel Reach  >");
    EXPECT_TRUE(logHas("Window title: Brindle"));
    EXPECT_TRUE(logHas("Settings title as OstrelReach"));
}

TEST_F(BuiltWindow, InAnotherLanguageIsTranslated)
{
    translate({"More", "Participants", "Participant", "Chat", "Annotation", "File Transfer", "Send File", "Pen",
               "Rectangle", "Ellipse", "Eraser", "Clear Screen", "Line"});
    build();
    for (const char *const text : {"<Participants>", "<Chat>", "<Annotation>", "<File Transfer>"})
        EXPECT_NE(findLabel(mainWindow->window, text), nullptr) << text;
    EXPECT_EQ(shownText(mainWindow->sendFile), "<Send File>");
    for (const char *const text : {"<More>", "<Participant>", "<Chat>", "<Annotation>", "<File Transfer>", "<Pen>",
                                   "<Rectangle>", "<Ellipse>", "<Eraser>", "<Clear Screen>", "<Line>"})
        EXPECT_NE(findByTooltip(mainWindow->window, text), nullptr) << text;
}

TEST_F(BuiltWindow, KeepsThreeTextsInEnglish)
{
    static constexpr char notice[] =
        " Multiple technicians are present! Request the\n technician to intiate file transfer";
    translate({"No participant has joined", "Download Chat", notice});
    build();
    EXPECT_EQ(shownText(mainWindow->participants->textBar), "No participant has joined");
    EXPECT_EQ(tooltipOf(mainWindow->chatExpander->rightButton), "Download Chat");
    EXPECT_EQ(shownText(mainWindow->fileTransfer->textBar), notice);
}

TEST_F(BuiltWindow, IsThereWithoutAnyPicture)
{
    for (char **const path :
         {&mainWindow->imageOnline, &mainWindow->imageOffline, &mainWindow->imageRecording,
          &mainWindow->participantsButtonImagePath, &mainWindow->chatButtonImagePath,
          &mainWindow->annotationButtonImagePath, &mainWindow->fileTransferButtonImagePath,
          &mainWindow->settingsButtonImagePath, &mainWindow->logoImagePath, &mainWindow->chatTranscriptImagePath,
          &mainWindow->annotation->brushPath, &mainWindow->annotation->linePath})
        replace_text(*path, home.file("missing.png").c_str());
    build();
    EXPECT_TRUE(isShown(mainWindow->startStopSharingButton));
    EXPECT_TRUE(isShown(mainWindow->chat->button));
}
