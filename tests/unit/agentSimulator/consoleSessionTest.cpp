// A session led by hand: single commands and a script at the same time, against a companion that the tests write out.

#include "agentSimulator/console/consoleSession.h"
#include "agentSimulator/options.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

using namespace agentSimulator;
using namespace std::chrono_literals;

namespace
{

class ConsoleSessionByHand : public testing::Test
{
protected:
    ConsoleSessionByHand()
    {
        options.pipeDirectory = folder.path();
        std::string whyNot;
        EXPECT_TRUE(createPipes(folder.path(), whyNot)) << whyNot;
        session = std::make_unique<ConsoleSession>(options, recorder, Companion{}, [this](int missed) {
            failures = missed;
            replayEnds.add("over");
        });
    }

    ~ConsoleSessionByHand() override
    {
        session.reset();
        companionEnding.request(0, "test");
        companion.join();
    }

    bool plays(const std::string &script)
    {
        ParsedScript parsed = parseScript(script);
        EXPECT_EQ(parsed.error, "");
        return session->startReplay(std::move(parsed.commands), folder.path());
    }

    bool companionGets(const std::string &text)
    {
        return atCompanion.takeUntil([&](const std::string &received) { return received == text; }, 10s);
    }

    bool replayEnded()
    {
        return replayEnds.takeUntil([](const std::string &) { return true; }, 10s);
    }

    void companionSays(const std::string &text)
    {
        Recorder own(folder.file("companion"));
        Ending never;
        EXPECT_TRUE(TextWriter(pipePathsIn(folder.path()).fromCompanion, own, never, 10s).send(text));
    }

    const TemporaryFolder folder;
    Options options;
    Recorder recorder{folder.file("record")};
    std::atomic<int> failures = -1;
    Inbox replayEnds;
    std::unique_ptr<ConsoleSession> session;

    Ending companionEnding;
    Inbox atCompanion; ///< texts that the companion has read
    TextReader companionReader{pipePathsIn(folder.path()).toCompanion, companionEnding,
                               [this](const std::string &text) { atCompanion.add(text); }};
    std::thread companion{[this] { companionReader.run(); }};
};

} // namespace

TEST_F(ConsoleSessionByHand, SendsCommandsAndPlainLines)
{
    session->perform("chat John | Hello");
    EXPECT_TRUE(companionGets("chat John\nHello"));
    session->perform("something new");
    EXPECT_TRUE(companionGets("something new\n"));
}

TEST_F(ConsoleSessionByHand, SendsWhileAScriptWaits)
{
    ASSERT_TRUE(plays("send begins\nexpect go on timeout 60000\nsend goes on\n"));
    EXPECT_TRUE(companionGets("begins\n"));
    session->perform("send between");
    EXPECT_TRUE(companionGets("between\n"));
    companionSays("go on\n");
    EXPECT_TRUE(companionGets("goes on\n"));
    EXPECT_TRUE(replayEnded());
    EXPECT_EQ(failures, 0);
}

TEST_F(ConsoleSessionByHand, PlaysOneScriptAfterTheOtherButNotTwoAtOnce)
{
    ASSERT_TRUE(plays("expect first timeout 60000\n"));
    EXPECT_FALSE(plays("send second\n"));
    companionSays("first\n");
    EXPECT_TRUE(replayEnded());
    EXPECT_TRUE(plays("send second\n"));
    EXPECT_TRUE(companionGets("second\n"));
    EXPECT_TRUE(replayEnded());
}

TEST_F(ConsoleSessionByHand, AStoppedScriptLeavesTheSessionAlone)
{
    for (const char *script : {"send begun\nwait 3600000\n", "send begun\nexpect never timeout 3600000\n",
                               "send begun\ninteractive\n", "send begun\nloop 1000000000\nwait 1\nend\n"}) {
        ASSERT_TRUE(plays(script));
        EXPECT_TRUE(companionGets("begun\n"));
        session->stopReplay();
        EXPECT_TRUE(replayEnded()) << script;
        EXPECT_FALSE(session->ending().isRequested());
    }
    session->perform("send still here");
    EXPECT_TRUE(companionGets("still here\n"));
}

TEST_F(ConsoleSessionByHand, TheExitOfAScriptIsTheAgents)
{
    ASSERT_TRUE(plays("exit 3\n"));
    EXPECT_TRUE(session->ending().waitFor(10s));
    EXPECT_EQ(session->ending().status(), 3);
}

TEST_F(ConsoleSessionByHand, ATypedExitIsTheAgents)
{
    session->perform("exit 4");
    EXPECT_TRUE(session->ending().waitFor(10s));
    EXPECT_EQ(session->ending().status(), 4);
}

TEST_F(ConsoleSessionByHand, EndsWhileAScriptAndACommandWait)
{
    ASSERT_TRUE(plays("send begun\nexpect never timeout 3600000\n"));
    EXPECT_TRUE(companionGets("begun\n"));
    session->perform("wait 3600000");
    session.reset();
    EXPECT_TRUE(replayEnded());
}

TEST_F(ConsoleSessionByHand, SaysWhatAScriptMissed)
{
    ASSERT_TRUE(plays("expect never timeout 1\n"));
    EXPECT_TRUE(replayEnded());
    EXPECT_EQ(failures, 1);
}
