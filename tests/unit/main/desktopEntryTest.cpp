// The desktop entry of a running session.

#include "src/desktopEntry.h"

#include "src/Utils/installLayout.h"
#include "tests/support/testSession.h"
#include "tests/unit/main/privateSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

class DesktopEntry : public TestSession
{
protected:
    using TestSession::TestSession;
    void SetUp() override
    {
        TestSession::SetUp();
        home.makeFolder(".local/share/applications");
        setenv("HOME", home.path().c_str(), 1);
    }
    /// The last line that is no trace, as "LEVEL message".
    std::string lastLine() const
    {
        std::string last;
        for (const LogLine &line : readLog(logPath()))
            if (line.level != "TRACE_CALL" && !line.level.empty())
                last = line.level + " " + line.message;
        return last;
    }
    std::string entry() const { return home.file(".local/share/applications/Brindle.desktop"); }
};

class CloudDesktopEntry : public DesktopEntry, public ::testing::WithParamInterface<const char *>
{
protected:
    CloudDesktopEntry() : DesktopEntry("normal", {"-n", GetParam()})
    {
        EXPECT_TRUE(usePrivateFolders({"/usr/share/applications"}));
    }
    static constexpr char systemEntry[] = "/usr/share/applications/Brindle.desktop";
};

} // namespace

TEST_F(DesktopEntry, NamesTheProductAndItsPicture)
{
    create_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(readWholeFile(entry()),
              "[Desktop Entry]\nVersion=1.0\nName=Brindle\nIcon=" + home.path() +
                  "/.brindle/Brindle/Resource/logo.png\nTerminal=false\nType=Application\nCategories=Utility;\n");
}

TEST_F(DesktopEntry, IsLoggedWithItsPathAndAnExtraNewline)
{
    create_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(lastLine(), "INFO Created .desktop file at: " + entry());
    EXPECT_THAT(readWholeFile(logPath()), ::testing::EndsWith(entry() + "\n\n"));
}

TEST_F(DesktopEntry, ReplacesAnOlderOne)
{
    home.write(".local/share/applications/Brindle.desktop", std::string(5000, 'x'));
    create_desktop_file("Brindle", mainWindow);
    EXPECT_THAT(readWholeFile(entry()), ::testing::EndsWith("Categories=Utility;\n"));
    EXPECT_THAT(readWholeFile(entry()), ::testing::StartsWith("[Desktop Entry]\n"));
}

TEST_F(DesktopEntry, GoesWithTheSession)
{
    create_desktop_file("Brindle", mainWindow);
    delete_desktop_file("Brindle", mainWindow);
    EXPECT_FALSE(home.has(".local/share/applications/Brindle.desktop"));
    EXPECT_EQ(lastLine(), "INFO Deleted .desktop file at: " + entry());
}

TEST_F(DesktopEntry, TroubleIsLoggedAsAnError)
{
    setenv("HOME", home.file("nobody").c_str(), 1);
    const std::string path = home.file("nobody/.local/share/applications/Brindle.desktop");
    create_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(lastLine(), "ERROR Could not create desktop file: " + path);
    delete_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(lastLine(), "ERROR Could not delete desktop file: " + path);
}

TEST_F(DesktopEntry, AMissingHomeCountsAsEmpty)
{
    unsetenv("HOME");
    delete_desktop_file("noSuchEntry", mainWindow);
    EXPECT_EQ(lastLine(), "ERROR Could not delete desktop file: /.local/share/applications/noSuchEntry.desktop");
}

TEST_F(DesktopEntry, APathIsCutAt511Characters)
{
    std::string longHome = home.path();
    while (longHome.size() < 505)
        longHome += "/d";
    setenv("HOME", longHome.c_str(), 1);
    const std::string cut = (longHome + "/.local/share/applications/Brindle.desktop").substr(0, 511);
    create_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(lastLine(), "ERROR Could not create desktop file: " + cut);
    delete_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(lastLine(), "ERROR Could not delete desktop file: " + cut);
}

TEST_P(CloudDesktopEntry, GoesToTheSystemWithTheCloudPicture)
{
    create_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(readWholeFile(systemEntry),
              std::string("[Desktop Entry]\nVersion=1.0\nName=") + mainWindow->productWindowTitle +
                  "\nIcon=/usr/local/ostrel/fleet_agent/images/FC_icon.svg\nTerminal=false\nType=Application\n"
                  "Categories=Utility;\n");
    EXPECT_FALSE(home.has(".local/share/applications/Brindle.desktop"));
    delete_desktop_file("Brindle", mainWindow);
    EXPECT_EQ(readWholeFile(systemEntry), "");
}

INSTANTIATE_TEST_SUITE_P(Products, CloudDesktopEntry, ::testing::Values("FLEET_CLOUD", "REACH_CLOUD"));
