// The AR window with the libraries that a computer may have. Each test runs once more in a throw-away copy of the file
// system, where it puts its own libraries into the system's folders.

#include "src/Utils/webview.h"
#include "src/main.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace
{

constexpr char insideMark[] = "WEBVIEW_TEST_INSIDE";
constexpr char removeAll[] = "rm -f /usr/lib/*/libwebkit2gtk* /usr/lib/*/libjavascriptcoregtk*; ";
// A library with a web view that shows its address as text.
constexpr char webview40[] = "/usr/lib/libwebkit2gtk-4.0.so.37";
constexpr char webview41[] = "/usr/lib/libwebkit2gtk-4.1.so.0";
constexpr char standIn[] = R"sh(
echo 'void *gtk_label_new(const char *); void gtk_label_set_text(void *, const char *);
void *webkit_web_view_new(void) { return gtk_label_new(VERSION); }
void webkit_web_view_load_uri(void *view, const char *uri) { gtk_label_set_text(view, uri); }
void *webkit_web_view_get_context(void *view) { return view; }
void webkit_web_context_clear_cache(void *context) { (void)context; }' > /standin.c
for v in 4.0.so.37 4.1.so.0; do cc -shared -fPIC -DVERSION="\"$v\"" -o /usr/lib/libwebkit2gtk-$v /standin.c; done
)sh";

class Webview : public WindowSession
{
protected:
    /// Runs the calling test again inside; true there.
    bool isInside(const std::string &setup)
    {
        if (g_getenv(insideMark))
            return true;
        const ::testing::TestInfo *const test = ::testing::UnitTest::GetInstance()->current_test_info();
        const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
        const std::string filter = std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
        const std::string script = SOURCE_FOLDER "/tests/support/sandbox";
        const std::string whole = std::string("export ") + insideMark + "=1; " + removeAll + setup;
        const char *const command[] = {script.c_str(), whole.c_str(), self.c_str(), filter.c_str(), nullptr};
        g_autofree char *said = nullptr;
        int status = -1;
        g_spawn_sync(nullptr, const_cast<char **>(command), nullptr, G_SPAWN_STDERR_TO_DEV_NULL, nullptr, nullptr,
                     &said, nullptr, &status, nullptr);
        EXPECT_EQ(status, 0) << (said ? said : "(could not be started)");
        return false;
    }

    GtkWidget *arWindow() const { return findWindow("Brindle - AR Session"); }
    bool logContains(const std::string &part) const
    {
        const std::vector<std::string> all = logMessages();
        return std::any_of(all.begin(), all.end(),
                           [&](const std::string &line) { return line.find(part) != std::string::npos; });
    }
};

} // namespace

TEST_F(Webview, OpensOneWindowAtATime)
{
    if (!isInside(standIn))
        return;
    ASSERT_EQ(LoadWebview("http://ar/%s?a=1", chatWindow), 0);
    ASSERT_NE(arWindow(), nullptr);
    EXPECT_TRUE(isShown(findLabel(arWindow(), "http://ar/%s?a=1")));
    EXPECT_TRUE(chatWindow->isARSessionInitiated);
    EXPECT_EQ(LoadWebview("http://ar/2", chatWindow), 1);
    EXPECT_TRUE(logHas("AR Session DIALOG is already initiated."));
    EXPECT_EQ(findWindows("Brindle - AR Session").size(), 1u);
    for (const char *const line :
         {" http://ar/%s?a=1", "Cleared webview cache",
          "Found 2 matches for pattern 'libwebkit2gtk*.so*' in '/usr/lib':", " → libwebkit2gtk-4.0.so.37",
          "Using webkit library: /usr/lib/libwebkit2gtk-4.0.so.37"})
        EXPECT_TRUE(logContains(line)) << line;
}

