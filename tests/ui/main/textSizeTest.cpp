// Large text, doubled text and a desktop without motion: nothing is cut off, grows off the screen or gets stuck.

#include "src/IdleThread/IdleThread.h"
#include "src/controls.h"
#include "src/main.h"
#include "tests/support/waitUntil.h"
#include "tests/ui/main/everyQuestion.h"
#include "tests/ui/main/textLosses.h"

#include <gtest/gtest.h>

namespace
{

/// What a desktop makes of its setting, in the toolkit's unit.
struct TextSize {
    const char *name;
    double factor;
};
constexpr TextSize sizes[] = {{"LargeText", 1.25}, {"Doubled", 2}};
constexpr int usualDpi = 96;

class EveryTextSize : public EveryQuestion, public ::testing::WithParamInterface<TextSize>
{
protected:
    void SetUp() override
    {
        g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", int(usualDpi * GetParam().factor * PANGO_SCALE),
                     nullptr);
        wearStyle();
        EveryQuestion::SetUp();
    }
};

class WithoutMotion : public EveryQuestion
{
protected:
    void SetUp() override
    {
        g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
        wearStyle();
        EveryQuestion::SetUp();
    }
    bool showsNotice() const { return gtk_widget_get_child_visible(notice()) && gtk_widget_get_mapped(notice()); }
    GtkWidget *notice() const { return mainWindow->infoBarStruct->infoBarLabel; }
};

} // namespace

TEST_P(EveryTextSize, IsLargerInTheWindow)
{
    PangoContext *const context = gtk_widget_get_pango_context(mainWindow->statusLabel);
    EXPECT_DOUBLE_EQ(pango_cairo_context_get_resolution(context), usualDpi * GetParam().factor);
}

TEST_P(EveryTextSize, IsShownWholeInTheWindow)
{
    openPanels();
    expectNothingLost(mainWindow->window);
}

TEST_P(EveryTextSize, IsShownWholeInEveryStatusAndNotice)
{
    showSharingButton(mainWindow);
    gtk_widget_show(mainWindow->onDemandScreenSharingImage);
    for (const auto change : {ButtonChangeStart, ButtonChangeStop, noInternet}) {
        change(mainWindow);
        expectNothingLost(mainWindow->window);
    }
}

TEST_P(EveryTextSize, IsShownWholeInEveryQuestion)
{
    eachQuestion([](GtkWidget *dialog, const char *) { expectNothingLost(dialog); });
}

INSTANTIATE_TEST_SUITE_P(Of, EveryTextSize, ::testing::ValuesIn(sizes),
                         [](const auto &parameter) { return std::string(parameter.param.name); });

TEST_F(WithoutMotion, ShowsAndHidesNoticesAtOnce)
{
    setInfoBarText(mainWindow->infoBarStruct, "Held");
    BlockinputInfoBar(mainWindow->infoBarStruct);
    awaitLayout(mainWindow->window);
    EXPECT_TRUE(showsNotice());
    hideInfoBar(mainWindow->infoBarStruct);
    awaitLayout(mainWindow->window);
    EXPECT_FALSE(showsNotice());
}

TEST_F(WithoutMotion, TakesANoticeAwayWhenItsTimeIsOver)
{
    startInfoBar(mainWindow->infoBarStruct, "For a moment");
    ASSERT_TRUE(waitUntil([&] { return showsNotice(); }));
    EXPECT_TRUE(waitUntil([&] { return !showsNotice(); }));
}

TEST_F(WithoutMotion, OpensPanelsAndChangesTheStatus)
{
    openPanels();
    expectNothingLost(mainWindow->window);
    showSharingButton(mainWindow);
    for (const auto change : {ButtonChangeStart, ButtonChangeStop}) {
        change(mainWindow);
        expectNothingLost(mainWindow->window);
    }
}
