// The rows of the participants panel, from the mailbox to the line that a menu sends.

#include "src/IdleThread/participants.h"

#include "src/Protocol/messageHandler.h"
#include "src/Utils/panels.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"
#include "tests/ui/main/windowParts.h"
#include "tests/unit/main/rawOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using ::testing::ElementsAre;

class Participants : public WindowSession
{
protected:
    using WindowSession::WindowSession;

    void SetUp() override
    {
        WindowSession::SetUp();
        newMessages();
    }
    void fillMailbox(const char *name, const char *id, bool blockButton)
    {
        Expander *const mailbox = mainWindow->participants;
        replace_text(mailbox->Data, name);
        replace_text(mailbox->identifier, id);
        mailbox->blockButton = blockButton;
    }
    GtkWidget *add(const char *name, const char *id, bool blockButton = true)
    {
        fillMailbox(name, id, blockButton);
        EXPECT_FALSE(AddParticipants(mainWindow));
        return row(id);
    }
    void remove(const char *id)
    {
        fillMailbox("any", id, false);
        EXPECT_FALSE(DeleteParticipants(mainWindow));
    }
    void modify(const char *id, bool blockButton)
    {
        replace_text(mainWindow->participants->identifier, id);
        mainWindow->participants->blockButton = blockButton;
        EXPECT_FALSE(ModifyParticipants(mainWindow));
    }
    GtkWidget *content() const { return mainWindow->participantsExpander->expanderContent; }
    GtkWidget *notice() const { return mainWindow->participants->textBar; }
    /// The row of an ID, null when there is none.
    GtkWidget *row(const char *id) const
    {
        for (GtkWidget *const child : childrenOf(content()))
            if (child != notice() && gtk_widget_get_name(child) == std::string(id))
                return child;
        return nullptr;
    }
    static GtkWidget *menuOf(GtkWidget *row)
    {
        GtkWidget *const button = findByName(row, "settingsButton");
        return button ? GTK_WIDGET(g_object_get_data(G_OBJECT(button), "settingsMenu")) : nullptr;
    }
    static GtkWidget *revokeItem(GtkWidget *row) { return findMenuItem(menuOf(row), "Revoke Control"); }
    /// Whether the row shows its participant as one whose control can be taken back.
    static bool isInControl(GtkWidget *row)
    {
        const bool sensitive = gtk_widget_get_sensitive(revokeItem(row));
        EXPECT_EQ(gtk_widget_get_opacity(findByName(row, "cursorImage")), sensitive ? 1.0 : 0.0);
        return sensitive;
    }
};

class PlainParticipants : public Participants, public ::testing::WithParamInterface<const char *>
{
protected:
    void SetUp() override
    {
        Participants::SetUp();
        mainWindow->urs = GetParam();
    }
};

} // namespace

TEST_F(Participants, ARowHasCursorNameAndButton)
{
    GtkWidget *const ann = add("Ann Lee", "42");
    ASSERT_NE(ann, nullptr);
    const std::vector<GtkWidget *> parts = childrenOf(ann);
    ASSERT_EQ(parts.size(), 3u);
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(ann)), GTK_ORIENTATION_HORIZONTAL);
    EXPECT_STREQ(gtk_widget_get_name(parts[0]), "cursorImage");
    EXPECT_EQ(pictureSize(parts[0]), "12x12");
    EXPECT_EQ(marginsOf(parts[0]), "0 0 0 0");
    EXPECT_EQ(packingOf(parts[0]), "start fill 2");
    EXPECT_EQ(shownText(parts[1]), "Ann Lee");
    EXPECT_STREQ(gtk_widget_get_name(parts[2]), "settingsButton");
    EXPECT_EQ(pictureSize(gtk_button_get_image(GTK_BUTTON(parts[2]))), "12x12");
    EXPECT_EQ(gtk_button_get_relief(GTK_BUTTON(parts[2])), GTK_RELIEF_NONE);
    EXPECT_THAT(packingOf(parts[2]), ::testing::StartsWith("end"));
    EXPECT_NE(accessibleName(parts[2]), "");
}

