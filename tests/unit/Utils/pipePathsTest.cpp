// The pipes of a session at its start and its end.

#include "src/Utils/pipeTransport.h"

#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

class SessionPipes : public TestSession
{
protected:
    using TestSession::TestSession;
    static ino_t inode(const std::string &path)
    {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_ino;
    }
    static bool isFifo(const std::string &path)
    {
        struct stat status = {};
        return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
    }
    /// The messages since a moment.
    std::vector<std::string> messagesSince(size_t count) const
    {
        std::vector<std::string> all = logMessages();
        all.erase(all.begin(), all.begin() + long(count));
        return all;
    }
};

class StartedSessionPipes : public SessionPipes
{
protected:
    StartedSessionPipes() : SessionPipes("ras", {"-n", "RAS_CODE"}) {}
};

} // namespace

TEST_F(SessionPipes, AreLoggedTheAgentsFirst)
{
    EXPECT_THAT(logMessages(), ::testing::IsSupersetOf({"pipe created " + agentPipe(), "pipe created " + uiPipe()}));
    const std::vector<std::string> all = logMessages();
    EXPECT_LT(std::find(all.begin(), all.end(), "pipe created " + agentPipe()),
              std::find(all.begin(), all.end(), "pipe created " + uiPipe()));
}

TEST_F(SessionPipes, OfANormalSessionReplaceWhatWasThere)
{
    home.write(".brindle/temp/Status.new", "no pipe");
    ASSERT_EQ(rename(home.file(".brindle/temp/Status.new").c_str(), agentPipe().c_str()), 0);
    ASSERT_FALSE(isFifo(agentPipe()));
    set_pipe_path("normal", mainWindow);
    EXPECT_TRUE(isFifo(agentPipe()));
    EXPECT_TRUE(isFifo(uiPipe()));
}

TEST_F(SessionPipes, GoWithTheSession)
{
    unlinkPipes();
    EXPECT_FALSE(home.has(".brindle/temp/myfifo"));
    EXPECT_FALSE(home.has(".brindle/temp/Status"));
    unlinkPipes(); // nothing there: no harm
}

TEST_F(StartedSessionPipes, OfTheAgentAreLeftAsTheyAre)
{
    const ino_t ui = inode(uiPipe()), status = inode(agentPipe());
    const size_t before = logMessages().size();
    set_pipe_path("ras", mainWindow);
    EXPECT_EQ(inode(uiPipe()), ui);
    EXPECT_EQ(inode(agentPipe()), status);
    EXPECT_THAT(messagesSince(before),
                ::testing::ElementsAre("productName: RAS_CODE, ui pipe " + uiPipe() + ", st pipe " + agentPipe(),
                                       "error creating pipe " + agentPipe(), "error creating pipe " + uiPipe()));
}
