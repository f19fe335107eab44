// Scripts played against a companion that the tests write out: expectations, loops, answers, pings, typed lines.

#include "agentSimulator/player.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

using namespace agentSimulator;
using namespace std::chrono_literals;

namespace
{

/// Everything a player needs, with the companion's end of "Status" read into texts of its own.
class SimulatorPlayer : public testing::Test
{
protected:
    SimulatorPlayer()
    {
        std::string whyNot;
        EXPECT_TRUE(createPipes(folder.path(), whyNot)) << whyNot;
    }

    ~SimulatorPlayer() override
    {
        ending.request(0, "test");
        companionEnding.request(0, "test");
        background.stop();
        companion.join();
        sending.join();
    }

    int failuresOf(const std::string &script)
    {
        const ParsedScript parsed = parseScript(script);
        EXPECT_EQ(parsed.error, "");
        player.play(parsed.commands);
        return player.failures();
    }

    /// Whether the companion receives this line, after what it received before.
    bool companionGets(const std::string &line)
    {
        return atCompanion.takeUntil([&](const std::string &received) { return received == line; }, 10s);
    }

    const TemporaryFolder folder;
    const PipePaths paths = pipePathsIn(folder.path());
    Recorder recorder{folder.file("record")};
    Ending ending;
    Inbox inbox;
    TextWriter writer{paths.toCompanion, recorder, ending, 10s};
    BackgroundSender background{writer, ending};
    Player player{Stage{recorder, writer, inbox, background, ending, -1, folder.path()}};

    Ending companionEnding;
    Inbox atCompanion; ///< lines that the companion has read, one text a line
    TextReader companionReader{paths.toCompanion, companionEnding, [this](const std::string &text) {
                                   for (size_t begin = 0; begin < text.size();) {
                                       const size_t end = text.find('\n', begin);
                                       atCompanion.add(text.substr(begin, end - begin));
                                       begin = end == std::string::npos ? text.size() : end + 1;
                                   }
                               }};
    std::thread companion{[this] { companionReader.run(); }};
    std::thread sending{[this] { background.run(); }};
};

} // namespace

TEST_F(SimulatorPlayer, AnExpectationThatIsNotMetIsReportedAndCounted)
{
    inbox.add("buttonClicked start");
    EXPECT_EQ(failuresOf("wait 1\nexpect buttonClicked stop timeout 20\nsend still playing\n"), 1);
    const std::string record = folder.read("record");
    EXPECT_NE(record.find(" ! line 2: expect not met within 20 ms: buttonClicked stop\n"), std::string::npos) << record;
    EXPECT_TRUE(companionGets("still playing"));
}

TEST_F(SimulatorPlayer, ExpectationsAreMetByLinesThatCameBeforeOrComeLater)
{
    inbox.add("SendSessionDetails");
    std::thread later([&] {
        EXPECT_TRUE(companionGets("ready"));
        inbox.add("dialogResponse dialog_position 1 2 3 4");
    });
    EXPECT_EQ(failuresOf("expect SendSessionDetails\nsend ready\nexpectprefix dialogResponse dialog_position\n"), 0);
    later.join();
}

TEST_F(SimulatorPlayer, ExpectationsCheckTheOrder)
{
    inbox.add("first");
    inbox.add("second");
    EXPECT_EQ(failuresOf("expect second\nexpect first timeout 20\n"), 1);
}

TEST_F(SimulatorPlayer, AnExpectationWantsTheWholeLineAndAPrefixItsBeginning)
{
    inbox.add("buttonClicked stop now");
    EXPECT_EQ(failuresOf("expect buttonClicked stop timeout 20\n"), 1);
    inbox.add("buttonClicked stop now");
    EXPECT_EQ(failuresOf("expectprefix buttonClicked stop timeout 20\n"), 1);
}

TEST_F(SimulatorPlayer, AClosedInboxEndsAnExpectationAtOnce)
{
    inbox.add("old");
    inbox.close();
    ending.request(0, "the companion is gone");
    EXPECT_FALSE(inbox.takeUntil([](const std::string &line) { return line == "new"; }, 1h));
}

TEST_F(SimulatorPlayer, LoopsGoRoundAsOftenAsTheySay)
{
    EXPECT_EQ(failuresOf("loop 2\nsend a\nloop 3\nsend b\nend\nend\nloop 0\nsend never\nend\nsend c\n"), 0);
    std::string received;
    EXPECT_TRUE(atCompanion.takeUntil([&](const std::string &line) { return (received += line) == "abbbabbbc"; }, 10s))
        << received;
}

TEST_F(SimulatorPlayer, AFileGoesOutAsOneText)
{
    std::ofstream(folder.file("text.bin"), std::ios::binary) << "one\ntwo \xFF";
    EXPECT_EQ(failuresOf("sendfile text.bin\n"), 0);
    EXPECT_NE(folder.read("record").find(" > one\\ntwo \\xFF\n"), std::string::npos);
    EXPECT_EQ(failuresOf("sendfile missing.bin\n"), 1);
}

