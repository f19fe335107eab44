// The chat thread: from the queue to the transcript and to what waits for the view.

#include "src/Chat/chat.h"
#include "src/IdleThread/chatUpdate.h"
#include "src/main.h"
#include "src/sessionState.h"
#include "tests/support/testSession.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace
{

class ChatReception : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        replace_text(chatWindow->charSender, "1");
    }

    /// Has the chat thread work through the texts and end.
    void receive(const std::vector<std::string> &texts)
    {
        for (const std::string &text : texts)
            pushText(messageQueue, OwnedText(g_strdup(text.c_str())));
        pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
        g_thread_join(g_thread_new("Brindle-checkC", ChatParserfunc, chatWindow));
    }

    /// Repeats an exchange that the turn of a minute ran through.
    void receiveInOneMinute(const std::vector<std::string> &texts)
    {
        struct tm before, after;
        do {
            replace_text(chatWindow->charSender, "1");
            time_data(&before);
            receive(texts);
            time_data(&after);
        } while (before.tm_min != after.tm_min);
    }

    std::string transcript() const { return chatWindow->chatData->str; }

    /// What waits for the view: "sender>text" with "*" in front where a block starts.
    std::vector<std::string> waiting() const
    {
        std::vector<std::string> found;
        for (const GList *each = chatWindow->received.head; each; each = each->next) {
            const auto *const message = static_cast<const ReceivedMessage *>(each->data);
            found.push_back(std::string(message->startsBlock ? "*" : "") + message->sender.get() + ">" +
                            (message->text ? message->text.get() : "(null)"));
        }
        return found;
    }
};

} // namespace

TEST_F(ChatReception, TextIsUnescapedAndKeptWithItsSender)
{
    receive({"Ann Smith\nhello%20world%0A%C3%A9"});
    EXPECT_EQ(waiting(), std::vector<std::string>{"*Ann Smith>hello world\n\u00e9"});
    EXPECT_STREQ(chatWindow->charSender, "Ann Smith");
    EXPECT_STREQ(chatWindow->message, "hello world\n\u00e9");
    EXPECT_TRUE(
        std::regex_match(transcript(), std::regex("\nAnn Smith \\(\\d+:\\d+:\\d+\\) \n \t\t\t hello world\n\u00e9")))
        << transcript();
}

TEST_F(ChatReception, SameNameInAMinuteIsNamedOnce)
{
    receiveInOneMinute({"Ann\none", "Ann\ntwo"});
    const std::vector<std::string> all = waiting();
    ASSERT_GE(all.size(), 2u);
    EXPECT_EQ(all[all.size() - 2], "*Ann>one");
    EXPECT_EQ(all[all.size() - 1], "Ann>two");
    EXPECT_TRUE(std::regex_match(transcript(), std::regex("\nAnn \\(\\d+:\\d+:\\d+\\) \n \t\t\t one\n  \t\t\t two")))
        << transcript();
}

TEST_F(ChatReception, AnotherNameStartsABlockInTheSameMinute)
{
    receiveInOneMinute({"Ann\none", "Bob\ntwo"});
    EXPECT_TRUE(std::regex_match(transcript(),
                                 std::regex("\nAnn \\([0-9:]+\\) \n \t\t\t one\nBob \\([0-9:]+\\) \n \t\t\t two")))
        << transcript();
}

TEST_F(ChatReception, WhatIsBehindASecondLineEndIsNotUsed)
{
    receive({"Ann\nfirst\nsecond\nthird"});
    EXPECT_EQ(waiting(), std::vector<std::string>{"*Ann>first"});
}

TEST_F(ChatReception, TextThatCannotBeReadIsNullAndReplacesTheSender)
{
    for (const char *const text : {"Ann", "Ann\n%zz", "Ann\n%4", "Ann\n%00"}) {
        replace_text(chatWindow->charSender, "1");
        receive({text});
        EXPECT_EQ(waiting().back(), "*Ann>(null)") << text;
        EXPECT_STREQ(chatWindow->charSender, "Ann") << text;
        EXPECT_TRUE(std::regex_match(transcript(), std::regex("\nAnn \\([0-9:]+\\) \n \t\t\t \\(null\\)")))
            << transcript();
    }
}

TEST_F(ChatReception, EmptyTextHasNeitherSenderNorMessage)
{
    receive({""});
    EXPECT_EQ(waiting(), std::vector<std::string>{"*>(null)"});
}

TEST_F(ChatReception, TechnicianCalledOneHasNoNameLineAtFirst)
{
    receive({"1\nhello"});
    EXPECT_EQ(waiting(), std::vector<std::string>{"1>hello"});
}

TEST_F(ChatReception, BytesThatAreNoUtf8StayInTheTranscript)
{
    receive({"A\xffnn\nx%FEy"});
    EXPECT_NE(transcript().find("A\xffnn ("), std::string::npos);
    EXPECT_NE(transcript().find("x\xfey"), std::string::npos);
}

TEST_F(ChatReception, BurstOfTwoThousandLosesNone)
{
    std::vector<std::string> burst;
    for (int i = 0; i < 2000; i++)
        burst.push_back("Ann\nmessage%20" + std::to_string(i));
    receive(burst);
    const std::vector<std::string> all = waiting();
    ASSERT_EQ(all.size(), 2000u);
    for (int i = 0; i < 2000; i++)
        ASSERT_EQ(all[size_t(i)], std::string(i ? "" : "*") + "Ann>message " + std::to_string(i));
}

TEST_F(ChatReception, EndsWithTheSentinelAndLeavesWhatFollows)
{
    pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
    pushText(messageQueue, OwnedText(g_strdup("Ann\nlate")));
    EXPECT_EQ(g_thread_join(g_thread_new("Brindle-checkC", ChatParserfunc, chatWindow)), nullptr);
    EXPECT_TRUE(waiting().empty());
    EXPECT_STREQ(chatWindow->chatData->str, "");
}

TEST_F(ChatReception, ReceivedMessageResetsTheCountOfSentOnes)
{
    pushText(messageQueue, OwnedText(g_strdup("Ann\none")));
    GThread *const thread = g_thread_new("Brindle-checkC", ChatParserfunc, chatWindow);
    ASSERT_TRUE(waitUntil([&] {
        const MutexLock lock(&chatWindow->mutex);
        return chatWindow->chatData && chatWindow->chatData->len > 0;
    }));
    {
        const MutexLock lock(&chatWindow->mutex);
        chatWindow->AgentMessage = 3;
    }
    pushText(messageQueue, OwnedText(g_strdup("Ann\ntwo")));
    pushText(messageQueue, OwnedText(g_strdup(stopSentinel)));
    g_thread_join(thread);
    EXPECT_EQ(chatWindow->AgentMessage, 0);
}
