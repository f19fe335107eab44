// The helpers of the tests themselves: what they promise, and that they fail where they should.

#include "tests/support/glibWarnings.h"
#include "tests/support/logFile.h"
#include "tests/support/pipePeer.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/waitUntil.h"

#include <gmock/gmock.h>

#include <glib.h>

#include <filesystem>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(TestSupport, FolderGoesWithItsTest)
{
    std::string path;
    {
        const TemporaryFolder folder;
        path = folder.path();
        folder.write("deep/er/file", "content");
        EXPECT_EQ(folder.read("deep/er/file"), "content");
        EXPECT_TRUE(folder.has("deep"));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TestSupport, WaitingTurnsTheMainLoopUntilItHolds)
{
    bool done = false;
    g_timeout_add(
        20, [](gpointer flag) { return *static_cast<bool *>(flag) = true, G_SOURCE_REMOVE; }, &done);
    EXPECT_TRUE(waitUntil([&] { return done; }));
}

TEST(TestSupport, WaitingInVainSaysWhatIsSeen)
{
    const auto result = waitUntil([] { return false; }, [] { return "three lines"; }, 30);
    EXPECT_FALSE(result);
    EXPECT_THAT(result.message(), HasSubstr("three lines"));
}

TEST(TestSupport, ReaderKeepsTextsAndTheirOrder)
{
    const TemporaryFolder folder;
    const std::string fifo = makeFifo(folder.file("fifo"));
    const PipeReader reader(fifo);
    ASSERT_TRUE(sendText(fifo, "one\ntwo\n"));
    ASSERT_TRUE(waitUntil([&] { return reader.texts().size() == 1; }, [&] { return reader.seen(); }));
    ASSERT_TRUE(sendText(fifo, std::string(200000, 'x') + "\n"));
    ASSERT_TRUE(waitUntil([&] { return reader.lines().size() == 3; }));
    EXPECT_EQ(reader.texts().front(), "one\ntwo\n");
    EXPECT_EQ(reader.lines().back().size(), 200000U);
}

TEST(TestSupport, ReaderLosesNothingOfAFlood)
{
    const TemporaryFolder folder;
    const std::string fifo = makeFifo(folder.file("fifo"));
    const PipeReader reader(fifo);
    constexpr size_t count = 5000;
    std::string expected;
    for (size_t i = 0; i < count; i++) {
        const std::string line = std::to_string(i) + "\n";
        expected += line;
        ASSERT_TRUE(sendText(fifo, line));
    }
    EXPECT_TRUE(waitUntil([&] { return reader.lines().size() == count; },
                          [&] { return std::to_string(reader.lines().size()); }));
    EXPECT_EQ(reader.seen(), expected);
}

TEST(TestSupport, SendingToNobodyFailsAtTheDeadline)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(sendText(makeFifo(folder.file("fifo")), "text\n", 30));
    EXPECT_FALSE(sendText(folder.file("missing"), "text\n", 30));
}

TEST(TestSupport, LogIsTakenApart)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("ui.log", "2024/3/7 9:5:2 <INFO> [main]: a: b \n"
                                                    "2024/3/7 9:5:2 <TRACE_CALL> [main] \nrest\n");
    const std::vector<LogLine> lines = readLog(path);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].level + lines[0].function + lines[0].message, "INFOmaina: b ");
    EXPECT_EQ(lines[1].level + lines[1].function, "TRACE_CALLmain");
    EXPECT_THAT(readLogMessages(path), ElementsAre("a: b ", "rest"));
    EXPECT_EQ(countLogMessages(path, "a: b"), 0);
}

TEST(TestSupport, ExpectedWarningPasses)
{
    expectGlibWarning("this one");
    g_warning("exactly this one");
}
