// Whatever the agent writes into a question: it stays in sight, with its buttons.

#include "src/main.h"
#include "src/support.h"
#include "tests/support/waitUntil.h"
#include "tests/ui/main/everyQuestion.h"
#include "tests/ui/main/textLosses.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

constexpr int widestPx = 640, highestPx = 768;

std::string repeated(const char *text, int count)
{
    std::string all;
    for (int i = 0; i < count; i++)
        all += text;
    return all;
}

/// A text that tries to be wider or higher than the screen.
struct Dress {
    const char *name;
    const char *start, *part;
    int count;
};
constexpr Dress dresses[] = {
    {"NoBreakSpaces", "", "May\u00A0we\u00A0look\u00A0at\u00A0your\u00A0files\u00A0", 20},
    {"NarrowNoBreakSpaces", "", "May\u202Fwe\u202Flook\u202Fat\u202Fyour\u202Ffiles\u202F", 20},
    {"WordJoiners", "", "May \u2060we \u2060look \u2060", 40},
    {"Dashes", "", "— ", 290},
    {"ExclamationMarks", "", "! ", 290},
    {"Tabs", "May we?", "\t", 580},
    {"TabsBetweenWords", "May we?", "\tx", 290},
    {"BreaksForbidden", "<span allow_breaks=\"false\">", "May we look at your files ", 23},
    {"LineBreakReferences", "Join?", "&#10;", 115},
    {"ManyLineBreakReferences", "Join?", "&#10;", 3000},
    {"ChineseLetters", "", "文", 595},
    {"WideLetters", "", "W", 590},
    {"WideWords", "", "WWW ", 148},
    {"BoldWideLetters", "<b>", "W", 450},
    {"LettersOfNoFont", "", "\U00010190", 590},
    {"TheWidestLetter", "", "\uFDFD", 590},
    {"MarksOnOneLetter", "x", "\u0316\u0301", 295},
    {"MarksOnEachLetter", "", "x\u0316\u0301\u0316\u0301", 118},
    {"LineBreaks", "May we?", "\n", 2000},
    {"FewLineBreaks", "May we?", "\n", 14},
    {"OtherLineBreaks", "May we?", "\u2028\u2029\v\f", 3},
    {"PicturesThatHoldTogether", "👩", "\u200D👩", 290},
    {"LettersThatHoldTogether", "", "\u1100", 590},
    {"SignsThatHoldTogether", "", "\u0600", 590},
};

std::string endOf(const std::string &start)
{
    if (start == "<b>")
        return "</b>";
    return start.empty() || start[0] != '<' ? "" : "</span>";
}

std::string textOf(const Dress &dress)
{
    return dress.start + repeated(dress.part, dress.count) + endOf(dress.start);
}

std::string asField(const std::string &text)
{
    g_autofree char *escaped = g_uri_escape_string(text.c_str(), nullptr, FALSE);
    return escaped;
}

/// What of a dialog is too wide, too high or outside; empty when all is in sight.
std::string outOfSight(GtkWidget *dialog)
{
    GdkRectangle frame = {};
    gdk_window_get_frame_extents(gtk_widget_get_window(dialog), &frame);
    std::string found;
    if (frame.width > widestPx || frame.height > highestPx)
        found = std::to_string(frame.width) + "x" + std::to_string(frame.height);
    for (GtkWidget *const each : allWidgets(dialog)) {
        const Box room = boxOfRoom(each);
        if (GTK_IS_BUTTON(each) && gtk_widget_get_mapped(each) &&
            (room.x + room.width > gtk_widget_get_allocated_width(dialog) ||
             room.y + room.height > gtk_widget_get_allocated_height(dialog)))
            found += " " + shownText(each);
    }
    return found;
}

class DressedQuestion : public EveryQuestion, public ::testing::WithParamInterface<Dress>
{
protected:
    void SetUp() override
    {
        wearStyle();
        EveryQuestion::SetUp();
    }
    /// What the agent writes for each of its questions with a text of its own.
    static std::vector<std::string> lines(const std::string &text)
    {
        return {"userConcent " + encoded(text) + " client9 camera",
                "samecon " + encoded(text),
                "launchScript " + text,
                "fileTransferReceive " + asField(text),
                "fileTransferReceive " + text,
                "command p9",
                "initswap Bob"};
    }
    static void expectInSight(GtkWidget *dialog)
    {
        awaitLayout(dialog);
        EXPECT_TRUE(waitUntil([&] { return outOfSight(dialog).empty(); }, [&] { return outOfSight(dialog); }));
    }
};

} // namespace

TEST_P(DressedQuestion, StaysInSightWithItsButtons)
{
    const std::string text = textOf(GetParam());
    addParticipant(text, "p9");
    replace_text(mainWindow->Techname, text.c_str());
    for (const std::string &line : lines(text)) {
        SCOPED_TRACE(line.substr(0, 24));
        prompt(line);
        GtkWidget *const dialog = awaitAnyDialog();
        ASSERT_TRUE(dialog);
        expectInSight(dialog);
        gtk_widget_destroy(dialog);
        drainMainLoop();
    }
}

INSTANTIATE_TEST_SUITE_P(By, DressedQuestion, ::testing::ValuesIn(dresses),
                         [](const auto &parameter) { return std::string(parameter.param.name); });
