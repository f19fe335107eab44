// Scaled pictures and margins.

#include "src/Utils/panels.h"

#include "src/Utils/Utils.h"
#include "tests/support/testSession.h"
#include "tests/ui/main/windowParts.h"

#include <gtest/gtest.h>

namespace
{

class Picture : public TestSession
{
protected:
    /// A file of this size.
    std::string write(int width, int height) const
    {
        g_autoptr(GdkPixbuf) picture = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, width, height);
        gdk_pixbuf_fill(picture, 0xff0000ff);
        const std::string path = home.file("picture.png");
        EXPECT_TRUE(gdk_pixbuf_save(picture, path.c_str(), "png", nullptr, nullptr));
        return path;
    }
    /// Keeps the image for the test.
    GtkWidget *held(GtkWidget *image)
    {
        g_object_ref_sink(image);
        m_held.push_back(image);
        return image;
    }
    void TearDown() override
    {
        for (GtkWidget *const widget : m_held)
            g_object_unref(widget);
        TestSession::TearDown();
    }

private:
    std::vector<GtkWidget *> m_held;
};

class Margins : public Picture
{
protected:
    GtkWidget *newLabel() { return held(gtk_label_new("")); }
};

} // namespace

TEST_F(Picture, IsSquareWhateverTheFile)
{
    for (const auto &[width, height] : {std::pair(12, 12), {100, 10}, {3, 200}, {1, 1}}) {
        const std::string file = write(width, height);
        EXPECT_EQ(pictureSize(held(resizeImages(file.c_str(), 12, 0))), "12x12") << width << "x" << height;
        EXPECT_EQ(pictureSize(held(resizeImages(file.c_str(), 20, 0))), "20x20") << width << "x" << height;
    }
}

TEST_F(Picture, HasItsMarginOnAllSides)
{
    const std::string file = write(5, 5);
    EXPECT_EQ(marginsOf(held(resizeImages(file.c_str(), 12, 0))), "0 0 0 0");
    EXPECT_EQ(marginsOf(held(resizeImages(file.c_str(), 12, 2))), "2 2 2 2");
}

TEST_F(Picture, ThatCanNotBeReadLeavesItsRoomEmpty)
{
    const std::string broken = home.write("broken.png", "no picture");
    for (const char *const path :
         {"/missing.png", broken.c_str(), home.path().c_str(), "", static_cast<const char *>(nullptr)}) {
        GtkWidget *const image = held(resizeImages(path, 12, 2));
        ASSERT_TRUE(GTK_IS_IMAGE(image));
        EXPECT_EQ(gtk_image_get_pixbuf(GTK_IMAGE(image)), nullptr);
        EXPECT_EQ(marginsOf(image), "2 2 2 2");
        int width = 0, height = 0;
        gtk_widget_get_size_request(image, &width, &height);
        EXPECT_EQ(width, 12);
        EXPECT_EQ(height, 12);
    }
}

TEST_F(Margins, NegativeOnesAreLeftAlone)
{
    struct Case {
        int start, end, top, bottom;
        const char *margins;
    };
    const Case cases[] = {
        {4, -1, -1, -1, "4 9 9 9"}, {-1, 5, -1, -1, "9 5 9 9"},    {-1, -1, 6, -1, "9 9 6 9"},
        {-1, -1, -1, 7, "9 9 9 7"}, {-1, -1, -1, -1, "9 9 9 9"},   {0, 0, 0, 0, "0 0 0 0"},
        {1, 2, 3, 4, "1 2 3 4"},    {-5, -100, -1, -9, "9 9 9 9"},
    };
    for (const Case &each : cases) {
        GtkWidget *const label = newLabel();
        g_object_set(label, "margin", 9, nullptr);
        set_widget_margins(label, each.start, each.end, each.top, each.bottom);
        EXPECT_EQ(marginsOf(label), each.margins);
    }
}

TEST_F(Margins, LeaveNoComplaintInTheLog)
{
    const size_t before = logMessages().size();
    set_widget_margins(newLabel(), 1, 2, 3, 4);
    EXPECT_EQ(logMessages().size(), before);
}

TEST_F(Margins, OfTheStatusRowAreSetTogether)
{
    mainWindow->statusLabel = newLabel();
    mainWindow->statusIcon = newLabel();
    mainWindow->startStopSharingButton = newLabel();
    EXPECT_EQ(setDepricatedApis(mainWindow), 0);
    EXPECT_EQ(marginsOf(mainWindow->statusLabel), "3 0 0 0");
    EXPECT_EQ(marginsOf(mainWindow->statusIcon), "3 0 0 0");
    EXPECT_EQ(marginsOf(mainWindow->startStopSharingButton), "0 3 0 0");
}

TEST_F(Margins, OnlyAPressOfTheFirstButtonDragsAWindow)
{
    GtkWidget *const label = newLabel();
    for (const auto &[type, button] :
         {std::pair(GDK_BUTTON_PRESS, 3u), {GDK_2BUTTON_PRESS, 1u}, {GDK_BUTTON_RELEASE, 1u}}) {
        GdkEventButton event = {};
        event.type = type;
        event.button = button;
        EXPECT_TRUE(on_button_press(label, &event, label));
    }
}
