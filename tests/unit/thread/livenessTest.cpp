// A session that the agent started ends when the agent stops pinging.

#include "src/thread/thread.h"

#include "src/sessionState.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace
{

class Liveness : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        g_mutex_init(&mainWindow->PingUiMutex);
        m_logged = logMessages().size();
    }
    std::vector<std::string> newMessages() const
    {
        std::vector<std::string> all = logMessages();
        all.erase(all.begin(), all.begin() + long(m_logged));
        return all;
    }
    bool takeAlive() const
    {
        const MutexLock lock(&mainWindow->PingUiMutex);
        return mainWindow->isAlive;
    }

private:
    size_t m_logged = 0;
};

} // namespace

TEST_F(Liveness, WithoutASignOfLifeTheProgramEnds)
{
    mainWindow->isAlive = false;
    uiChecker(mainWindow);
    EXPECT_TRUE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Checking ss is alive", "UI thread is not alive, exiting",
                                                      "UI checker thread exiting"));
}

TEST_F(Liveness, ASignOfLifeCountsForOnePeriodOnly)
{
    mainWindow->isAlive = true;
    // Goes on waiting for the next check to the end of the process.
    std::thread(uiChecker, mainWindow).detach();
    EXPECT_TRUE(waitUntil([&] { return !takeAlive(); }));
    EXPECT_FALSE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Checking ss is alive"));
}

TEST_F(Liveness, AfterTheEndNothingIsChecked)
{
    g_threadChecker = false;
    mainWindow->isAlive = false;
    uiChecker(mainWindow);
    EXPECT_FALSE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("UI checker thread exiting"));
}
