// Both command lines: the agent's fixed one and the one for people.

#include "agentSimulator/options.h"

#include <gtest/gtest.h>

#include <map>

using namespace agentSimulator;

namespace
{

using Variables = std::map<std::string, std::string>;

ParsedOptions parsedWith(const std::vector<std::string> &arguments, const Variables &variables = {})
{
    return parseOptions(arguments, [&](const char *name) {
        const auto found = variables.find(name);
        return found == variables.end() ? nullptr : found->second.c_str();
    });
}

const std::vector<std::string> agentArguments = {"/home/ann/.brindle/Brindle/bin/main",
                                                 "-productType",
                                                 "true",
                                                 "-isRolechange",
                                                 "0",
                                                 "-email",
                                                 "Guest",
                                                 "-version",
                                                 "64",
                                                 "-isDemoSession",
                                                 "0",
                                                 "-applicationPath",
                                                 "/home/ann",
                                                 "-productName",
                                                 "Brindle"};

} // namespace

TEST(SimulatorOptions, TheAgentsCommandLineNamesTheHomeAndTheEnvironmentTheRest)
{
    const ParsedOptions parsed = parsedWith(
        agentArguments, {{"BRINDLE_AGENT_SCRIPT", "/s"}, {"BRINDLE_AGENT_RECORD", "/r"}, {"BRINDLE_AGENT_EXIT", "2"}});
    EXPECT_EQ(parsed.error, "");
    EXPECT_TRUE(parsed.options.isStartedByCompanion);
    EXPECT_EQ(parsed.options.pipeDirectory, "/home/ann/.brindle/temp");
    EXPECT_EQ(parsed.options.scriptPath, "/s");
    EXPECT_EQ(parsed.options.recordPath, "/r");
    EXPECT_EQ(parsed.options.exitStatus, 2);
    EXPECT_EQ(parsed.options.arguments, agentArguments);
}

TEST(SimulatorOptions, WithoutEnvironmentTheAgentJustListens)
{
    const ParsedOptions parsed = parsedWith(agentArguments);
    EXPECT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.options.scriptPath, "");
    EXPECT_FALSE(parsed.options.exitStatus);
}

TEST(SimulatorOptions, TheConsoleTakesOverWhereTheEnvironmentSaysSo)
{
    EXPECT_TRUE(parsedWith(agentArguments, {{"BRINDLE_AGENT_CONSOLE", "1"}}).options.wantsConsole);
    for (const char *value : {"", "0", "no"})
        EXPECT_FALSE(parsedWith(agentArguments, {{"BRINDLE_AGENT_CONSOLE", value}}).options.wantsConsole) << value;
    EXPECT_FALSE(parsedWith(agentArguments).options.wantsConsole);
}

TEST(SimulatorOptions, AListThatWasCutShortFallsBackToTheUsersHome)
{
    const ParsedOptions parsed = parsedWith({"main", "-productType", "true", "-version"}, {{"HOME", "/home/bob"}});
    EXPECT_EQ(parsed.options.pipeDirectory, "/home/bob/.brindle/temp");
}

TEST(SimulatorOptions, AValueThatLooksLikeANameIsAValue)
{
    const ParsedOptions parsed =
        parsedWith({"main", "-productType", "true", "-email", "-applicationPath", "-applicationPath", "/home/ann"});
    EXPECT_EQ(parsed.options.pipeDirectory, "/home/ann/.brindle/temp");
}

TEST(SimulatorOptions, ByHandEveryOptionIsRead)
{
    const ParsedOptions parsed =
        parsedWith({"agentSimulator", "--pipes", "/p", "--script", "/s", "--record", "/r", "--create-pipes",
                    "--send-timeout", "50", "--run", "brindle-ui", "-u", "ras", "--pipes", "x"});
    EXPECT_EQ(parsed.error, "");
    EXPECT_FALSE(parsed.options.isStartedByCompanion);
    EXPECT_EQ(parsed.options.pipeDirectory, "/p");
    EXPECT_EQ(parsed.options.scriptPath, "/s");
    EXPECT_EQ(parsed.options.recordPath, "/r");
    EXPECT_TRUE(parsed.options.createsPipes);
    EXPECT_EQ(parsed.options.sendTimeoutMs, 50);
    // What follows --run belongs to the companion, whatever it looks like.
    EXPECT_EQ(parsed.options.companionCommand, (std::vector<std::string>{"brindle-ui", "-u", "ras", "--pipes", "x"}));
}

TEST(SimulatorOptions, MistakesAreRefused)
{
    const std::vector<std::string> lists[] = {
        {"agentSimulator"},
        {"agentSimulator", "--pipes"},
        {"agentSimulator", "--pipes", "/p", "--run"},
        {"agentSimulator", "--pipes", "/p", "--send-timeout", "soon"},
        {"agentSimulator", "--pipes", "/p", "stray"},
    };
    for (const std::vector<std::string> &arguments : lists)
        EXPECT_NE(parsedWith(arguments).error, "") << arguments.back();
    EXPECT_NE(parsedWith(agentArguments, {{"BRINDLE_AGENT_EXIT", "256"}}).error, "");
}