TEST_F(SimulatorPlayer, AnExitEndsTheScriptWithItsStatus)
{
    EXPECT_EQ(failuresOf("exit 3\nsend never\n"), 0);
    EXPECT_EQ(ending.status(), 3);
    EXPECT_EQ(folder.read("record").find("never"), std::string::npos);
}

TEST_F(SimulatorPlayer, TheEndOfTheSessionEndsALongWait)
{
    std::thread other([&] {
        EXPECT_TRUE(companionGets("started"));
        ending.request(0, "test");
    });
    EXPECT_EQ(failuresOf("send started\nwait 3600000\nsend never\n"), 0);
    other.join();
    const std::string record = folder.read("record");
    EXPECT_NE(record.find("# script left before line "), std::string::npos) << record;
    EXPECT_EQ(record.find("never"), std::string::npos) << record;
}

TEST_F(SimulatorPlayer, ShellCommandsAreRunAndTheirFailureIsRecorded)
{
    setenv("SIMULATOR_TEST_DIR", folder.path().c_str(), 1);
    EXPECT_EQ(failuresOf("run echo hello >\"$SIMULATOR_TEST_DIR/out\"\nrun exit 5\n"), 0);
    unsetenv("SIMULATOR_TEST_DIR");
    EXPECT_EQ(folder.read("out"), "hello\n");
    EXPECT_NE(folder.read("record").find(" ! run ended with status 5: exit 5\n"), std::string::npos);
}

TEST_F(SimulatorPlayer, AShellCommandFromAnUnsetVariableIsLeftOut)
{
    unsetenv("SIMULATOR_TEST_SHOT");
    EXPECT_EQ(failuresOf("run\nrun \"$SIMULATOR_TEST_SHOT\" name\nrun $SIMULATOR_TEST_SHOT name\n"), 0);
    EXPECT_EQ(folder.read("record").find("run"), std::string::npos);
    setenv("SIMULATOR_TEST_SHOT", "touch", 1);
    EXPECT_EQ(failuresOf("run \"$SIMULATOR_TEST_SHOT\" " + folder.file("name") + "\n"), 0);
    unsetenv("SIMULATOR_TEST_SHOT");
    EXPECT_TRUE(std::filesystem::exists(folder.file("name")));
}

TEST_F(SimulatorPlayer, ButtonsAreAnsweredAsAnAgentDoesWhenSwitchedOn)
{
    background.noteReceived("buttonClicked start"); // still off
    EXPECT_EQ(failuresOf("answer on\n"), 0);
    background.noteReceived("buttonClicked stop");
    EXPECT_TRUE(companionGets("sessionStatus disconnected"));
    background.noteReceived("buttonClicked start");
    EXPECT_TRUE(companionGets("sessionStatus Connected"));
    background.noteReceived("buttonClicked settings");
    EXPECT_EQ(folder.read("record").find("sessionStatus"), folder.read("record").find("sessionStatus disconnected"));
}

TEST_F(SimulatorPlayer, TheExitButtonEndsTheAgentWithStatusZero)
{
    EXPECT_EQ(failuresOf("answer on\n"), 0);
    background.noteReceived("buttonClicked exit");
    EXPECT_TRUE(ending.waitFor(10s));
    EXPECT_EQ(ending.status(), 0);
    EXPECT_EQ(ending.reason(), "buttonClicked exit");
}

TEST_F(SimulatorPlayer, PingsComeAgainAndAgainUntilTheyAreSwitchedOff)
{
    EXPECT_EQ(failuresOf("ping on 1\n"), 0);
    for (int i = 0; i < 3; i++)
        EXPECT_TRUE(companionGets("PING UI"));
    EXPECT_EQ(failuresOf("ping off\nsend first\nwait 30\nsend second\n"), 0);
    EXPECT_TRUE(companionGets("first"));
    std::string between;
    EXPECT_TRUE(atCompanion.takeUntil(
        [&](const std::string &line) {
            between += line;
            return line == "second";
        },
        10s));
    EXPECT_LE(between.size(), std::string("PING UIsecond").size()) << between; // one ping may have been on its way
}

TEST_F(SimulatorPlayer, TypedLinesAreCommandsOrGoOutAsTheyStand)
{
    int input[2];
    ASSERT_EQ(pipe(input), 0);
    const std::string typed = "sessionStatus foo \\n\n\nsend a\\x41\nloop 2\nwait x\ntechname Ann Lee";
    ASSERT_EQ(write(input[1], typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    close(input[1]);
    Player typist(Stage{recorder, writer, inbox, background, ending, input[0]});
    typist.playInput();
    close(input[0]);
    EXPECT_TRUE(typist.hasInputEnded());
    std::string received;
    const std::string wanted = "sessionStatus foo \\n|aA|sessionStatus TECH-NAME Ann%20Lee|";
    EXPECT_TRUE(atCompanion.takeUntil([&](const std::string &line) { return (received += line + "|") == wanted; }, 10s))
        << received;
    EXPECT_NE(folder.read("record").find(" ! typed: only a script can say that\n"), std::string::npos);
    EXPECT_NE(folder.read("record").find(" ! typed: wait: a number is wanted\n"), std::string::npos);
}
