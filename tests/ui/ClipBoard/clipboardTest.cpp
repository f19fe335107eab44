// The watch over the customer's clipboard.

#include "src/ClipBoard/ClipBoard.h"
#include "src/Dialog/clipboardDialog.h"
#include "src/main.h"
#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gtest/gtest.h>

#include <regex>

namespace
{

class Clipboard : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        mainWindow->clipboard = gtk_clipboard_get_default(gdk_display_get_default());
    }

    void copied(const std::string &text) { ClipBoardCallBackFunction(mainWindow->clipboard, text.c_str(), mainWindow); }
    /// What the agent got but for where the dialog is and that it has gone. Texts without a line end run together.
    std::string heard() const { return std::regex_replace(agent->seen(), std::regex("dialogResponse [^\n]*\n"), ""); }
    testing::AssertionResult isHeard(const std::string &text)
    {
        return waitUntil([=, this] { return heard() == text; }, [this] { return agent->seen(); });
    }
};

} // namespace

TEST_F(Clipboard, TextOf6249BytesIsReportedAndAskedAbout)
{
    const std::string text(6249, 'x');
    copied(text);
    EXPECT_TRUE(isHeard("sessionAuditClipboard " + text));
    EXPECT_NE(clipboardPermissionDialog, nullptr);
    EXPECT_EQ(mainWindow->clip_Board_Text, "clipboard " + text);
}

TEST_F(Clipboard, TextOf6250BytesIsRefused)
{
    copied(std::string(6250, 'x'));
    EXPECT_TRUE(logHas("larger than text limit"));
    EXPECT_EQ(clipboardPermissionDialog, nullptr);
    EXPECT_EQ(mainWindow->clip_Board_Text, nullptr);
    copied("end"); // what is heard first would have come before
    EXPECT_TRUE(isHeard("sessionAuditClipboard end"));
}

TEST_F(Clipboard, LimitCountsBytesNotCharacters)
{
    std::string text;
    while (text.size() < 6250)
        text += "\u00e9";
    copied(text);
    EXPECT_TRUE(logHas("larger than text limit"));
}

TEST_F(Clipboard, SameTextIsAuditedOnceAndAskedAboutEachTime)
{
    copied("secret");
    ASSERT_NE(clipboardPermissionDialog, nullptr);
    gtk_widget_destroy(clipboardPermissionDialog);
    copied("secret");
    EXPECT_NE(clipboardPermissionDialog, nullptr);
    copied("other");
    EXPECT_TRUE(logHas("dialog box already running"));
    EXPECT_TRUE(isHeard("sessionAuditClipboard secretclipboard 3\nsessionAuditClipboard other"));
    EXPECT_STREQ(mainWindow->clip_Board_Text, "clipboard other");
}

TEST_F(Clipboard, EveryByteBeyondAsciiIsEscaped)
{
    copied("a\u00e9 /%\n");
    EXPECT_TRUE(isHeard("sessionAuditClipboard a%C3%A9%20%2F%25%0A"));
    EXPECT_STREQ(mainWindow->clip_Text, "a%C3%A9%20%2F%25%0A");
}

TEST_F(Clipboard, ForbiddenClipboardIsNeitherReportedNorAsked)
{
    mainWindow->isClipBoardAllowed = false;
    copied("secret");
    EXPECT_TRUE(logHas("clipboard is not allowed"));
    EXPECT_EQ(clipboardPermissionDialog, nullptr);
    EXPECT_EQ(mainWindow->clip_Text, nullptr);
}

TEST_F(Clipboard, NoTextAndEmptyTextAskNothing)
{
    ClipBoardCallBackFunction(mainWindow->clipboard, nullptr, mainWindow);
    EXPECT_FALSE(logHas("ui clipboard: 0"));
    copied("");
    EXPECT_TRUE(logHas("ui clipboard: 0"));
    EXPECT_EQ(clipboardPermissionDialog, nullptr);
    EXPECT_EQ(heard(), "");
}

TEST_F(Clipboard, TextOfTheAgentItselfIsReportedButNotAskedAbout)
{
    replace_text(mainWindow->clip_agent_text, "from the agent");
    copied("from the agent");
    EXPECT_TRUE(isHeard("sessionAuditClipboard from%20the%20agent"));
    EXPECT_EQ(clipboardPermissionDialog, nullptr);
}

TEST_F(Clipboard, WatchIsArmedOnlyWhenCalled)
{
    gtk_clipboard_set_text(mainWindow->clipboard, "before", -1);
    drainMainLoop();
    EXPECT_EQ(clipboardPermissionDialog, nullptr);
    EXPECT_EQ(CallClipboard(mainWindow), 0);
    EXPECT_STREQ(mainWindow->clip_Text, "");
    gtk_clipboard_set_text(mainWindow->clipboard, "after", -1);
    EXPECT_TRUE(isHeard("sessionAuditClipboard after"));
    EXPECT_NE(clipboardPermissionDialog, nullptr);
}
