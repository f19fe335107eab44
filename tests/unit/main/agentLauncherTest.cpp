// The agent that is not started; the starts are held by whole sessions.

#include "src/agentLauncher.h"

#include "src/support.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
class AgentLauncher : public TestSession
{
};
} // namespace

TEST_F(AgentLauncher, StartsNothingOnceTheEndWasAskedFor)
{
    request_quit();
    EXPECT_EQ(AgentStarter(mainWindow), nullptr);
    EXPECT_THAT(logMessages(), ::testing::Contains("Macro defined SPAWNPROCESS"));
    EXPECT_THAT(logMessages(), ::testing::Not(::testing::Contains(::testing::StartsWith("execl args"))));
}
