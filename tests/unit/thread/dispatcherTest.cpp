// What the dispatcher does with a text from the agent, as far as no widget shows it.

#include "src/thread/thread.h"

#include "Logger/logger.h"
#include "src/Dialog/dialog.h"
#include "src/sessionState.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

class Dispatcher : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        g_mutex_init(&mainWindow->mutex);
        g_mutex_init(&mainWindow->PingUiMutex);
        newMessages();
    }
    /// Dispatches these texts and ends the dispatcher.
    void dispatch(const std::vector<std::string> &texts)
    {
        for (const std::string &text : texts)
            pushText(pipeMessageQueue, OwnedText(g_strdup(text.c_str())));
        pushText(pipeMessageQueue, OwnedText(g_strdup(stopSentinel)));
        ThreadData data = {mainWindow, chatWindow, nullptr};
        messageParser(&data);
    }
    /// What was logged since the last call, but for the dispatcher's own end.
    std::vector<std::string> newMessages()
    {
        std::vector<std::string> all = TestSession::newMessages();
        if (!all.empty() && all.back() == "closing thread")
            all.pop_back();
        return all;
    }
    /// What waits for the chat thread.
    static std::vector<std::string> chatTexts()
    {
        std::vector<std::string> all;
        while (auto *const text = static_cast<char *>(g_async_queue_try_pop(messageQueue)))
            all.emplace_back(OwnedText(text).get());
        return all;
    }
};

} // namespace

TEST_F(Dispatcher, APingIsASignOfLife)
{
    struct Case {
        const char *text;
        bool isAlive;
    };
    const Case cases[] = {
        {"PING UI", true},   {"PING UI\n", true}, {"  PING UI \r\n", true}, {"PING UI again", true}, {"ping ui", false},
        {"PING  UI", false}, {"xPING UI", false}, {"PING", false},          {"a\nb\nPING UI", true},
    };
    for (const Case &each : cases) {
        mainWindow->isAlive = false;
        dispatch({each.text});
        EXPECT_EQ(mainWindow->isAlive, each.isAlive) << each.text;
    }
}

TEST_F(Dispatcher, APingIsLoggedButNotAnswered)
{
    dispatch({"PING UI\n"});
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Received Ping UI, sending alive response"));
    EXPECT_EQ(agent->seen(), "");
}

TEST_F(Dispatcher, ExitEndsTheProgram)
{
    dispatch({"exit\n"});
    EXPECT_TRUE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("closing agent"));
}

TEST_F(Dispatcher, ExitInCapitalsEndsTheProgram)
{
    dispatch({" EXIT\r\n"});
    EXPECT_TRUE(quit_requested());
}

TEST_F(Dispatcher, ExitWithAnythingElseDoesNot)
{
    dispatch({"exit now", "exit.", "xexit", "ex it"});
    EXPECT_FALSE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::IsEmpty());
}

TEST_F(Dispatcher, ExitTwiceIsHarmless)
{
    dispatch({"exit\nexit\n", "exit"});
    EXPECT_TRUE(quit_requested());
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("closing agent", "closing agent", "closing agent"));
}

TEST_F(Dispatcher, AChatTextIsHandedOnWhole)
{
    struct Case {
        const char *text;
        std::vector<std::string> pushed;
    };
    const Case cases[] = {
        {"chat hello", {"hello"}},
        {"chat hello\nworld", {"hello\nworld"}},
        {"chat hello\n", {"hello\n"}},
        {"chat   \t hello", {"hello"}},
        {"chat hello  ", {"hello  "}},
        {"chat", {""}},
        {"chat ", {""}},
        {"chat\nhello", {"hello"}},
        {"chatter x", {"er x"}},
        {"chatexit", {"xit"}},
        {"chat a\nchat b", {"a\nchat b", "a\nchat b"}},
        {"PING UI\nchat x", {"UI\nchat x"}},
        {"sessionStatus foo\nchat x", {"onStatus foo\nchat x"}},
        {"\nchat", {""}},
        {"Chat hello", {}},
        {"xchat hello", {}},
    };
    for (const Case &each : cases) {
        dispatch({each.text});
        EXPECT_EQ(chatTexts(), each.pushed) << each.text;
    }
}

TEST_F(Dispatcher, TheFurtherLinesOfAChatTextAreDispatchedAsWell)
{
    dispatch({"chat hello\nPING UI\nexit\n"});
    EXPECT_TRUE(mainWindow->isAlive);
    EXPECT_TRUE(quit_requested());
    EXPECT_THAT(chatTexts(), ::testing::ElementsAre("hello\nPING UI"));
}

TEST_F(Dispatcher, TheSessionKeyIsTheRestOfTheWholeText)
{
    struct Case {
        const char *text, *key;
    };
    const Case cases[] = {
        {"sessionKey abc123", "abc123"},
        {"sessionKey abc\n", "abc\n"},
        {"sessionKey a\nPING UI\n", "a\nPING UI\n"},
        {"sessionKey  two blanks", " two blanks"},
        {"sessionKey", ""},
        {"sessionKey ", ""},
        {"sessionKeyXabc", "abc"},
        {"PING UI\nsessionKey k", "sionKey k"},
        {"\nsessionKey", ""},
    };
    for (const Case &each : cases) {
        dispatch({each.text});
        EXPECT_STREQ(chatWindow->sessionKey, each.key) << each.text;
    }
}