TEST_F(Participants, ARowsMenuHasTwoEntries)
{
    GtkWidget *const menu = menuOf(add("Ann", "42"));
    ASSERT_NE(menu, nullptr);
    const std::vector<GtkWidget *> items = childrenOf(menu);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(shownText(items[0]), "Swap Screen");
    EXPECT_STREQ(gtk_widget_get_name(items[0]), "swapScreen");
    EXPECT_EQ(shownText(items[1]), "Revoke Control");
    EXPECT_STREQ(gtk_widget_get_name(items[1]), "blockAccess");
}

TEST_F(Participants, MenuEntriesTellTheAgentWhoIsMeant)
{
    GtkWidget *const ann = add("Ann", "42");
    GtkWidget *const bob = add("Bob", "Bob%s%20x");
    gtk_menu_item_activate(GTK_MENU_ITEM(findMenuItem(menuOf(ann), "Swap Screen")));
    gtk_menu_item_activate(GTK_MENU_ITEM(revokeItem(ann)));
    gtk_menu_item_activate(GTK_MENU_ITEM(findMenuItem(menuOf(bob), "Swap Screen")));
    gtk_menu_item_activate(GTK_MENU_ITEM(revokeItem(bob)));
    EXPECT_THAT(sentLines(4),
                ElementsAre("buttonClicked swapScreen 42", "buttonClicked revokeControl 42",
                            "buttonClicked swapScreen Bob%s%20x", "buttonClicked revokeControl Bob%s%20x"));
}

TEST_F(Participants, ANewRowStandsAboveTheOlderAndBelowTheNotice)
{
    expandParticipantsWidget(nullptr, mainWindow);
    GtkWidget *const a = add("A", "a");
    GtkWidget *const b = add("B", "b");
    EXPECT_EQ(packingOf(a), "end expand fill 0");
    const auto top = [](GtkWidget *widget) {
        GtkAllocation place = {};
        gtk_widget_get_allocation(widget, &place);
        return place.y;
    };
    EXPECT_TRUE(waitUntil([&] { return top(b) > 1 && top(b) < top(a); }));
    EXPECT_EQ(mainWindow->noParticipants, 2);
    EXPECT_FALSE(isShown(notice()));
}

TEST_F(Participants, AreCountedAndReported)
{
    add("A", "a");
    EXPECT_THAT(newMessages(), ElementsAre("adding settings button", "no of participants :1 ", "participants present"));
    add("B", "b");
    EXPECT_EQ(mainWindow->noParticipants, 2);
    remove("a");
    remove("b");
    EXPECT_EQ(mainWindow->noParticipants, 0);
    EXPECT_EQ(newMessages().back(), "no participants present");
}

TEST_F(Participants, TheFlagWordHasOppositeSensesAtAddingAndModifying)
{
    EXPECT_TRUE(isInControl(add("A", "a", true)));
    EXPECT_FALSE(isInControl(add("B", "b", false)));
    modify("a", true);
    EXPECT_FALSE(isInControl(row("a")));
    modify("a", false);
    EXPECT_TRUE(isInControl(row("a")));
}

TEST_F(Participants, AnEntryThatCanNotBeUsedIsGray)
{
    GtkWidget *const item = revokeItem(add("A", "a", false));
    GtkStyleContext *const style = gtk_widget_get_style_context(gtk_bin_get_child(GTK_BIN(item)));
    GdkRGBA color = {}, gray = {}, black = {};
    gdk_rgba_parse(&gray, "gray");
    gdk_rgba_parse(&black, "black");
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &color);
    EXPECT_TRUE(gdk_rgba_equal(&color, &gray));
    modify("a", false);
    gtk_style_context_get_color(style, gtk_style_context_get_state(style), &color);
    EXPECT_TRUE(gdk_rgba_equal(&color, &black));
}

