// What every module leans on.

#include "src/support.h"

#include "tests/support/temporaryFolder.h"
#include "tests/support/waitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstring>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

TEST(OwnedTexts, AreReplacedEvenByAPartOfThemselves)
{
    char *field = g_strdup("Ann Lee");
    replace_text(field, field + 4);
    EXPECT_STREQ(field, "Lee");
    replace_text(field, nullptr);
    EXPECT_EQ(field, nullptr);
    replace_text(field, "again");
    EXPECT_STREQ(field, "again");
    g_free(field);
}

TEST(ShownText, IsAlwaysValid)
{
    EXPECT_STREQ(displayable_text("Grüße").get(), "Grüße");
    EXPECT_STREQ(displayable_text("a\xff"
                                  "b")
                     .get(),
                 "a\uFFFDb");
    EXPECT_STREQ(displayable_text("cut \xE6\x97").get(), "cut \uFFFD\uFFFD");
    EXPECT_STREQ(displayable_text(nullptr).get(), "");
}

TEST(SplitLine, MissingFieldsAreEmpty)
{
    const OwnedTexts pieces(g_strsplit("a  c", " ", -1));
    EXPECT_STREQ(piece_or_empty(pieces.get(), 0), "a");
    EXPECT_STREQ(piece_or_empty(pieces.get(), 1), "");
    EXPECT_STREQ(piece_or_empty(pieces.get(), 2), "c");
    EXPECT_STREQ(piece_or_empty(pieces.get(), 3), "");
    EXPECT_STREQ(piece_or_empty(pieces.get(), 4000), "");
}

TEST(EscapedName, IsDecodedOrMissing)
{
    EXPECT_STREQ(unescape_text("John%20Smith").get(), "John Smith");
    EXPECT_STREQ(unescape_text("").get(), "");
    EXPECT_STREQ(unescape_text("%FF").get(), "\xff");
    for (const char *const broken : {"%ZZ", "%00", "%", "a%2"})
        EXPECT_EQ(unescape_text(broken), nullptr) << broken;
}

TEST(PathKind, IsFolderFileOrNeither)
{
    const TemporaryFolder folder;
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(isDirectory(folder.path().c_str()), 1);
    EXPECT_EQ(isDirectory(folder.write("file", "").c_str()), 0);
    EXPECT_EQ(isDirectory(fifo.c_str()), 2);
    EXPECT_EQ(isDirectory(folder.file("missing").c_str()), 2);
    EXPECT_EQ(isDirectory(""), 2);
    EXPECT_EQ(isDirectory(nullptr), 2);
}

TEST(SessionKind, IsWaylandInAnyCase)
{
    for (const char *const type : {"wayland", "Wayland", "WAYLAND"}) {
        setenv("XDG_SESSION_TYPE", type, 1);
        EXPECT_TRUE(isWayland()) << type;
    }
    for (const char *const type : {"x11", "tty", "", "wayland2"}) {
        setenv("XDG_SESSION_TYPE", type, 1);
        EXPECT_FALSE(isWayland()) << type;
    }
    unsetenv("XDG_SESSION_TYPE");
    EXPECT_FALSE(isWayland());
}

TEST(CalendarTime, IsTheLocalOneOfThisMoment)
{
    setenv("TZ", "ZZZ-14", 1);
    tzset();
    struct tm local = {};
    const time_t before = time(nullptr);
    time_data(&local);
    const time_t told = mktime(&local);
    EXPECT_GE(told, before);
    EXPECT_LE(told, time(nullptr));
    EXPECT_STREQ(local.tm_zone, "ZZZ");
}

namespace
{

std::vector<int> ran;

gboolean note(int *number)
{
    ran.push_back(*number);
    return G_SOURCE_CONTINUE;
}

} // namespace

TEST(HandOver, OnTheMainThreadHappensAtOnce)
{
    adopt_main_thread();
    int one = 1;
    run_on_main(note, &one);
    EXPECT_THAT(ran, ::testing::ElementsAre(1));
}

