// What the console says about lines that went over the pipes.

#include "agentSimulator/lineTable.h"

#include <gtest/gtest.h>

#include <string>

using namespace agentSimulator;

TEST(LineMeaning, PutsTheValuesOfALineIntoItsMeaning)
{
    struct Case {
        const char *line;
        const char *meaning;
    };
    constexpr Case cases[] = {
        {"buttonClicked stop", "The customer pauses sharing"},
        {"buttonClicked revokeControl 41", "The customer takes control away from participant 41"},
        {"dialogResponse controlApproved 42", "Participant 42 may control the device"},
        {"dialogResponse concentuser approved client9 camera false", "camera is allowed to client9; remember: false"},
        {"dialogResponse FileName %2Fhome%2Fann%2Fa%20b.txt 7", "One file for 7: /home/ann/a b.txt"},
        {"zip_folder FileName%20%252Ftmp%252Fa%20%252Ftmp%252Fb 7", "Several files for 7: FileName /tmp/a /tmp/b"},
        {"dialogResponse dialog_position samecon 1 2 300 400", "The dialog samecon stands at 1, 2 and is 300 by 400"},
        {"dialogResponse delete_dialog camera ", "The dialog camera has gone"},
        {"chat Yes%2C%20please.%0A", "The customer writes: Yes, please.\\n"},
    };
    for (const Case &row : cases)
        EXPECT_EQ(describeReceived(row.line), row.meaning);
}

TEST(LineMeaning, SaysNothingAboutWhatTheCompanionDoesNotSend)
{
    for (const char *line : {"", " ", "buttonClicked", "buttonClicked stop now", "buttonClicked STOP", "stop",
                             "dialogResponse controlApproved", "clipboard 4"})
        EXPECT_EQ(describeReceived(line), "") << line;
}

TEST(LineMeaning, ShowsHostileValuesAsOneHarmlessLine)
{
    EXPECT_EQ(describeReceived("dialogResponse FTAccept %0A%ff<b>%s"), "The files are to be saved in \\n\\xFF<b>%s");
}

TEST(LineMeaning, NamesWhatWasSentAsTheProgramUnderstandsIt)
{
    struct Case {
        const char *text;
        const char *title;
    };
    constexpr Case cases[] = {
        {"sessionStatus Connected\n", "Connected"},
        {"sessionStatus CONNECTED\n", "Connected"},
        {"dialogPrompt command 41\n", "Control the device?"},
        {"chat John\nGood%20morning", "Chat message"},
        {"EXIT\n", "End the companion"},
        {"  exit  \n", "End the companion"},
        {"exit now\n", ""},
        {"ping ui\n", ""},
        {"sessionStatus foo\n", ""},
        {"", ""},
    };
    for (const Case &row : cases)
        EXPECT_EQ(describeSent(row.text), row.title) << row.text;
}
