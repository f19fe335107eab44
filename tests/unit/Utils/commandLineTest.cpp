// What the options of the command line become.

#include "src/Utils/installLayout.h"

#include "src/sessionState.h"
#include "tests/support/lastingRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace
{

class CommandLine : public ::testing::Test
{
protected:
    /// The record after these arguments.
    const MainWindow &parse(std::vector<std::string> arguments)
    {
        m_arguments = std::move(arguments);
        m_arguments.insert(m_arguments.begin(), "brindle-ui");
        m_argv.clear();
        for (std::string &argument : m_arguments)
            m_argv.push_back(argument.data());
        m_argv.push_back(nullptr);
        m_window = newLastingRecord<MainWindow>();
        initializeVariables(m_window);
        argumentParser(static_cast<int>(m_arguments.size()), m_argv.data(), m_window);
        return *m_window;
    }
    std::vector<std::string> argvAfterwards() const
    {
        std::vector<std::string> all;
        for (size_t i = 1; m_argv[i]; i++)
            all.emplace_back(m_argv[i]);
        return all;
    }

private:
    std::vector<std::string> m_arguments;
    std::vector<char *> m_argv;
    MainWindow *m_window = nullptr;
};

} // namespace

TEST_F(CommandLine, EachOptionHasItsField)
{
    const MainWindow &window =
        parse({"-s", "ann@x.org", "-r", "1", "-v", "arm64", "-t", "true", "-u", "ras", "-p", "/home/u", "-n", "CODE"});
    EXPECT_STREQ(window.email, "ann@x.org");
    EXPECT_STREQ(window.rolechange, "1");
    EXPECT_STREQ(window.sysVersion, "arm64");
    EXPECT_STREQ(window.demoSession, "true");
    EXPECT_STREQ(window.urs, "ras");
    EXPECT_STREQ(window.homeDir, "/home/u");
    EXPECT_STREQ(window.productName, "CODE");
}

TEST_F(CommandLine, WithoutOptionsTheDefaultsStay)
{
    const MainWindow &window = parse({});
    EXPECT_EQ(window.email, nullptr);
    EXPECT_STREQ(window.rolechange, "0");
    EXPECT_EQ(window.sysVersion, nullptr);
    EXPECT_EQ(window.demoSession, nullptr);
    EXPECT_EQ(window.urs, nullptr);
    EXPECT_STREQ(window.homeDir, "");
    EXPECT_STREQ(window.productName, "Brindle");
    EXPECT_STREQ(window.productWindowTitle, "Brindle");
}

TEST_F(CommandLine, TheProductCodeDecidesTheTitle)
{
    struct Case {
        const char *code, *title;
        bool isCloud;
    };
    const Case cases[] = {
        {"FLEET_CLOUD", "Ostrel Fleet Console", true},
        {"REACH_CLOUD", "Ostrel Reach  ", true}, // two blanks at the end
        {"Brindle", "Brindle", false},
        {"fleet_cloud", "Brindle", false},
        {"FLEET_CLOUD ", "Brindle", false},
        {"", "Brindle", false},
        {"%n%s", "Brindle", false},
    };
    for (const Case &each : cases) {
        const MainWindow &window = parse({"-n", each.code});
        EXPECT_STREQ(window.productWindowTitle, each.title) << each.code;
        EXPECT_EQ(isCloudProduct(&window), each.isCloud) << each.code;
    }
}

TEST_F(CommandLine, ALaterRepetitionWins)
{
    const MainWindow &window = parse({"-u", "ras", "-s", "first", "-u", "oreach", "-s", "second"});
    EXPECT_STREQ(window.urs, "oreach");
    EXPECT_STREQ(window.email, "second");
}

TEST_F(CommandLine, WhatItDoesNotKnowIsIgnored)
{
    const MainWindow &window = parse({"-x", "-z", "stray", "-u", "ras", "another", "-Q", "-s", "ann"});
    EXPECT_STREQ(window.urs, "ras");
    EXPECT_STREQ(window.email, "ann");
    EXPECT_STREQ(window.homeDir, "");
}

TEST_F(CommandLine, StrayArgumentsAreIgnoredInAStrictEnvironmentToo)
{
    setenv("POSIXLY_CORRECT", "1", 1);
    EXPECT_STREQ(parse({"stray", "-u", "ras", "more", "-s", "ann"}).email, "ann");
    unsetenv("POSIXLY_CORRECT");
}

TEST_F(CommandLine, KeepsItsOrderForTheToolkit)
{
    parse({"stray", "-u", "ras", "more"});
    EXPECT_THAT(argvAfterwards(), ::testing::ElementsAre("stray", "-u", "ras", "more"));
}

TEST_F(CommandLine, EmptyValuesAreKept)
{
    const MainWindow &window = parse({"-u", "", "-s", "", "-p", "", "-n", "", "-r", ""});
    for (const char *const value : {window.urs, window.email, window.homeDir, window.productName, window.rolechange})
        EXPECT_STREQ(value, "");
}

TEST_F(CommandLine, AValueMayFollowItsOptionAtOnce)
{
    const MainWindow &window = parse({"-uras", "-s=x", "-p-n"});
    EXPECT_STREQ(window.urs, "ras");
    EXPECT_STREQ(window.email, "=x");
    EXPECT_STREQ(window.homeDir, "-n");
}

TEST_F(CommandLine, AnOptionTakesTheNextArgumentWhateverItIs)
{
    const MainWindow &window = parse({"-u", "-s", "ann"});
    EXPECT_STREQ(window.urs, "-s");
    EXPECT_EQ(window.email, nullptr);
}

TEST_F(CommandLine, ALoneLastOptionIsDropped)
{
    const MainWindow &window = parse({"-s", "ann", "-u"});
    EXPECT_STREQ(window.email, "ann");
    EXPECT_EQ(window.urs, nullptr);
}

TEST_F(CommandLine, ALongOptionIsReadLetterByLetter)
{
    EXPECT_STREQ(parse({"--display=:1"}).email, "play=:1");
}

TEST_F(CommandLine, TwoDashesEndTheOptions)
{
    const MainWindow &window = parse({"-s", "ann", "--", "-u", "ras"});
    EXPECT_STREQ(window.email, "ann");
    EXPECT_EQ(window.urs, nullptr);
}

TEST_F(CommandLine, IsNotComplainedAbout)
{
    ::testing::internal::CaptureStderr();
    parse({"-x", "-u"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}
