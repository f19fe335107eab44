// What a technician does becomes a script that does it again.

#include "agentSimulator/scriptRecording.h"
#include "agentSimulator/script.h"

#include <gtest/gtest.h>

#include <string>

using namespace agentSimulator;
using namespace std::chrono_literals;

TEST(ScriptRecording, KeepsTheOrderAndThePausesOfCommands)
{
    ScriptRecording recording;
    recording.start(false);
    std::string script = recording.addCommand("ping on", 5000ms);
    script += recording.addCommand("send sessionStatus Connected", 6200ms);
    script += recording.addCommand("techname John Smith", 6200ms);
    EXPECT_EQ(script, "ping on\nwait 1200\nsend sessionStatus Connected\ntechname John Smith\n");
    EXPECT_EQ(parseScript(script).error, "");
}

TEST(ScriptRecording, AddsNothingWhileItIsOff)
{
    ScriptRecording recording;
    EXPECT_EQ(recording.addCommand("ping on", 1ms), "");
    recording.start(true);
    recording.stop();
    EXPECT_EQ(recording.addCommand("ping on", 2ms), "");
    EXPECT_EQ(recording.addReceived("buttonClicked stop", 3ms), "");
}

TEST(ScriptRecording, BeginsAnewWithoutThePauseInBetween)
{
    ScriptRecording recording;
    recording.start(false);
    recording.addCommand("ping on", 1ms);
    recording.stop();
    recording.start(false);
    EXPECT_EQ(recording.addCommand("ping off", 9000ms), "ping off\n");
}

TEST(ScriptRecording, WaitsForTheCustomerWhenItIsToldTo)
{
    ScriptRecording recording;
    recording.start(true);
    std::string script = recording.addCommand("send dialogPrompt command 41", 1000ms);
    script += recording.addReceived("dialogResponse dialog_position command 1 2 3 4", 1500ms);
    script += recording.addReceived("dialogResponse delete_dialog camera ", 4000ms);
    script += recording.addCommand("send exit", 4100ms);
    EXPECT_EQ(script, "send dialogPrompt command 41\n"
                      "expect dialogResponse delete_dialog camera\\x20 timeout 60000\n"
                      "wait 100\nsend exit\n");
    const ParsedScript parsed = parseScript(script);
    ASSERT_EQ(parsed.error, "");
    EXPECT_EQ(parsed.commands.at(1).text, "dialogResponse delete_dialog camera ");
}

TEST(ScriptRecording, HearsNothingOfTheCustomerOtherwise)
{
    ScriptRecording recording;
    recording.start(false);
    EXPECT_EQ(recording.addReceived("buttonClicked stop", 1ms), "");
}
