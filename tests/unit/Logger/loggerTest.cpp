// What stands in the log after a line was written, in any circumstance.

#include "Logger/logger.h"

#include "tests/support/logFile.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/waitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{

class Log : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0); }
    void TearDown() override { log_close(); }
    std::string content() const { return folder.read("ui.log"); }
    std::vector<LogLine> lines() const { return readLog(folder.file("ui.log")); }

    TemporaryFolder folder;
};

constexpr char timePattern[] = R"([1-9][0-9]*/[1-9][0-9]?/[1-9][0-9]? [0-9]+:[0-9]+:[0-9]+)";

} // namespace

TEST_F(Log, ALineCarriesTimeLevelFunctionAndMessage)
{
    log_print(levelInfo, 12, "main", "loading %s", "resources");
    EXPECT_THAT(content(),
                ::testing::MatchesRegex(std::string(timePattern) + " <INFO> \\[main\\]: loading resources\n"));
}

TEST_F(Log, ATraceLineEndsInABlankAndHasNoColon)
{
    trace_print(7, "createMainWindow");
    EXPECT_THAT(content(),
                ::testing::MatchesRegex(std::string(timePattern) + " <TRACE_CALL> \\[createMainWindow\\] \n"));
}

TEST_F(Log, EveryLevelButDebugIsWrittenUnderItsName)
{
    for (int level = 0; level < 6; level++)
        log_print(level, 1, "f", "level %d", level);
    std::vector<std::string> written;
    for (const LogLine &line : lines())
        written.push_back(line.level + " " + line.message);
    EXPECT_THAT(written, ::testing::ElementsAre("INFO level 0", "WARN level 2", "ERROR level 3", "TRACE level 4",
                                                "TEST level 5"));
}

TEST_F(Log, ALevelOutsideTheTableIsTheNearestOne)
{
    log_print(-3, 1, "f", "below");
    log_print(99, 1, "f", "above");
    ASSERT_EQ(lines().size(), 2u);
    EXPECT_EQ(lines()[0].level, "INFO");
    EXPECT_EQ(lines()[1].level, "TEST");
}

TEST_F(Log, DebugLinesAreWrittenOnlyWhileSwitchedOn)
{
    setDebugMode(true);
    log_print(levelDebug, 1, "f", "unlinking pipes");
    setDebugMode(false);
    log_print(levelDebug, 1, "f", "never written");
    ASSERT_EQ(lines().size(), 1u);
    EXPECT_EQ(lines()[0].level, "DEBUG");
    EXPECT_EQ(lines()[0].message, "unlinking pipes");
}

TEST_F(Log, OpeningAnewSwitchesDebugLinesOff)
{
    setDebugMode(true);
    ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0);
    log_print(levelDebug, 1, "f", "never written");
    EXPECT_EQ(content(), "");
}

TEST_F(Log, AMessageWithANewlineStandsAsItIsWithOneNewlineMore)
{
    log_print(levelInfo, 1, "f", "Window title: %s\n", "Brindle");
    EXPECT_THAT(content(), ::testing::EndsWith("[f]: Window title: Brindle\n\n"));
}

TEST_F(Log, TextFromOutsideIsNeverAFormat)
{
    log_print(levelInfo, 1, "f", "Unhandled message  %s", "%n%s%d%%");
    EXPECT_THAT(content(), ::testing::EndsWith("Unhandled message  %n%s%d%%\n"));
}

TEST_F(Log, BytesThatAreNoTextAreRepairedNotDropped)
{
    log_print(levelInfo, 1, "f", "name %s!",
              "a\xff\xfe"
              "b");
    EXPECT_THAT(content(), ::testing::EndsWith("name a\uFFFD\uFFFDb!\n"));
    EXPECT_TRUE(g_utf8_validate(content().c_str(), -1, nullptr));
}

TEST_F(Log, CommandsToATerminalAreReplaced)
{
    log_print(levelInfo, 1, "f", "name %s!", "a\x1B[2J\rb\x7F\u009Bc\td");
    EXPECT_THAT(content(), ::testing::EndsWith("name a\uFFFD[2J\uFFFDb\uFFFD\uFFFDc\td!\n"));
}

TEST_F(Log, AMissingTextIsShownAsNull)
{
    const char *const missing = nullptr;
    log_print(levelInfo, 1, "f", "received techincian name %s ", missing ? missing : "(null)");
    EXPECT_THAT(content(), ::testing::EndsWith("received techincian name (null) \n"));
}

TEST_F(Log, ALineOfAMegabyteStaysWhole)
{
    const std::string text(1000000, 'x');
    log_print(levelInfo, 1, "f", "%s", text.c_str());
    EXPECT_THAT(content(), ::testing::EndsWith("[f]: " + text + "\n"));
}

TEST_F(Log, EveryLineIsOnDiskBeforeTheCallReturns)
{
    log_print(levelInfo, 1, "f", "first");
    EXPECT_EQ(lines().size(), 1u);
    trace_print(1, "f");
    EXPECT_EQ(lines().size(), 2u);
}

