// Every built language in the real window and in every dialog: nothing is cut off, nothing grows off a small screen,
// every letter has its picture. Needs fonts for all scripts.

#include "src/Dialog/clipboardDialog.h"
#include "src/Dialog/dialog.h"
#include "src/Dialog/dialogInternal.h"
#include "src/IdleThread/infoBar.h"
#include "src/Utils/Utils.h"
#include "src/controls.h"
#include "src/localizationText.h"
#include "src/support.h"
#include "tests/support/temporaryFolder.h"
#include "tests/ui/Dialog/dialogSession.h"
#include "tests/ui/main/windowParts.h"

#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>

namespace
{

namespace fs = std::filesystem;

constexpr int smallScreenWidthPx = 1024, smallScreenHeightPx = 768;
constexpr int windowWidthPx = 350;
constexpr char largeFont[] = "Sans 11";
constexpr char english[] = "en"; // what the texts are without a language

const std::string localeFolder = std::string(RESOURCE_FOLDER) + "/locale/";
const std::string customer = "Ann Lee";

std::vector<std::string> builtLanguages()
{
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(localeFolder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> allLanguages()
{
    std::vector<std::string> names = builtLanguages();
    names.insert(names.begin(), english);
    return names;
}

bool isRightToLeft(const std::string &language)
{
    return language == "ar" || language == "he";
}

/// Puts a built language in force, as loading it does where the system is set to it.
void speak(const std::string &language)
{
    if (isRightToLeft(language))
        gtk_widget_set_default_direction(GTK_TEXT_DIR_RTL);
    if (language == english)
        return;
    const std::string packed = readWholeFile(localeFolder + language + "/resource.json");
    gsize length = 0;
    g_autofree guchar *text = g_base64_decode(packed.c_str(), &length);
    const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> table(
        cJSON_ParseWithLength(reinterpret_cast<const char *>(text), length), cJSON_Delete);
    ASSERT_TRUE(cJSON_IsArray(table.get())) << language;
    g_hash = g_hash_table_new(g_str_hash, g_str_equal);
    const cJSON *entry = nullptr;
    cJSON_ArrayForEach(entry, table.get())
        g_hash_table_insert(g_hash, g_strdup(cJSON_GetStringValue(cJSON_GetObjectItem(entry, "Key"))),
                            g_strdup(cJSON_GetStringValue(cJSON_GetObjectItem(entry, "Value"))));
    g_isEnglish = false;
}

/// The window looks as it does in the program, with its style sheet.
void wearStyle()
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    ASSERT_TRUE(gtk_css_provider_load_from_path(provider, RESOURCE_FOLDER "/brindle-gtk.css", nullptr));
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

// ---------------------------------------------------------------------------------------------------- measuring

struct Box {
    int x, y, width, height;
};

bool isInside(const Box &inner, const Box &outer)
{
    return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

std::string describeBox(const Box &box)
{
    return std::to_string(box.width) + "x" + std::to_string(box.height) + " at " + std::to_string(box.x) + "," +
           std::to_string(box.y);
}

/// Where the letters of a label stand, and the room that it was given: both in the coordinates of its window.
Box boxOfLetters(GtkLabel *label)
{
    int x = 0, y = 0;
    gtk_label_get_layout_offsets(label, &x, &y);
    PangoRectangle letters = {};
    pango_layout_get_pixel_extents(gtk_label_get_layout(label), nullptr, &letters);
    return {x + letters.x, y + letters.y, letters.width, letters.height};
}

Box boxOfRoom(GtkWidget *widget)
{
    GtkAllocation room = {};
    gtk_widget_get_allocation(widget, &room);
    return {room.x, room.y, room.width, room.height};
}

/// A long text is put into an area that scrolls; a translation never is that long.
bool isCutOff(GtkWidget *label)
{
    GtkWidget *const area = gtk_widget_get_ancestor(label, GTK_TYPE_VIEWPORT);
    return area && gtk_widget_get_allocated_height(label) > gtk_widget_get_allocated_height(area);
}

/// What a label doesn't show of its text; empty when it shows all of it.
std::string lossOf(GtkWidget *label)
{
    PangoLayout *const layout = gtk_label_get_layout(GTK_LABEL(label));
    const Box letters = boxOfLetters(GTK_LABEL(label)), room = boxOfRoom(label);
    std::string loss;
    if (pango_layout_is_ellipsized(layout))
        loss += " shortened";
    if (pango_layout_get_unknown_glyphs_count(layout) != 0)
        loss += " without a font";
    if (!isInside(letters, room))
        loss += " " + describeBox(letters) + " in " + describeBox(room);
    if (isCutOff(label))
        loss += " cut off";
    return loss;
}

/// As `lossOf`, for every label that a window shows.
std::string lossesOf(GtkWidget *window)
{
    if (!gtk_widget_get_mapped(window))
        return "not on the screen";
    std::string losses;
    for (GtkWidget *const widget : allWidgets(window)) {
        if (!GTK_IS_LABEL(widget) || !gtk_widget_get_mapped(widget) || shownText(widget).empty())
            continue;
        if (const std::string loss = lossOf(widget); !loss.empty())
            losses += "\"" + shownText(widget) + "\"" + loss + "\n";
    }
    return losses;
}

void notePaint(GdkFrameClock *, bool *isPainted)
{
    *isPainted = true;
}

/// Waits until a window is drawn: a label knows what it has no room for once it is laid out with its text.
void awaitLayout(GtkWidget *window)
{
    GdkFrameClock *const clock = gtk_widget_get_frame_clock(window);
    ASSERT_TRUE(clock);
    // The first of these frames may be one that was past its layout.
    for (int frame = 0; frame < 2; frame++) {
        bool isPainted = false;
        const gulong handler = connect_signal(clock, "after-paint", notePaint, &isPainted);
        gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
        EXPECT_TRUE(waitUntil([&] { return isPainted; }));
        g_signal_handler_disconnect(clock, handler);
    }
}

void expectOnSmallScreen(GtkWidget *window)
{
    GdkRectangle frame = {};
    gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
    EXPECT_LE(frame.width, smallScreenWidthPx);
    EXPECT_LE(frame.height, smallScreenHeightPx);
}

class EveryLanguage : public DialogSession, public ::testing::WithParamInterface<std::string>
{
protected:
    void SetUp() override
    {
        speak(GetParam());
        wearStyle();
        DialogSession::SetUp();
        replace_text(mainWindow->Techname, customer.c_str());
    }
    void TearDown() override
    {
        DialogSession::TearDown();
        g_isEnglish = true;
    }

    /// The window gets a size in which it shows all of its texts. It may take a moment: notices slide in.
    static void expectNothingLost(GtkWidget *window)
    {
        awaitLayout(window);
        EXPECT_TRUE(waitUntil([&] { return lossesOf(window).empty(); }, [&] { return lossesOf(window); }));
        expectOnSmallScreen(window);
    }
    /// The translation of a text, with the customer's counterpart for the name in it.
    static std::string said(const char *key)
    {
        std::string text = getString(key);
        if (const size_t place = text.find("%s"); place != std::string::npos)
            text.replace(place, 2, customer);
        return text;
    }
    static GtkWidget *findDialog()
    {
        g_autoptr(GList) windows = gtk_window_list_toplevels();
        for (const GList *each = windows; each; each = each->next)
            if (GTK_IS_DIALOG(each->data) && gtk_widget_get_visible(GTK_WIDGET(each->data)))
                return GTK_WIDGET(each->data);
        return nullptr;
    }
    static GtkWidget *awaitAnyDialog()
    {
        GtkWidget *dialog = nullptr;
        EXPECT_TRUE(waitUntil([&] { return (dialog = findDialog()) != nullptr; }));
        return dialog;
    }
    /// Looks at a dialog that says this and closes it.
    static void expectQuestion(const char *key)
    {
        SCOPED_TRACE(key);
        GtkWidget *const dialog = awaitAnyDialog();
        ASSERT_TRUE(dialog);
        keepOpen(dialog);
        EXPECT_TRUE(findLabel(dialog, said(key))) << describe(dialog);
        expectNothingLost(dialog);
        gtk_widget_destroy(dialog);
        drainMainLoop();
    }
    void expectStatus(const char *key)
    {
        SCOPED_TRACE(key);
        EXPECT_EQ(shownText(mainWindow->statusLabel), getString(key));
        expectNothingLost(mainWindow->window);
    }
    void expectNotice(const char *key)
    {
        SCOPED_TRACE(key);
        startInfoBar(mainWindow->infoBarStruct, getString(key));
        ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(mainWindow->infoBarStruct->infoBarLabel); }));
        expectNothingLost(mainWindow->window);
    }
    int windowWidth() const
    {
        int width = 0;
        gtk_widget_get_preferred_width(mainWindow->window, nullptr, &width);
        return width;
    }
};

class EveryTranslation : public EveryLanguage
{
};

/// A line of the agent and the text that is then asked.
struct Prompted {
    const char *words;
    const char *key;
};
const std::vector<Prompted> prompts = {
    {"userConcent TWF5IEk/ client9 camera", "Remember this option"},
    {"runAsService", " Your technician has requested for a root-level \n access of your computer. Would you like to "
                     "accept  \n the request?"},
    {"configureURS ref/7", " Would you like the Technician to configure this \n device for Unattended Access?"},
    {"lockuser", "Lock screen under wayland will terminate the Session.\n Are you sure want to lock the screen?"},
    {"command p7", "%s has requested to control your device.\n Would you like to accept the request?"},
    {"rebootPc", "Technician wants to reboot your computer. Click\n\"Yes\" to reboot."},
    {"acall", "Would you like to accept your technician's voice/ \nvideo chat invite?                                "},
    {"initswap Bob", " Requesting %s to share screen          "},
    {"fileTransferReceive notes.txt", "Change Path"},
};
const char *const notices[] = {
    "Your computer does not support Annotation.",
    "Click the right mouse button to switch to cursor.",
    "Technician has rejected screen sharing request.",
    "Swap screen cannot be initiated as there is more than one technician",
    "You don't have enough privilege to access the file",
};

} // namespace

