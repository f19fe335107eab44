// Where each kind of session has its things. The system folders are the test's own.

#include "src/Utils/installLayout.h"

#include "Logger/logger.h"
#include "src/Utils/pipeTransport.h"
#include "src/sessionState.h"
#include "tests/support/lastingRecord.h"
#include "tests/support/logFile.h"
#include "tests/support/temporaryFolder.h"
#include "tests/unit/main/privateSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace
{

/// A session as the command line asks for it, and what follows. "HOME" stands for the test's own folder.
struct Layout {
    const char *sessionType, *home;
    const char *logs, *pipes, *resources, *recording, *settings;
    const char *logLine;
    const char *productWord;
};

/// What the names of the tests say of a row; the library would print its bytes, which differ from build to build.
void PrintTo(const Layout &row, std::ostream *out)
{
    *out << row.sessionType << (*row.home ? " with" : " without") << " HOME";
}

const Layout layoutRows[] = {
    {"normal", "HOME", "HOME/.brindle/Brindle/Logs", "HOME/.brindle/temp", "HOME/.brindle/Brindle/Resource",
     "HOME/.brindle/Brindle/Resource/record.gif", "HOME/.brindle/Brindle/bin/Settings.json", "User Path Set",
     "Brindle"},
    {"ras", "HOME", "HOME/.brindle/Brindle/Logs", "HOME/.brindle/temp", "HOME/.brindle/Brindle/Resource",
     "HOME/.brindle/Brindle/Resource/record.gif", "HOME/.brindle/Brindle/bin/Settings.json", "User Path Set", "CODE"},
    {"ras", "", "/usr/local/.brindle/Brindle/Logs", "/usr/local/.brindle/temp", "/.brindle/Brindle/Resource",
     "/.brindle/Brindle/Resource/record.gif", "/.brindle/Brindle/bin/Settings.json", "User Path Set", "as it was"},
    {"UrsUserSession", "", "/var/log/Brindle/UID/Logs", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource",
     "//usr/local/Brindle/Resource/record.gif", nullptr, nullptr, "Brindle"},
    {"UrsUserSession", "HOME", "/var/log/Brindle/UID/Logs", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource",
     "HOME//usr/local/Brindle/Resource/record.gif", nullptr, nullptr, "Brindle"},
    {"oreach", "", "/var/log/OstrelReach", "/usr/local/OstrelReach/temp", "/usr/local/OstrelReach/Resource",
     "//usr/local/OstrelReach/Resource/record.gif", nullptr, "root Path Set", "OstrelReach"},
    {"anything", "", "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource",
     "//usr/local/Brindle/Resource/record.gif", nullptr, "root Path Set", "Brindle"},
    {"Normal", "HOME", "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource",
     "HOME//usr/local/Brindle/Resource/record.gif", nullptr, "root Path Set", "Brindle"},
};

class InstallLayouts : public ::testing::TestWithParam<Layout>
{
protected:
    InstallLayouts() { EXPECT_TRUE(usePrivateFolders({"/usr/local", "/var/log"})); }

    void SetUp() override
    {
        row = GetParam();
        window = newLastingRecord<MainWindow>();
        initializeVariables(window);
        m_home = expand(row.home);
        window->homeDir = m_home.c_str();
        window->urs = row.sessionType;
        window->productName = "CODE";
        g_productName = "as it was";
    }
    void TearDown() override { log_close(); }

    std::string expand(const char *path) const
    {
        std::string text = path;
        if (text.rfind("HOME", 0) == 0)
            text.replace(0, 4, folder.path());
        if (const size_t id = text.find("UID"); id != std::string::npos)
            text.replace(id, 3, std::to_string(getuid()));
        return text;
    }
    void openOwnLog() const { ASSERT_EQ(log_init(folder.path().c_str(), "ui.log", 2, 7), 0); }
    std::vector<std::string> messages() const { return readLogMessages(folder.file("ui.log")); }

    Layout row;
    TemporaryFolder folder;
    MainWindow *window = nullptr;

private:
    std::string m_home;
};

std::string join(const std::string &directory, const char *file)
{
    return directory + "/" + file;
}

} // namespace

TEST_P(InstallLayouts, TheLogIsInItsFolder)
{
    const std::string logs = expand(row.logs);
    std::filesystem::create_directories(logs);
    set_log_path(row.sessionType, window);
    log_print(levelInfo, 1, "f", "here");
    EXPECT_THAT(readLogMessages(join(logs, "ui.log")), ::testing::ElementsAre("here"));
}

TEST_P(InstallLayouts, TheLogFolderIsNeverMade)
{
    set_log_path(row.sessionType, window);
    log_print(levelInfo, 1, "f", "nowhere");
    EXPECT_FALSE(std::filesystem::exists(expand(row.logs)));
}