TEST(HandOver, CallsACallbackAsWhatItIs)
{
    // A callback of a record's own type isn't one of an untyped pointer, even where calling it so happens to work.
    static_assert(!std::is_invocable_v<decltype(run_on_main_untyped), GSourceFunc, gpointer>);
    static_assert(!std::is_invocable_v<decltype(schedule_on_main_untyped), GSourceFunc, gpointer>);
    int number = 7;
    const MainCall packed = pack_call<int>(note, &number);
    packed.call(packed.callback, packed.record);
    EXPECT_THAT(ran, ::testing::ElementsAre(7));
}

TEST(HandOver, FromAWorkerHappensOnceAndInOrder)
{
    adopt_main_thread();
    int numbers[] = {1, 2, 3};
    std::thread([&] {
        for (int &number : numbers)
            run_on_main(note, &number);
    }).join();
    EXPECT_TRUE(ran.empty());
    drainMainLoop();
    EXPECT_THAT(ran, ::testing::ElementsAre(1, 2, 3));
}

TEST(HandOver, ReachesAWindowThatIsAlwaysDrawing)
{
    adopt_main_thread();
    // as an animation whose every frame takes longer than it may
    const guint drawing = g_idle_add_full(
        G_PRIORITY_HIGH_IDLE + 20, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
    int numbers[] = {1, 2};
    for (int &number : numbers) {
        std::thread([&] { run_on_main(note, &number); }).join();
        EXPECT_TRUE(waitUntil([&] { return !ran.empty() && ran.back() == number; }));
    }
    g_source_remove(drawing);
}

TEST(EndOfTheProgram, AskedForBeforeTheLoopIsKept)
{
    EXPECT_FALSE(quit_requested());
    request_quit();
    request_quit();
    EXPECT_TRUE(quit_requested());
    run_main_loop();
    drainMainLoop();
}

TEST(EndOfTheProgram, AskedForByAWorkerEndsTheLoop)
{
    adopt_main_thread();
    std::thread worker([] { request_quit(); });
    run_main_loop();
    worker.join();
    EXPECT_TRUE(quit_requested());
    EXPECT_EQ(gtk_main_level(), 0u);
}

TEST(EndOfTheProgram, AskedForTwiceEndsOneLoopOnly)
{
    bool outerWentOn = false;
    g_idle_add(
        [](gpointer) -> gboolean {
            request_quit();
            gtk_main(); // the one that is ended
            request_quit();
            return G_SOURCE_REMOVE;
        },
        nullptr);
    g_timeout_add(
        100,
        [](gpointer wentOn) -> gboolean {
            *static_cast<bool *>(wentOn) = true;
            gtk_main_quit();
            return G_SOURCE_REMOVE;
        },
        &outerWentOn);
    gtk_main();
    EXPECT_TRUE(outerWentOn);
}

TEST(BreakableText, LeavesOrdinaryTextsAsTheyAre)
{
    const std::string words = [] {
        std::string text;
        for (int i = 0; i < 1000; i++)
            text += "word ";
        return text;
    }();
    EXPECT_EQ(breakable_text(words.c_str()).get(), words);
    EXPECT_STREQ(breakable_text(nullptr).get(), "");
}

TEST(BreakableText, LeavesAddressesAndKeysAsTheyAre)
{
    const std::string key(4000, 'x');
    EXPECT_EQ(breakable_text(key.c_str()).get(), key);
    EXPECT_EQ(breakable_text((key + " " + key + "\nä").c_str()).get(), key + " " + key + "\nä");
}

TEST(BreakableText, BreaksEndlessWordsInvisiblyAndLosesNothing)
{
    const std::string word = "see " + std::string(5200, 'x') + " and\ngo";
    const std::string broken = breakable_text(word.c_str()).get();
    std::string shown = broken;
    size_t breaks = 0;
    for (size_t at; (at = shown.find("\u200b")) != std::string::npos; breaks++)
        shown.erase(at, strlen("\u200b"));
    EXPECT_EQ(breaks, 10u);
    EXPECT_EQ(shown, word);
    EXPECT_EQ(breakable_text(broken.c_str()).get(), broken);
}

TEST(DisplayableName, IsCutOnlyWhenItGoesOnAndOn)
{
    const std::string longest(3900, 'W');
    EXPECT_EQ(displayable_name(longest.c_str()).get(), longest);
    EXPECT_EQ(displayable_name((longest + "WW").c_str()).get(), longest + "…");
}
