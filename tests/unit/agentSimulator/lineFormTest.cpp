// Filled-in forms as texts on the wire and as script commands.

#include "agentSimulator/lineForm.h"
#include "agentSimulator/command.h"
#include "agentSimulator/lineTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace agentSimulator;

namespace
{

const InboundLine &lineTitled(const std::string &title)
{
    for (const InboundLine &line : inboundLines())
        if (line.title == title)
            return line;
    ADD_FAILURE() << "no line titled " << title;
    return inboundLines().front();
}

std::string playedText(const std::string &command)
{
    const ParsedLine parsed = parseLine(command);
    EXPECT_TRUE(parsed.command) << parsed.error;
    return parsed.command ? parsed.command->text : "";
}

} // namespace

TEST(LineForm, PutsTheValuesOnTheWireAsThePageSays)
{
    struct Case {
        const char *title;
        std::vector<std::string> values;
        const char *text;
    };
    const Case cases[] = {
        {"Connected", {}, "sessionStatus Connected\n"},
        {"Technician's name", {"John Smith"}, "sessionStatus TECH-NAME John%20Smith\n"},
        {"Somebody joins", {"John Smith", "41", "false"}, "sessionStatus participantsAdd John%20Smith 41 false\n"},
        {"Control changes hands", {"41", "true"}, "sessionStatus participantsModify 41 true\n"},
        {"Use a feature?",
         {"May I use your camera?", "client9", "camera"},
         "dialogPrompt userConcent TWF5IEkgdXNlIHlvdXIgY2FtZXJhPw== client9 camera\n"},
        {"Join the session?", {""}, "dialogPrompt samecon\n"},
        {"Offer files", {"a b.txt; c.txt;"}, "dialogPrompt fileTransferReceive a%20b.txt c.txt\n"},
        {"Session key", {"123 456"}, "sessionKey 123 456"},
        {"Recording begins", {}, "ONDEMAND START\n"},
        {"Rejected", {}, "initSwap swapRejected\n"},
        {"Chat message",
         {"John Smith", "Good morning!\nShall I have a look?"},
         "chat John Smith\nGood%20morning%21%0AShall%20I%20have%20a%20look%3F"},
        {"Invite to an AR session", {"https://example.org/ar", "John"}, "AR_SESSION https://example.org/ar John\n"},
    };
    for (const Case &row : cases)
        EXPECT_EQ(encodeForm(lineTitled(row.title), row.values), row.text);
}

TEST(LineForm, IsUnderstoodAsTheLineItWasMadeFor)
{
    for (const InboundLine &line : inboundLines()) {
        std::vector<std::string> values;
        for (size_t i = 0; i < line.fieldCount(); i++)
            values.emplace_back(line.fields[i].initial);
        const std::string text = encodeForm(line, values);
        EXPECT_EQ(findInbound(text.substr(0, text.find('\n'))), &line) << text;
    }
}

TEST(LineForm, KeepsAHostileValueInItsField)
{
    EXPECT_EQ(encodeForm(lineTitled("Control the device?"), {"41\nexit"}), "dialogPrompt command 41 exit\n");
    EXPECT_EQ(encodeForm(lineTitled("Technician's name"), {"a b\nexit\xff"}),
              "sessionStatus TECH-NAME a%20b%0Aexit%FF\n");
    EXPECT_EQ(encodeForm(lineTitled("Chat message"), {"John\nexit", "hi"}), "chat John exit\nhi");
}

TEST(LineForm, LetsATechnicianTypeAKeyword)
{
    EXPECT_EQ(encodeForm(lineTitled("Chat message"), {"John", "exit"}), "chat John\n%65xit");
    EXPECT_EQ(encodeForm(lineTitled("Chat message"), {"John", "sessionStatus"}), "chat John\n%73essionStatus");
    EXPECT_EQ(encodeForm(lineTitled("Chat message"), {"John", "exits"}), "chat John\nexits");
}

TEST(LineForm, IsSentByAScriptByteForByte)
{
    for (const std::string &text :
         {std::string("sessionStatus Connected\n"), std::string("chat John\nHello"), std::string("\n"),
          std::string(" a "), std::string(" a \n"), std::string("a\n\n"), std::string("\t\r\\x41\\\n"),
          std::string("\xff\x00 \x01", 4), std::string("sessionKey 1 ")})
        EXPECT_EQ(playedText(scriptCommandFor(text)), text) << scriptCommandFor(text);
}

TEST(LineForm, IsAwaitedByAScriptByteForByte)
{
    for (const std::string line : {"buttonClicked stop", "dialogResponse delete_dialog camera ", "a timeout 5 ", "\\n"})
        EXPECT_EQ(playedText(expectCommandFor(line) + " timeout 60000"), line);
}
