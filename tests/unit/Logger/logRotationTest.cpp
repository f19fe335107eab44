// What lies in the log folder after a start.

#include "Logger/logRotation.h"

#include "Logger/logger.h"

#include "tests/support/logFile.h"
#include "tests/support/temporaryFolder.h"
#include "tests/unit/main/rawOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace
{

constexpr size_t limit = 2000000;

class Rotation : public ::testing::Test
{
protected:
    void SetUp() override { inZone("UTC0"); }
    void TearDown() override { log_close(); }

    static void inZone(const char *zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }
    void fill(size_t bytes, char with = 'x') const { folder.write("ui.log", std::string(bytes, with)); }
    void start() const { ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0); }
    /// A start that meets a full log.
    void rotate(char with = 'x') const
    {
        fill(limit, with);
        start();
    }
    std::set<std::string> names() const
    {
        std::set<std::string> all;
        for (const auto &entry : std::filesystem::directory_iterator(folder.path()))
            all.insert(entry.path().filename());
        return all;
    }
    /// What one rotation says on standard output.
    std::string saysOnOutput(const std::string &directory, int *count = nullptr) const
    {
        ::testing::internal::CaptureStdout();
        const int counted = GetRotationCount(directory.c_str(), "ui.log", 7);
        if (count)
            *count = counted;
        return ::testing::internal::GetCapturedStdout();
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(Rotation, OneByteBelowTheLimitStays)
{
    fill(limit - 1);
    start();
    EXPECT_THAT(names(), ::testing::ElementsAre("ui.log"));
    EXPECT_EQ(folder.read("ui.log").size(), limit - 1);
}

TEST_F(Rotation, AFullLogIsMovedAwayUnderTheDateOfTheEpoch)
{
    rotate();
    EXPECT_THAT(names(), ::testing::ElementsAre("ui.log", "ui.log_1970-1-1_1"));
    EXPECT_EQ(folder.read("ui.log_1970-1-1_1").size(), limit);
    EXPECT_EQ(folder.read("ui.log"), "");
}

TEST_F(Rotation, NewLinesGoIntoTheFreshFile)
{
    rotate();
    log_print(levelInfo, 1, "f", "fresh");
    EXPECT_THAT(readLogMessages(folder.file("ui.log")), ::testing::ElementsAre("fresh"));
}

TEST_F(Rotation, WestOfGreenwichTheEpochIsTheLastDayOf1969)
{
    inZone("EST5");
    rotate();
    EXPECT_TRUE(folder.has("ui.log_1969-12-31_1"));
}

TEST_F(Rotation, TheSequenceCountsUpToSeven)
{
    for (int i = 0; i < 7; i++)
        rotate();
    EXPECT_THAT(names(), ::testing::ElementsAre("ui.log", "ui.log_1970-1-1_1", "ui.log_1970-1-1_2", "ui.log_1970-1-1_3",
                                                "ui.log_1970-1-1_4", "ui.log_1970-1-1_5", "ui.log_1970-1-1_6",
                                                "ui.log_1970-1-1_7"));
}

TEST_F(Rotation, FromTheEighthOnOneNameIsUsedAgainAndAgain)
{
    for (int i = 0; i < 7; i++)
        rotate();
    rotate('8');
    EXPECT_EQ(folder.read("ui.log_(null)_0"), std::string(limit, '8'));
    rotate('9');
    EXPECT_EQ(folder.read("ui.log_(null)_0"), std::string(limit, '9'));
    EXPECT_EQ(names().size(), 9u);
}

TEST_F(Rotation, FilesWithOtherNamesAreNotCounted)
{
    const char *const others[] = {"ui.log_x",    "ui.logX_a_b", "other_a_b", "ui.log",
                                  "xui.log_a_b", "ui.log__b",   "UI.LOG_a_b"};
    for (const char *const other : others)
        folder.write(other, "");
    folder.makeFolder("ui.log_a_b");
    fill(limit);
    int count = -1;
    saysOnOutput(folder.path(), &count);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(folder.has("ui.log_1970-1-1_1"));
}

TEST_F(Rotation, EveryNameOfThreePartsIsCounted)
{
    for (const char *const rotated :
         {"ui.log_1970-1-1_1", "ui.log_(null)_0", "ui.log_a_b_c", "_ui.log_a_b", "ui.log__a__b"})
        folder.write(rotated, "");
    fill(limit);
    int count = -1;
    saysOnOutput(folder.path(), &count);
    EXPECT_EQ(count, 5);
    EXPECT_TRUE(folder.has("ui.log_1970-1-1_6"));
}

TEST_F(Rotation, AFileOfTodayNeverGivesItsNameToTheLastRotation)
{
    for (int i = 0; i < 7; i++)
        folder.write("ui.log_2024-3-7_" + std::to_string(i), "");
    rotate();
    EXPECT_TRUE(folder.has("ui.log_(null)_0"));
    EXPECT_EQ(names().size(), 9u);
}

TEST_F(Rotation, AFileFromBeforeTheEpochGivesItsName)
{
    for (int i = 1; i <= 7; i++)
        folder.write("ui.log_d_" + std::to_string(i), "");
    const timespec times[] = {{-90000, 0}, {-90000, 0}};
    const std::string old = folder.file("ui.log_d_4");
    ASSERT_EQ(utimensat(AT_FDCWD, old.c_str(), times, 0), 0);
    rotate('n');
    EXPECT_EQ(folder.read("ui.log_d_4").size(), limit);
    EXPECT_EQ(names().size(), 8u);
}

TEST_F(Rotation, SaysOnStandardOutputWhichFileItMoves)
{
    fill(limit);
    EXPECT_EQ(saysOnOutput(folder.path()), folder.file("ui.log"));
}

TEST_F(Rotation, LeavesNothingInTheBufferForAChildToRepeat)
{
    std::string written;
    {
        const RawOutput output(folder.file("output"));
        GetRotationCount(folder.path().c_str(), "ui.log", 7);
        written = output.written();
    }
    EXPECT_EQ(written, folder.file("ui.log"));
}

TEST_F(Rotation, AnEntryThatCanNotBeExaminedIsReportedAndSkipped)
{
    fill(limit);
    ASSERT_EQ(symlink("nowhere", folder.file("ui.log_a_b").c_str()), 0);
    int count = -1;
    EXPECT_EQ(saysOnOutput(folder.path(), &count),
              "Unable to stat file: " + folder.file("ui.log_a_b") + "\n" + folder.file("ui.log"));
    EXPECT_EQ(count, 0);
}

TEST_F(Rotation, AFolderThatCanNotBeOpenedIsReported)
{
    int count = -1;
    EXPECT_EQ(saysOnOutput(folder.file("missing"), &count), "Error Opening" + folder.file("missing/ui.log"));
    EXPECT_EQ(count, 0);
}

TEST_F(Rotation, AFailedRenameLeavesTheLogAsItIs)
{
    fill(limit);
    // A folder that isn't empty holds the name.
    folder.write("ui.log_1970-1-1_1/file", "");
    start();
    EXPECT_EQ(folder.read("ui.log").size(), limit);
}

TEST_F(Rotation, NamesAreTakenApartByTokens)
{
    struct Case {
        const char *name, *date, *sequence; // no date: not a rotated file
    };
    const Case cases[] = {
        {"ui.log_1970-1-1_1", "1970-1-1", "1"},
        {"ui.log_(null)_0", "(null)", "0"},
        {"ui.log_a_b_c", "a", "b"},
        {"__ui.log__a__b__", "a", "b"},
        {"ui.log_a", nullptr, nullptr},
        {"ui.log_a_", nullptr, nullptr},
        {"ui.log", nullptr, nullptr},
        {"", nullptr, nullptr},
        {"_", nullptr, nullptr},
        {"ui.logX_a_b", nullptr, nullptr},
        {"ui.lo_g_a", nullptr, nullptr},
    };
    for (const Case &each : cases) {
        g_autofree char *date = nullptr;
        g_autofree char *sequence = nullptr;
        EXPECT_EQ(splitRotatedName(each.name, "ui.log", &date, &sequence), each.date != nullptr) << each.name;
        EXPECT_STREQ(date, each.date) << each.name;
        EXPECT_STREQ(sequence, each.sequence) << each.name;
    }
}