TEST_F(Participants, AFirstOneOpensTheHeaderButNotAHiddenPanel)
{
    add("A", "a");
    EXPECT_TRUE(mainWindow->participantsExpander->isVisible);
    EXPECT_THAT(shownIcon(mainWindow->participantsExpander->arrowImage), ::testing::StartsWith("pan-down-symbolic"));
    EXPECT_FALSE(isShown(mainWindow->participants->contentArea));
    EXPECT_EQ(mainWindow->participants->buttonState, 2);
}

TEST_F(Participants, ANewOneOpensACollapsedHeader)
{
    expandParticipantsWidget(nullptr, mainWindow);
    clickHeader(mainWindow->participants->contentArea);
    GtkWidget *const ann = add("A", "a");
    EXPECT_TRUE(isShown(ann));
    EXPECT_TRUE(mainWindow->participantsExpander->isVisible);
    EXPECT_FALSE(isShown(notice()));
}

TEST_F(Participants, AMailboxIsEmptiedByAddingAndDeletingOnly)
{
    add("A", "a");
    EXPECT_EQ(mainWindow->participants->Data, nullptr);
    EXPECT_EQ(mainWindow->participants->identifier, nullptr);
    modify("a", true);
    EXPECT_STREQ(mainWindow->participants->identifier, "a");
    remove("unknown");
    EXPECT_EQ(mainWindow->participants->Data, nullptr);
    EXPECT_EQ(mainWindow->participants->identifier, nullptr);
}

TEST_F(Participants, AreDeletedInAnyLetterCaseAndModifiedInTheirOwn)
{
    add("A", "AbC");
    newMessages();
    modify("aBc", true);
    EXPECT_THAT(newMessages(), ElementsAre("Participant box not found for ID: aBc", ""));
    remove("aBc");
    EXPECT_EQ(row("AbC"), nullptr);
    EXPECT_EQ(mainWindow->noParticipants, 0);
}

TEST_F(Participants, DeletingIsLoggedStepByStep)
{
    add("A", "a");
    newMessages();
    remove("a");
    EXPECT_THAT(newMessages(), ElementsAre("iterating list", "iterating list", "found container", "clearing data",
                                           "data cleared", "no of participants :0 ", "no participants present"));
}

TEST_F(Participants, DeletingAnUnknownOneChangesNothing)
{
    add("A", "a");
    newMessages();
    remove("b");
    EXPECT_NE(row("a"), nullptr);
    EXPECT_EQ(mainWindow->noParticipants, 1);
    EXPECT_THAT(newMessages(), ElementsAre("iterating list", "iterating list", "clearing data", "data cleared",
                                           "no of participants :1 ", "participants present"));
}

TEST_F(Participants, OfTwoWithOneIdOnlyOneGoes)
{
    add("A", "a");
    add("A again", "a");
    remove("a");
    EXPECT_NE(row("a"), nullptr);
    EXPECT_EQ(mainWindow->noParticipants, 1);
}

TEST_F(Participants, ModifyingIsLoggedStepByStep)
{
    add("A", "a");
    newMessages();
    modify("a", true);
    EXPECT_THAT(newMessages(), ElementsAre("participant box found", "found both widgets"));
}

TEST_F(Participants, AnEmptyMailboxOnlyRefreshesTheNotice)
{
    add("A", "a");
    newMessages();
    AddParticipants(mainWindow);
    DeleteParticipants(mainWindow);
    EXPECT_EQ(mainWindow->noParticipants, 1);
    EXPECT_EQ(childrenOf(content()).size(), 2u);
    EXPECT_THAT(newMessages(), ElementsAre("no of participants :1 ", "participants present", "no of participants :1 ",
                                           "participants present"));
    g_clear_pointer(&mainWindow->participants->identifier, g_free);
    ModifyParticipants(mainWindow);
    EXPECT_EQ(mainWindow->noParticipants, 1);
}