TEST_P(EveryLanguage, ShowsItsTextsWholeInTheWindow)
{
    expandParticipantsWidget(nullptr, mainWindow);
    expandWidget(nullptr, mainWindow);
    expandFileTransfer(nullptr, mainWindow);
    gtk_widget_show_all(mainWindow->annotation->contentArea);
    addParticipant(customer, "p7");
    for (const char *const title : {"Participants", "Chat", "Annotation", "File Transfer", "Send File"})
        EXPECT_TRUE(findLabel(mainWindow->window, getString(title))) << title;
    expectNothingLost(mainWindow->window);
    EXPECT_EQ(windowWidth(), windowWidthPx);
}

TEST_P(EveryLanguage, ShowsEveryStatusWholeInTheFontOfALargeDesktop)
{
    g_object_set(gtk_settings_get_default(), "gtk-font-name", largeFont, nullptr);
    showSharingButton(mainWindow);
    gtk_widget_show(mainWindow->onDemandScreenSharingImage); // the least room that the text has
    replace_text(mainWindow->Techname, nullptr);
    for (const char *const key : {"Connecting...", "Sharing has been disabled!", "Connecting"}) {
        on_start_clicked(mainWindow->startStopSharingButton, mainWindow);
        expectStatus(key);
    }
    EXPECT_EQ(windowWidth(), windowWidthPx);
}

