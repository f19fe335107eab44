// Whole sessions of the real program: exit statuses, signals, the companion as parent and as child.

#include "agentSimulator/channel.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/waitUntil.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace agentSimulator;

namespace
{

using Arguments = std::vector<std::string>;

/// Becomes the simulator. Nothing of the test's own streams reaches it.
[[noreturn]] void becomeSimulator(Arguments arguments)
{
    const int nothing = open("/dev/null", O_RDWR);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, stream);
    std::vector<char *> words;
    for (std::string &word : arguments)
        words.push_back(word.data());
    words.push_back(nullptr);
    execv(AGENT_SIMULATOR_PROGRAM, words.data());
    _exit(127);
}

int waitStatusOf(pid_t child)
{
    int waitStatus = -1;
    waitpid(child, &waitStatus, 0);
    return waitStatus;
}

class SimulatorSession : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string whyNot;
        ASSERT_TRUE(createPipes(folder.file(".brindle/temp"), whyNot)) << whyNot;
        setenv("BRINDLE_AGENT_RECORD", folder.file("record").c_str(), 1);
    }

    void TearDown() override
    {
        for (const char *name : {"BRINDLE_AGENT_SCRIPT", "BRINDLE_AGENT_RECORD", "BRINDLE_AGENT_EXIT"})
            unsetenv(name);
    }

    void useScript(const std::string &text) const
    {
        setenv("BRINDLE_AGENT_SCRIPT", folder.write("script", text).c_str(), 1);
    }

    /// The agent's command line; this process is the companion.
    Arguments asAgent() const
    {
        return {"main", "-productType", "true", "-email", "two words", "-applicationPath", folder.path()};
    }

    /// By hand, with more arguments behind.
    Arguments byHand(const Arguments &more) const
    {
        Arguments arguments = {"agentSimulator", "--pipes", pipeFolder, "--record", folder.file("record")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    static pid_t start(const Arguments &arguments)
    {
        const pid_t child = fork();
        if (child == 0)
            becomeSimulator(arguments);
        return child;
    }

    static int exitStatusOf(const Arguments &arguments)
    {
        const int waitStatus = waitStatusOf(start(arguments));
        EXPECT_TRUE(WIFEXITED(waitStatus)) << waitStatus;
        return WEXITSTATUS(waitStatus);
    }

    std::string record() const { return folder.read("record"); }

    testing::AssertionResult recordShows(const std::string &text) const
    {
        return waitUntil([&] { return record().find(text) != std::string::npos; }, [&] { return record(); });
    }

    const TemporaryFolder folder;
    const std::string pipeFolder = folder.file(".brindle/temp");
};

} // namespace

TEST_F(SimulatorSession, TheRecordBeginsWithTheCommandLine)
{
    useScript("exit 0\n");
    EXPECT_EQ(exitStatusOf(asAgent()), 0);
    const std::string seen = record();
    const size_t first = seen.find(" # argv[0] main\n");
    EXPECT_EQ(first, 7U) << seen;
    EXPECT_LT(first, seen.find(" # argv[4] two words\n"));
    EXPECT_NE(seen.find(" # exit 0 (line 1: exit)\n"), std::string::npos) << seen;
}

TEST_F(SimulatorSession, TheExitStatusIsTheScripts)
{
    useScript("exit 3\n");
    EXPECT_EQ(exitStatusOf(asAgent()), 3);
}

TEST_F(SimulatorSession, AMissedExpectationTurnsSuccessIntoStatusSeventy)
{
    useScript("expect never timeout 10\nexit 0\n");
    EXPECT_EQ(exitStatusOf(asAgent()), 70);
    useScript("expect never timeout 10\nexit 2\n");
    EXPECT_EQ(exitStatusOf(asAgent()), 2);
}

TEST_F(SimulatorSession, ATextThatNobodyReadsTurnsSuccessIntoStatusSeventy)
{
    const std::string script = folder.write("script", "send hello\nexit\n");
    EXPECT_EQ(exitStatusOf(byHand({"--script", script, "--send-timeout", "50"})), 70);
}

