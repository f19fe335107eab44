// The script language: what each command line becomes, and what is refused.

#include "agentSimulator/script.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace agentSimulator;

namespace
{

struct SentText {
    const char *line;
    const char *text; ///< what goes to the companion
};

struct NumberedCommand {
    const char *line;
    CommandKind kind;
    long number;
};

Command parsedCommand(const char *line)
{
    const ParsedLine parsed = parseLine(line);
    EXPECT_TRUE(parsed.command) << line << ": " << parsed.error;
    return parsed.command.value_or(Command{});
}

} // namespace

TEST(SimulatorScript, SendingCommandsBuildTheTextOnTheWire)
{
    const SentText rows[] = {
        {"send sessionStatus Connected", "sessionStatus Connected\n"},
        {"  send a\\tb\\x20  ", "a\tb \n"},
        {"send", "\n"},
        {"sendraw one\\ntwo", "one\ntwo"},
        {"chat Ann Lee | Hello, how are you?", "chat Ann Lee\nHello%2C%20how%20are%20you%3F"},
        {"chat Ann | 1 | 2", "chat Ann\n1%20%7C%202"},
        {"chat Ann | two\\nlines", "chat Ann\ntwo%0Alines"},
        {"techname John Smith", "sessionStatus TECH-NAME John%20Smith\n"},
        {"participant add 42 Ann Lee false", "sessionStatus participantsAdd Ann%20Lee 42 false\n"},
        {"participant add 42 Ann falsetto", "sessionStatus participantsAdd Ann 42 falsetto\n"},
        {"participant add 7 Bob", "sessionStatus participantsAdd Bob 7 true\n"},
        {"participant add 7 true", "sessionStatus participantsAdd true 7 true\n"},
        {"participant delete 42 Ann Lee", "sessionStatus participantsDelete Ann%20Lee 42\n"},
        {"participant modify 42 false", "sessionStatus participantsModify 42 false\n"},
    };
    for (const SentText &row : rows) {
        const Command command = parsedCommand(row.line);
        EXPECT_EQ(command.kind, CommandKind::send) << row.line;
        EXPECT_EQ(command.text, row.text) << row.line;
    }
}

TEST(SimulatorScript, NumbersAndDefaultsAreRead)
{
    const NumberedCommand rows[] = {
        {"wait 250", CommandKind::wait, 250},
        {"ping on", CommandKind::pingOn, 5000},
        {"ping on 200", CommandKind::pingOn, 200},
        {"ping off", CommandKind::pingOff, 0},
        {"answer on", CommandKind::answerOn, 0},
        {"answer off", CommandKind::answerOff, 0},
        {"exit", CommandKind::exit, 0},
        {"exit 3", CommandKind::exit, 3},
        {"kill SIGKILL", CommandKind::kill, SIGKILL},
        {"kill SEGV", CommandKind::kill, SIGSEGV},
        {"kill 15", CommandKind::kill, SIGTERM},
        {"interactive", CommandKind::interactive, 0},
    };
    for (const NumberedCommand &row : rows) {
        const Command command = parsedCommand(row.line);
        EXPECT_EQ(command.kind, row.kind) << row.line;
        EXPECT_EQ(command.number, row.number) << row.line;
    }
}

TEST(SimulatorScript, AnExpectationMayNameItsTimeOut)
{
    const Command plain = parsedCommand("expect buttonClicked stop");
    EXPECT_EQ(plain.text, "buttonClicked stop");
    EXPECT_EQ(plain.number, 10000);
    const Command limited = parsedCommand("expectprefix dialogResponse dialog_position timeout 300");
    EXPECT_EQ(limited.kind, CommandKind::expectPrefix);
    EXPECT_EQ(limited.text, "dialogResponse dialog_position");
    EXPECT_EQ(limited.number, 300);
    EXPECT_EQ(parsedCommand("expect lone timeout").text, "lone timeout");
    EXPECT_EQ(parsedCommand("expect clipboard 2").text, "clipboard 2");
}

TEST(SimulatorScript, ShellCommandsAndPathsStayAsTheyAre)
{
    EXPECT_EQ(parsedCommand("run \"$SHOT\" a\\nb").text, "\"$SHOT\" a\\nb");
    EXPECT_EQ(parsedCommand("sendfile some where/file.bin").text, "some where/file.bin");
}

TEST(SimulatorScript, CommentsAndEmptyLinesAreNothing)
{
    for (const char *line : {"", "   ", "# send exit", "  #x", "\r"}) {
        const ParsedLine parsed = parseLine(line);
        EXPECT_FALSE(parsed.command) << line;
        EXPECT_EQ(parsed.error, "") << line;
    }
}

TEST(SimulatorScript, MistakesAreRefusedWithTheirLine)
{
    for (const char *line : {"sned x",
                             "wait",
                             "wait soon",
                             "wait -1",
                             "wait 5s",
                             "exit 256",
                             "ping",
                             "ping on 0",
                             "answer",
                             "answer yes",
                             "chat Ann hello",
                             "participant add 1",
                             "participant rename 1 x",
                             "kill NOTHING",
                             "kill 0",
                             "interactive now",
                             "send \\q",
                             "expect",
                             "expect timeout 5",
                             "sendfile",
                             "loop"}) {
        const ParsedScript script = parseScript(std::string("# first\nwait 1\n") + line + "\n");
        EXPECT_EQ(script.error.substr(0, 8), "line 3: ") << line;
    }
}

TEST(SimulatorScript, LoopsFindTheirEnds)
{
    const ParsedScript script = parseScript("loop 2\n  send a\n  loop 3\n    send b\n  end\nend\n");
    ASSERT_EQ(script.error, "");
    ASSERT_EQ(script.commands.size(), 6U);
    EXPECT_EQ(script.commands[0].partner, 5U);
    EXPECT_EQ(script.commands[5].partner, 0U);
    EXPECT_EQ(script.commands[2].partner, 4U);
    EXPECT_EQ(script.commands[4].partner, 2U);
    EXPECT_EQ(script.commands[3].line, 4);
}

TEST(SimulatorScript, ALoopWithoutItsOtherEndIsRefused)
{
    EXPECT_EQ(parseScript("loop 2\nsend a\n").error, "line 1: loop without an end");
    EXPECT_EQ(parseScript("send a\nend\n").error, "line 2: end without a loop");
}

TEST(SimulatorScript, TypedProtocolLinesAreToldFromCommands)
{
    EXPECT_TRUE(startsWithCommand("  send x"));
    EXPECT_TRUE(startsWithCommand("exit"));
    EXPECT_FALSE(startsWithCommand("sessionStatus Connected"));
    EXPECT_FALSE(startsWithCommand("sender"));
    EXPECT_FALSE(startsWithCommand(""));
}