TEST_F(Dispatcher, AnotherSpellingIsNoSessionKey)
{
    dispatch({"sessionkey abc", "xsessionKey abc", "session"});
    EXPECT_EQ(chatWindow->sessionKey, nullptr);
}

TEST_F(Dispatcher, AChatLineBehindASessionKeyTakesBothFromTheWholeText)
{
    dispatch({"sessionKey k\nchat x"});
    EXPECT_STREQ(chatWindow->sessionKey, "k\nchat x");
    EXPECT_THAT(chatTexts(), ::testing::ElementsAre("onKey k\nchat x"));
}

TEST_F(Dispatcher, EmptyLinesAreIgnored)
{
    setDebugMode(true);
    dispatch({"", "\n", " \n\t\r\n   \n", " "});
    EXPECT_THAT(newMessages(), ::testing::IsEmpty());
}

TEST_F(Dispatcher, AnUnknownLineLeavesNoTrace)
{
    dispatch({"unknown line %s%n\n"});
    EXPECT_THAT(newMessages(), ::testing::IsEmpty());
    setDebugMode(true);
    dispatch({"unknown line %s%n\n"});
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Unhandled message unknown line %s%n"));
}

TEST_F(Dispatcher, KeywordsOfPrefixRowsAreCaseSensitive)
{
    setDebugMode(true);
    for (const char *const line : {"DIALOGPROMPT x", "SessionStatus x", "initswap x", "CLIPBOARD", "ondemand start",
                                   "Ondemand Stop", "ar_session x", "not32 x", "connectionLost.", "blockInput 1"}) {
        dispatch({line});
        EXPECT_THAT(newMessages(), ::testing::ElementsAre(std::string("Unhandled message ") + line));
    }
}

TEST_F(Dispatcher, LinesActInTheirOrder)
{
    dispatch({"sessionStatus foo\ndialogPrompt bar\n"});
    const std::vector<std::string> log = newMessages();
    ASSERT_GE(log.size(), 3u);
    EXPECT_EQ(log[0], "Session Status Message recived ");
    EXPECT_EQ(log[1], "Unhandled message  foo");
    EXPECT_EQ(log[2], "Dialog Prompt Message recived ");
}

TEST_F(Dispatcher, TheFirstStatusOrPromptSaysThatTheAgentIsThere)
{
    for (const char *const line : {"PING UI", "initSwap foo", "chat x", "sessionKey x"}) {
        dispatch({line});
        EXPECT_FALSE(mainWindow->isConnected) << line;
    }
    for (const char *const line : {"sessionStatus foo", "dialogPrompt foo", "sessionStatus", "dialogPrompt"}) {
        mainWindow->isConnected = false;
        dispatch({line});
        EXPECT_TRUE(mainWindow->isConnected) << line;
    }
}

TEST_F(Dispatcher, ASwapOutcomeIsHandedOn)
{
    dispatch({"initSwap foo bar\n"});
    EXPECT_THAT(newMessages(),
                ::testing::ElementsAre("Swap screen status message recived", "unhandled message initSwap foo bar"));
}

TEST_F(Dispatcher, TheStopTextEndsItWithoutAnother)
{
    dispatch({"application-stop", "PING UI"});
    EXPECT_FALSE(mainWindow->isAlive);
    EXPECT_EQ(logMessages().back(), "closing thread");
}

TEST_F(Dispatcher, AtItsEndTheAgentsPipeIsDeleted)
{
    dispatch({});
    EXPECT_FALSE(home.has(".brindle/temp/Status"));
    EXPECT_TRUE(home.has(".brindle/temp/myfifo"));
}

TEST_F(Dispatcher, TheStopTextCountsOnlyAlone)
{
    dispatch({"application-stop\n", " application-stop", "APPLICATION-STOP", "x\napplication-stop", "PING UI"});
    EXPECT_TRUE(mainWindow->isAlive);
}

TEST_F(Dispatcher, WithoutPermissionToRunItTakesNoText)
{
    g_threadChecker = false;
    dispatch({"PING UI"});
    EXPECT_FALSE(mainWindow->isAlive);
    EXPECT_EQ(g_async_queue_length(pipeMessageQueue), 2);
    EXPECT_FALSE(home.has(".brindle/temp/Status"));
}

TEST_F(Dispatcher, AnOldJoinMessageIsForgotten)
{
    g_joinConfirmationMessage = g_strdup("old");
    dispatch({});
    EXPECT_EQ(g_joinConfirmationMessage, nullptr);
}

TEST_F(Dispatcher, HostileBytesChangeNothing)
{
    std::string everyByte;
    for (int value = 1; value < 256; value++)
        everyByte += char(value);
    dispatch({everyByte, "%n%n%s", std::string(1000000, '%'), std::string(100000, '\n'), "\xff\xfe", "PING UI"});
    EXPECT_TRUE(mainWindow->isAlive);
    EXPECT_THAT(newMessages(), ::testing::ElementsAre("Received Ping UI, sending alive response"));
}

TEST_F(Dispatcher, AHundredThousandLinesOfOneTextAreAllHandled)
{
    std::string text;
    for (int i = 0; i < 100000; i++)
        text += "initSwap foo\n";
    dispatch({text, "PING UI"});
    EXPECT_TRUE(mainWindow->isAlive);
    EXPECT_EQ(countLogMessages(logPath(), "unhandled message initSwap foo"), 100000);
}