TEST_F(SimulatorSession, ABadScriptIsRefusedBeforeAnythingIsPlayed)
{
    useScript("run touch " + folder.file("played") + "\nsned x\n");
    EXPECT_EQ(exitStatusOf(asAgent()), 64);
    EXPECT_FALSE(folder.has("played"));
    EXPECT_NE(record().find("line 2: there is no command \"sned\""), std::string::npos);
}

TEST_F(SimulatorSession, TheEnvironmentsStatusEndsItWithoutAScript)
{
    setenv("BRINDLE_AGENT_EXIT", "5", 1);
    EXPECT_EQ(exitStatusOf(asAgent()), 5);
}

TEST_F(SimulatorSession, AScriptMayKillItsAgent)
{
    for (const int signal : {SIGKILL, SIGTERM}) {
        useScript("kill " + std::to_string(signal) + "\nexit 0\n");
        const int waitStatus = waitStatusOf(start(asAgent()));
        ASSERT_TRUE(WIFSIGNALED(waitStatus)) << signal;
        EXPECT_EQ(WTERMSIG(waitStatus), signal);
    }
}

TEST_F(SimulatorSession, ATerminateSignalEndsItCleanly)
{
    useScript("wait 3600000\n");
    const pid_t session = start(asAgent());
    EXPECT_TRUE(recordShows("argv[1]"));
    kill(session, SIGTERM);
    const int waitStatus = waitStatusOf(session);
    EXPECT_TRUE(WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == 0);
    EXPECT_NE(record().find("# exit 0 (signal 15)\n"), std::string::npos);
}

TEST_F(SimulatorSession, ItStaysAfterItsScriptAndRecordsWhatTheCompanionSays)
{
    useScript("wait 1\n");
    const pid_t session = start(asAgent());
    const int pipe = open(pipePathsIn(pipeFolder).fromCompanion.c_str(), O_WRONLY);
    EXPECT_EQ(write(pipe, "buttonClicked stop\n", 19), 19);
    close(pipe);
    EXPECT_TRUE(recordShows(" < buttonClicked stop\\n\n"));
    kill(session, SIGTERM);
    EXPECT_EQ(waitStatusOf(session), 0);
}

TEST_F(SimulatorSession, TheEndOfACompanionThatItStartedEndsItAfterTheLastText)
{
    const std::string speak = "printf 'last words\\n' >'" + pipePathsIn(pipeFolder).fromCompanion + "'; exit 4";
    EXPECT_EQ(exitStatusOf(byHand({"--run", "/bin/sh", "-c", speak})), 0);
    const std::string seen = record();
    EXPECT_NE(seen.find(" < last words\\n\n"), std::string::npos) << seen;
    EXPECT_NE(seen.find("# exit 0 (the companion ended with status 4)"), std::string::npos) << seen;
}

TEST_F(SimulatorSession, AnAgentThatComesFirstMakesThePipes)
{
    const std::string script = folder.write("script", "exit\n");
    EXPECT_EQ(exitStatusOf({"agentSimulator", "--pipes", folder.file("new"), "--script", script, "--create-pipes"}), 0);
    EXPECT_TRUE(folder.has("new/myfifo"));
    EXPECT_TRUE(folder.has("new/Status"));
}

TEST_F(SimulatorSession, ACompanionThatCannotBeStartedIsReported)
{
    EXPECT_EQ(exitStatusOf(byHand({"--run", folder.file("missing")})), 64);
}

TEST_F(SimulatorSession, TheEndOfTheCompanionThatStartedItEndsIt)
{
    useScript("print agent is up\nwait 3600000\n");
    prctl(PR_SET_CHILD_SUBREAPER, 1); // the agent comes to us when its companion is gone
    const pid_t companion = fork();
    if (companion == 0) {
        start(asAgent());
        pause();
        _exit(0);
    }
    EXPECT_TRUE(recordShows("agent is up"));
    kill(companion, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(waitStatusOf(companion)));
    EXPECT_EQ(waitStatusOf(-1), 0);
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    EXPECT_TRUE(recordShows("# exit 0 (the companion is gone)"));
}