TEST_F(Webview, WindowIsSmallFixedAndOnItsOwn)
{
    if (!isInside(standIn))
        return;
    ASSERT_EQ(LoadWebview("http://ar/1", chatWindow), 0);
    GtkWindow *const window = GTK_WINDOW(arWindow());
    int width = 0, height = 0;
    gtk_window_get_default_size(window, &width, &height);
    EXPECT_EQ(width, 320);
    EXPECT_EQ(height, 219);
    ASSERT_TRUE(waitUntil([&] { return gtk_widget_get_mapped(GTK_WIDGET(window)); }));
    gtk_window_get_size(window, &width, &height);
    EXPECT_EQ(width, 320);
    EXPECT_EQ(height, 219);
    EXPECT_FALSE(gtk_window_get_resizable(window));
    EXPECT_FALSE(gtk_window_get_modal(window));
    EXPECT_TRUE(gtk_window_get_skip_taskbar_hint(window));
    EXPECT_EQ(gtk_window_get_transient_for(window), nullptr);
}

TEST_F(Webview, ClosedWindowOpensAgain)
{
    if (!isInside(standIn))
        return;
    for (int i = 0; i < 3; i++) {
        ASSERT_EQ(LoadWebview("http://ar/1", chatWindow), 0);
        gtk_widget_destroy(arWindow());
        EXPECT_FALSE(chatWindow->isARSessionInitiated);
    }
}

TEST_F(Webview, LoadedLibraryIsKeptWhenAnotherVersionSortsFirst)
{
    if (!isInside(standIn))
        return;
    ASSERT_EQ(std::rename(webview40, "/usr/lib/aside"), 0);
    ASSERT_EQ(LoadWebview("http://ar/1", chatWindow), 0);
    gtk_widget_destroy(arWindow());
    ASSERT_EQ(std::rename("/usr/lib/aside", webview40), 0);
    ASSERT_EQ(LoadWebview("http://ar/1", chatWindow), 0);
    EXPECT_TRUE(logContains(std::string("Using webkit library: ") + webview41));
    EXPECT_FALSE(logContains(std::string("Using webkit library: ") + webview40));
}

TEST_F(Webview, NothingOpensWithoutALibrary)
{
    if (!isInside(""))
        return;
    EXPECT_EQ(LoadWebview("http://ar/1", chatWindow), 1);
    EXPECT_EQ(arWindow(), nullptr);
    EXPECT_FALSE(chatWindow->isARSessionInitiated);
    EXPECT_TRUE(logContains("No WebKit/WebCore library found."));
}

TEST_F(Webview, FallbackLibraryHasNoWebView)
{
    if (!isInside("echo 'int nothing;' > /n.c; cc -shared -fPIC -o /usr/lib64/libjavascriptcoregtk-4.1.so.0 /n.c"))
        return;
    EXPECT_EQ(LoadWebview("http://ar/1", chatWindow), 1);
    EXPECT_EQ(arWindow(), nullptr);
    for (const char *const line : {"Failed to resolve required symbols from WebKit library. Missing:",
                                   " - webkit_web_view_new", " - webkit_web_view_load_uri"})
        EXPECT_TRUE(logContains(line)) << line;
}

TEST_F(Webview, BrokenLibraryIsLogged)
{
    if (!isInside(std::string("echo broken > ") + webview40))
        return;
    EXPECT_EQ(LoadWebview("http://ar/1", chatWindow), 1);
    EXPECT_EQ(arWindow(), nullptr);
    EXPECT_FALSE(chatWindow->isARSessionInitiated);
    EXPECT_TRUE(logContains(std::string("Failed to load WebKit library '") + webview40 + "': "));
}

TEST_F(Webview, LibraryRecordIsClearedWhenItIsClosed)
{
    if (!isInside(standIn))
        return;
    WebKitLib library;
    ASSERT_EQ(webkitlib_init(&library), 1);
    EXPECT_STREQ(library.lib_path, webview40);
    webkitlib_close(&library);
    EXPECT_EQ(library.lib_path, nullptr);
    EXPECT_EQ(library.handle, nullptr);
    EXPECT_EQ(library.webview_new, nullptr);
    EXPECT_EQ(webkitlib_init(nullptr), 0);
}
