// What a window shows of its texts, and how it looks.

#include "tests/ui/main/textLosses.h"

#include "src/support.h"
#include "tests/support/waitUntil.h"
#include "tests/support/widgetSearch.h"

#include <gtest/gtest.h>

namespace
{

constexpr int smallScreenWidthPx = 1024, smallScreenHeightPx = 768;

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

void notePaint(GdkFrameClock *, bool *isPainted)
{
    *isPainted = true;
}

} // namespace

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

void wearStyle()
{
    g_autoptr(GtkCssProvider) provider = gtk_css_provider_new();
    ASSERT_TRUE(gtk_css_provider_load_from_path(provider, RESOURCE_FOLDER "/brindle-gtk.css", nullptr));
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

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

void expectNothingLost(GtkWidget *window)
{
    awaitLayout(window);
    EXPECT_TRUE(waitUntil([&] { return lossesOf(window).empty(); }, [&] { return lossesOf(window); }));
    expectOnSmallScreen(window);
}
