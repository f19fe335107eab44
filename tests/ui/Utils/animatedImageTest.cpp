// The recording sign: the toolkit's own at scale factor 1, painted frame by frame at 2.

#include "src/Utils/panels.h"

#include "src/main.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gdk/gdkx.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace
{

class Sign : public WindowSession
{
protected:
    GtkWidget *sign() const { return mainWindow->onDemandScreenSharingImage; }
    GtkImageType kind() const { return gtk_image_get_storage_type(GTK_IMAGE(sign())); }
};

class CrispSign : public Sign
{
protected:
    void SetUp() override
    {
        gdk_x11_display_set_window_scale(gdk_display_get_default(), 2);
        WindowSession::SetUp();
    }
    cairo_surface_t *surface() const
    {
        cairo_surface_t *shown = nullptr; // borrowed
        g_object_get(sign(), "surface", &shown, nullptr);
        cairo_surface_destroy(shown);
        return shown;
    }
    std::string pixels() const
    {
        cairo_surface_flush(surface());
        return {reinterpret_cast<const char *>(cairo_image_surface_get_data(surface())),
                size_t(cairo_image_surface_get_stride(surface()) * cairo_image_surface_get_height(surface()))};
    }
    guint timer() const { return GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(sign()), frameTimerKey)); }
    bool hasTimer() const { return timer() && g_main_context_find_source_by_id(nullptr, timer()); }
};

class SignWithoutDoubleSize : public Sign
{
protected:
    void SetUp() override
    {
        gdk_x11_display_set_window_scale(gdk_display_get_default(), 2);
        TestSession::SetUp();
    }
};

} // namespace

TEST_F(Sign, IsLeftToTheToolkitAtItsOwnSize)
{
    EXPECT_EQ(kind(), GTK_IMAGE_ANIMATION);
}

TEST_F(CrispSign, HasAllPixelsOfTheDoubleSizeFileInItsOldSize)
{
    ASSERT_EQ(kind(), GTK_IMAGE_SURFACE);
    EXPECT_EQ(cairo_image_surface_get_width(surface()), 48);
    double across = 0, down = 0;
    cairo_surface_get_device_scale(surface(), &across, &down);
    EXPECT_EQ(across, 2);
    EXPECT_EQ(down, 2);
}

TEST_F(CrispSign, PulsesWhileItIsShown)
{
    gtk_widget_show(sign());
    std::set<std::string> seen;
    EXPECT_TRUE(waitUntil([&] { return seen.insert(pixels()), seen.size() >= 4; }));
}

TEST_F(CrispSign, WakesNobodyWhileItIsHidden)
{
    EXPECT_FALSE(hasTimer());
    gtk_widget_show(sign());
    EXPECT_TRUE(hasTimer());
    gtk_widget_hide(sign());
    EXPECT_FALSE(hasTimer());
    gtk_widget_show(sign());
    EXPECT_TRUE(hasTimer());
    gtk_widget_hide(mainWindow->window);
    EXPECT_FALSE(hasTimer());
    gtk_widget_show(mainWindow->window);
    EXPECT_TRUE(hasTimer());
    const guint last = timer();
    gtk_widget_destroy(mainWindow->window);
    EXPECT_FALSE(g_main_context_find_source_by_id(nullptr, last));
}

TEST_F(CrispSign, StandsStillWithoutAnimations)
{
    g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
    gtk_widget_show(sign());
    EXPECT_TRUE(isShown(sign()));
    EXPECT_FALSE(hasTimer());
}

TEST_F(SignWithoutDoubleSize, IsLeftToTheToolkit)
{
    const std::string file = home.file(".brindle/Brindle/Resource/record@2x.gif");
    ASSERT_TRUE(std::filesystem::remove(file));
    for (const bool broken : {false, true}) {
        if (broken)
            home.write(".brindle/Brindle/Resource/record@2x.gif", "no picture");
        GtkWidget *const image = GTK_WIDGET(g_object_ref_sink(newAnimatedImage(mainWindow->imageRecording)));
        EXPECT_EQ(gtk_image_get_storage_type(GTK_IMAGE(image)), GTK_IMAGE_ANIMATION) << broken;
        g_object_unref(image);
    }
}