TEST_P(InstallLayouts, BothPipesAreMadeInTheirFolderForEverybody)
{
    const std::string pipes = expand(row.pipes);
    std::filesystem::create_directories(pipes);
    umask(0);
    set_pipe_path(row.sessionType, window);
    EXPECT_EQ(g_UiStatus, join(pipes, "myfifo"));
    EXPECT_EQ(g_AgentStatus, join(pipes, "Status"));
    for (const char *const path : {g_UiStatus, g_AgentStatus}) {
        struct stat status = {};
        ASSERT_EQ(stat(path, &status), 0) << path;
        EXPECT_EQ(status.st_mode, mode_t(S_IFIFO | 0666)) << path;
    }
}

TEST_P(InstallLayouts, TheProductWordFollows)
{
    set_pipe_path(row.sessionType, window);
    EXPECT_STREQ(g_productName, row.productWord);
}

TEST_P(InstallLayouts, PipesThatCanNotBeMadeAreOnlyLogged)
{
    openOwnLog();
    set_pipe_path(row.sessionType, window);
    std::vector<std::string> last = messages();
    ASSERT_GE(last.size(), 2u);
    last.erase(last.begin(), last.end() - 2);
    EXPECT_THAT(last, ::testing::ElementsAre("error creating pipe " + join(expand(row.pipes), "Status"),
                                             "error creating pipe " + join(expand(row.pipes), "myfifo")));
}

TEST_P(InstallLayouts, StyleLanguagesSettingsAndRecordingHaveTheirPaths)
{
    openOwnLog();
    g_autofree char *css = nullptr;
    g_autofree char *locale = nullptr;
    setResourcePath(&css, &locale, window);
    EXPECT_EQ(css, join(expand(row.resources), "brindle-gtk.css"));
    EXPECT_EQ(locale, join(expand(row.resources), "locale"));
    EXPECT_EQ(window->imageRecording, expand(row.recording));
    if (row.settings)
        EXPECT_EQ(window->settingsJsonPath, expand(row.settings));
    else
        EXPECT_EQ(window->settingsJsonPath, nullptr);
    if (row.logLine)
        EXPECT_THAT(messages(), ::testing::ElementsAre(row.logLine));
    else
        EXPECT_THAT(messages(), ::testing::IsEmpty());
}

TEST_P(InstallLayouts, EveryPictureOfTheWindowHasItsFile)
{
    g_autofree char *css = nullptr;
    g_autofree char *locale = nullptr;
    setResourcePath(&css, &locale, window);
    const std::pair<const char *, const char *> pictures[] = {
        {window->imageOnline, "online.png"},
        {window->imageOffline, "offline.png"},
        {window->imageStartButton, "play.png"},
        {window->imageStopButton, "pause.png"},
        {window->participantsCursorImage, "cursor.png"},
        {window->participantsButtonImagePath, "participants.png"},
        {window->chatButtonImagePath, "chat-black.png"},
        {window->annotationButtonImagePath, "annotate-black.png"},
        {window->fileTransferButtonImagePath, "files-black.png"},
        {window->settingsButtonImagePath, "settings.png"},
        {window->logoImagePath, "logo.png"},
        {window->closeButtonImagePath, "close.png"},
        {window->chatTranscriptImagePath, "download.png"},
        {window->annotation->brushPath, "pen.png"},
        {window->annotation->rectangePath, "rectangle.png"},
        {window->annotation->circlePath, "ellipse.png"},
        {window->annotation->eraserPath, "eraser.png"},
        {window->annotation->eraseAllPath, "delete2.png"},
        {window->annotation->linePath, "line.png"},
    };
    for (const auto &[path, file] : pictures)
        EXPECT_EQ(path, join(expand(row.resources), file));
}

TEST_P(InstallLayouts, CloudProductsHaveTheirOwnLogo)
{
    for (const char *const code : {"FLEET_CLOUD", "REACH_CLOUD"}) {
        SetUp();
        window->productName = code;
        g_autofree char *css = nullptr;
        g_autofree char *locale = nullptr;
        setResourcePath(&css, &locale, window);
        EXPECT_STREQ(window->logoImagePath, "/usr/local/ostrel/fleet_agent/images/FC_icon.svg");
        EXPECT_EQ(window->imageOnline, join(expand(row.resources), "online.png"));
    }
}

INSTANTIATE_TEST_SUITE_P(Sessions, InstallLayouts, ::testing::ValuesIn(layoutRows), [](const auto &row) {
    return std::string(row.param.sessionType) + (*row.param.home ? "WithHome" : "WithoutHome");
});

TEST(InstallLayout, AMissingOrEmptySessionTypeCountsAsNormal)
{
    for (const char *const type : {static_cast<const char *>(nullptr), "", "normal"})
        EXPECT_STREQ(findInstallLayout(type, "/home/u").pipeDirectory, "~/.brindle/temp");
}

TEST(InstallLayout, AHomeIsTakenAsItIs)
{
    EXPECT_STREQ(expandLayoutPath("~/.brindle/temp", "/home/u").get(), "/home/u/.brindle/temp");
    EXPECT_STREQ(expandLayoutPath("~/.brindle/temp", nullptr).get(), "/.brindle/temp");
    EXPECT_STREQ(expandLayoutPath("~/.brindle/temp", "/a~b#%s").get(), "/a~b#%s/.brindle/temp");
}