TEST_F(Log, LinesOfManyThreadsNeverInterleave)
{
    constexpr int threads = 4, each = 250;
    std::vector<std::thread> writers;
    for (int t = 0; t < threads; t++)
        writers.emplace_back([t] {
            for (int i = 0; i < each; i++) {
                log_print(levelInfo, 1, "writer", "%s", std::string(200, char('a' + t)).c_str());
                trace_print(1, "writer");
            }
        });
    for (std::thread &writer : writers)
        writer.join();
    const std::vector<LogLine> all = lines();
    ASSERT_EQ(all.size(), size_t(threads * each * 2));
    for (const LogLine &line : all) {
        EXPECT_EQ(line.function, "writer");
        if (line.level == "INFO") {
            EXPECT_EQ(line.message, std::string(200, line.message.empty() ? '?' : line.message[0]));
        }
    }
}

TEST_F(Log, OpeningAgainGoesOnWhereItWas)
{
    log_print(levelInfo, 1, "f", "before");
    ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0);
    log_print(levelInfo, 1, "f", "after");
    EXPECT_THAT(readLogMessages(folder.file("ui.log")), ::testing::ElementsAre("before", "after"));
}

TEST_F(Log, LinesAfterTheCloseAreDroppedSilently)
{
    log_print(levelInfo, 1, "f", "last");
    EXPECT_EQ(log_close(), 0);
    log_print(levelInfo, 1, "f", "too late");
    trace_print(1, "tooLate");
    EXPECT_THAT(readLogMessages(folder.file("ui.log")), ::testing::ElementsAre("last"));
}

TEST_F(Log, ClosingTwiceIsHarmless)
{
    EXPECT_EQ(log_close(), 0);
    EXPECT_EQ(log_close(), 0);
    EXPECT_EQ(logMessageQueue, nullptr);
}

TEST_F(Log, TheOptionalWriterWritesWhatItIsFed)
{
    g_async_queue_push(logMessageQueue, g_strdup("first"));
    g_async_queue_push(logMessageQueue, g_strdup("second"));
    // The writer waits in this queue to the end of the process.
    const GAsyncQueue *const feed = g_async_queue_ref(logMessageQueue);
    ASSERT_NE(feed, nullptr);
    std::thread(writeToLog).detach();
    EXPECT_TRUE(waitUntil([&] { return content() == "first\nsecond\n"; }, [&] { return content(); }));
}

TEST_F(Log, TheOptionalWriterReturnsAtOnceFromAClosedLog)
{
    log_close();
    writeToLog();
    EXPECT_EQ(content(), "");
}

TEST(LogFolder, AMissingFolderIsNotMadeAndLinesAreDropped)
{
    const TemporaryFolder folder;
    EXPECT_EQ(log_init(folder.file("Logs").c_str(), "ui.log", 2, 7), -1);
    log_print(levelInfo, 1, "f", "nowhere");
    trace_print(1, "f");
    EXPECT_FALSE(folder.has("Logs"));
    EXPECT_EQ(log_close(), 0);
}

TEST(LogFolder, ALogThatCanNotBeOpenedTakesThePlaceOfTheOneBefore)
{
    const TemporaryFolder folder;
    ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0);
    log_print(levelInfo, 1, "f", "before");
    EXPECT_EQ(log_init(folder.file("missing").c_str(), "ui.log", 2, 7), -1);
    log_print(levelInfo, 1, "f", "nowhere");
    trace_print(1, "f");
    EXPECT_THAT(readLogMessages(folder.file("ui.log")), ::testing::ElementsAre("before"));
    EXPECT_EQ(log_close(), 0);
}

TEST(LogFolder, ALogThatCanNotBeOpenedLeavesTheQueueAlone)
{
    const TemporaryFolder folder;
    ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0);
    GAsyncQueue *const queue = logMessageQueue;
    EXPECT_EQ(log_init(folder.file("missing").c_str(), "ui.log", 2, 7), -1);
    EXPECT_EQ(logMessageQueue, queue);
    log_close();
}

TEST(LogFolder, AnOldLogIsAppendedTo)
{
    const TemporaryFolder folder;
    folder.write("ui.log", "old line\n");
    ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0);
    log_print(levelInfo, 1, "f", "new line");
    EXPECT_THAT(readLogMessages(folder.file("ui.log")), ::testing::ElementsAre("old line", "new line"));
    log_close();
}

TEST(LogTime, IsLocalAndUnpadded)
{
    for (const char *const zone : {"UTC0", "EST5", "ZZZ-14"}) {
        setenv("TZ", zone, 1);
        tzset();
        struct tm before = {}, after = {};
        const time_t first = time(nullptr);
        g_autofree char *text = print_time();
        const time_t last = time(nullptr);
        localtime_r(&first, &before);
        localtime_r(&last, &after);
        std::vector<std::string> possible;
        for (const struct tm &t : {before, after}) {
            g_autofree char *expected = g_strdup_printf("%d/%d/%d %d:%d:%d", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                                                        t.tm_hour, t.tm_min, t.tm_sec);
            possible.emplace_back(expected);
        }
        EXPECT_THAT(possible, ::testing::Contains(std::string(text))) << zone;
    }
}