TEST_P(EveryLanguage, ShowsEveryNoticeWhole)
{
    for (const char *const key : notices)
        expectNotice(key);
    EXPECT_EQ(windowWidth(), windowWidthPx);
}

TEST_P(EveryLanguage, AsksEveryQuestionWhole)
{
    addParticipant(customer, "p7");
    for (const Prompted &question : prompts) {
        prompt(question.words);
        expectQuestion(question.key);
    }
    show_dialog_exit(mainWindow);
    expectQuestion("Do you want to leave this Session?                              ");
    ShowUnSupportedDialog(mainWindow);
    expectQuestion("Admin mode is not supported under wayland");
    show_clipboardPermission_dialog(mainWindow, "copied");
    expectQuestion("Do you want your Technician to access your system Clipboard");
}

TEST_P(EveryLanguage, ShowsTheNoticeOfAnOfferWhole)
{
    prompt("fileTransferReceive notes.txt");
    GtkWidget *const dialog = awaitAnyDialog();
    ASSERT_TRUE(dialog);
    GtkWidget *const bar = findWidget(dialog, [](GtkWidget *widget) { return GTK_IS_INFO_BAR(widget); });
    GtkWidget *const label = findWidget(bar, [](GtkWidget *widget) { return GTK_IS_LABEL(widget); });
    ASSERT_TRUE(label);
    gtk_label_set_text(GTK_LABEL(label), getString(notices[4]));
    gtk_widget_show(bar);
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(label); }));
    expectNothingLost(dialog);
}

TEST_P(EveryTranslation, HasAPictureOfEveryLetter)
{
    const auto expectLetters = [](gpointer, gpointer value, gpointer window) {
        g_autoptr(PangoLayout) layout =
            gtk_widget_create_pango_layout(GTK_WIDGET(window), static_cast<const char *>(value));
        EXPECT_EQ(pango_layout_get_unknown_glyphs_count(layout), 0) << static_cast<const char *>(value);
    };
    ASSERT_TRUE(g_hash);
    g_hash_table_foreach(g_hash, expectLetters, mainWindow->window);
}

TEST_P(EveryLanguage, BeginsOnItsOwnSide)
{
    expectNothingLost(mainWindow->window);
    const int first = boxOfRoom(mainWindow->participants->button).x, last = boxOfRoom(mainWindow->settingsButton).x;
    EXPECT_EQ(first > last, isRightToLeft(GetParam())) << first << " " << last;
    const int icon = boxOfRoom(mainWindow->statusIcon).x, text = boxOfRoom(mainWindow->statusLabel).x;
    EXPECT_EQ(icon > text, isRightToLeft(GetParam())) << icon << " " << text;
}

std::string nameOfLanguage(const ::testing::TestParamInfo<std::string> &parameter)
{
    return parameter.param;
}

INSTANTIATE_TEST_SUITE_P(Built, EveryLanguage, ::testing::ValuesIn(allLanguages()), nameOfLanguage);
INSTANTIATE_TEST_SUITE_P(Built, EveryTranslation, ::testing::ValuesIn(builtLanguages()), nameOfLanguage);
