// Every built language in the real window and in every dialog: nothing is cut off, nothing grows off a small screen,
// every letter has its picture. Needs fonts for all scripts.

#include "src/Dialog/dialogInternal.h"
#include "src/IdleThread/infoBar.h"
#include "src/Utils/Utils.h"
#include "src/controls.h"
#include "src/localizationText.h"
#include "src/support.h"
#include "tests/support/temporaryFolder.h"
#include "tests/ui/main/everyQuestion.h"
#include "tests/ui/main/textLosses.h"
#include "tests/ui/main/windowParts.h"

#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>

namespace
{

namespace fs = std::filesystem;

constexpr int windowWidthPx = 350;
constexpr char largeFont[] = "Sans 11";
constexpr char english[] = "en"; // what the texts are without a language

const std::string localeFolder = std::string(RESOURCE_FOLDER) + "/locale/";

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

class EveryLanguage : public EveryQuestion, public ::testing::WithParamInterface<std::string>
{
protected:
    void SetUp() override
    {
        speak(GetParam());
        wearStyle();
        EveryQuestion::SetUp();
    }
    void TearDown() override
    {
        EveryQuestion::TearDown();
        g_isEnglish = true;
    }

    /// The translation of a text, with the customer's counterpart for the name in it.
    static std::string said(const char *key)
    {
        std::string text = getString(key);
        if (const size_t place = text.find("%s"); place != std::string::npos)
            text.replace(place, 2, customer);
        return text;
    }
    /// Looks at a dialog that says this.
    static void expectQuestion(GtkWidget *dialog, const char *key)
    {
        EXPECT_TRUE(!key || findLabel(dialog, said(key))) << describe(dialog);
        expectNothingLost(dialog);
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
    openPanels();
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
    eachQuestion(expectQuestion);
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