TEST_F(Participants, AnIdThatIsATypesNameHarmsNoWidget)
{
    for (const char *const id : {"GtkLabel", "gtklabel", "GtkBox"}) {
        remove(id);
        EXPECT_EQ(gtk_widget_get_parent(notice()), content()) << id;
        modify(id, true);
    }
    EXPECT_EQ(mainWindow->noParticipants, 0);
    add("A", "GtkLabel");
    remove("gtklabel");
    EXPECT_EQ(mainWindow->noParticipants, 0);
    EXPECT_EQ(gtk_widget_get_parent(notice()), content());
}

TEST_F(Participants, ANameIsNeverMarkupAndAlwaysText)
{
    for (const char *const name : {"<b>A & B</b>", "_underscore", "\xff\xfe", "%s%n", ""}) {
        GtkWidget *const added = add(name, "id");
        EXPECT_EQ(shownText(childrenOf(added).at(1)), displayable_text(name).get());
        remove("id");
    }
}

TEST_F(Participants, AnEndlessNameLeavesTheWidthAsItIs)
{
    expandParticipantsWidget(nullptr, mainWindow);
    add(std::string(3000, 'W').c_str(), "a");
    drainMainLoop();
    int natural = 0;
    gtk_widget_get_preferred_width(mainWindow->window, nullptr, &natural);
    EXPECT_EQ(natural, 350);
}

TEST_F(Participants, ARowThatGoesTakesItsOpenMenuAlong)
{
    GtkWidget *menu = menuOf(add("A", "a"));
    expandParticipantsWidget(nullptr, mainWindow);
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(row("a")); }));
    gtk_button_clicked(GTK_BUTTON(findByName(row("a"), "settingsButton")));
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(menu); }));
    g_object_add_weak_pointer(G_OBJECT(menu), reinterpret_cast<gpointer *>(&menu));
    remove("a");
    drainMainLoop();
    EXPECT_TRUE(waitUntil([&] { return menu == nullptr; }));
}

TEST_F(Participants, WithoutSwapScreenHaveNoButton)
{
    mainWindow->isSwapScreenAllowed = false;
    GtkWidget *const ann = add("Ann", "42");
    EXPECT_EQ(childrenOf(ann).size(), 2u);
    EXPECT_THAT(newMessages(), ElementsAre("no of participants :1 ", "participants present"));
}

TEST_F(Participants, RowsThatAreThereKeepTheirButton)
{
    GtkWidget *const ann = add("Ann", "42");
    mainWindow->isSwapScreenAllowed = false;
    modify("42", true);
    EXPECT_NE(menuOf(ann), nullptr);
    EXPECT_FALSE(isInControl(ann));
}

TEST_P(PlainParticipants, HaveNoButtonAndAreReportedOnStandardOutput)
{
    GtkWidget *const ann = add("Ann", "42");
    EXPECT_EQ(childrenOf(ann).size(), 2u);
    newMessages();
    std::string written;
    {
        const RawOutput output(home.file("output"));
        modify("42", true);
        written = output.written();
    }
    EXPECT_EQ(written, "Could not find cursorImage or blockAccess for participant: 42\n");
    EXPECT_THAT(newMessages(), ElementsAre("participant box found"));
}

INSTANTIATE_TEST_SUITE_P(Sessions, PlainParticipants, ::testing::Values("Urs", "urs", "URS"));

TEST_F(Participants, AButtonWithoutAMenuIsLogged)
{
    GtkWidget *const ann = add("Ann", "42");
    g_object_set_data(G_OBJECT(findByName(ann, "settingsButton")), "settingsMenu", nullptr);
    newMessages();
    modify("42", true);
    EXPECT_THAT(newMessages(), ElementsAre("participant box found", "No menu associated with the settings button", ""));
}

TEST_F(Participants, ARowsNameIsFoundInAnyLetterCase)
{
    add("Ann Lee", "AbC");
    EXPECT_STREQ(findParticipantName(mainWindow, "aBC"), "Ann Lee");
    EXPECT_EQ(findParticipantName(mainWindow, "x"), nullptr);
}
