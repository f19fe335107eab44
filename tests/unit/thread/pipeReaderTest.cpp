// What becomes of the bytes that the agent writes into its pipe.

#include "src/thread/thread.h"

#include "src/sessionState.h"
#include "src/Utils/pipeTransport.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <thread>

namespace
{

class PipeReception : public TestSession
{
protected:
    void TearDown() override
    {
        stop();
        TestSession::TearDown();
    }
    void start()
    {
        m_reader = std::thread([this] {
            infiniteChecker(nullptr);
            hasEnded = true;
        });
    }
    /// Ends the reader as the program's end does, with one more writer that comes.
    void stop()
    {
        g_threadChecker = false;
        if (!m_reader.joinable())
            return;
        EXPECT_TRUE(waitUntil([&] {
            if (!hasEnded)
                sendText(agentPipe(), "", 1);
            return hasEnded.load();
        }));
        m_reader.join();
    }
    /// The next text of the queue; "(none)" when none comes.
    static std::string nextText()
    {
        const OwnedText text(static_cast<char *>(g_async_queue_timeout_pop(pipeMessageQueue, 10 * G_USEC_PER_SEC)));
        return text ? text.get() : "(none)";
    }
    /// The log's messages from the start of the reader on.
    std::vector<std::string> log() const
    {
        std::vector<std::string> all = logMessages();
        all.erase(all.begin(), std::find(all.begin(), all.end(), "User Path Set") + 1);
        return all;
    }
    ::testing::AssertionResult endsByItself() const
    {
        return waitUntil([&] { return hasEnded.load(); });
    }

    std::atomic<bool> hasEnded = false;

private:
    std::thread m_reader;
};

} // namespace

TEST_F(PipeReception, OneWriterSessionIsOneText)
{
    start();
    for (const char *const text : {"sessionStatus Connected\nPING UI\n", "no newline", "\n", "exit\n\n"}) {
        ASSERT_TRUE(sendText(agentPipe(), text));
        EXPECT_EQ(nextText(), text);
    }
}

TEST_F(PipeReception, EachRoundIsLogged)
{
    start();
    for (int i = 0; i < 2; i++) {
        ASSERT_TRUE(sendText(agentPipe(), "x"));
        EXPECT_EQ(nextText(), "x");
    }
    EXPECT_THAT(log(), ::testing::ElementsAre("file opened properly ", "file opened properly "));
}

TEST_F(PipeReception, AnEmptySessionIsAnEmptyText)
{
    start();
    ASSERT_TRUE(sendText(agentPipe(), ""));
    EXPECT_EQ(nextText(), "");
}

TEST_F(PipeReception, ASessionInSeveralWritesStaysOneText)
{
    start();
    FILE *const pipe = fopen(agentPipe().c_str(), "w");
    ASSERT_NE(pipe, nullptr);
    for (const char *const part : {"sessionStatus ", "Conn", "ected\n"}) {
        fputs(part, pipe);
        fflush(pipe);
    }
    EXPECT_LE(g_async_queue_length(pipeMessageQueue), 0);
    fclose(pipe);
    EXPECT_EQ(nextText(), "sessionStatus Connected\n");
}

TEST_F(PipeReception, BytesThatAreNoTextComeThroughAndHarmNothing)
{
    start();
    for (const char *const text : {"\xff\xfe\n", "cut \xE6\x97", "\xC3(\n", "fine\n"}) {
        ASSERT_TRUE(sendText(agentPipe(), text));
        EXPECT_EQ(nextText(), text);
    }
}

TEST_F(PipeReception, ANulNeitherCutsATextNorForgesAKeyword)
{
    start();
    ASSERT_TRUE(sendText(agentPipe(), std::string("ex\0it\nPING UI\n", 14)));
    const std::string text = nextText();
    EXPECT_THAT(text, ::testing::EndsWith("it\nPING UI\n"));
    EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("exit")));
    ASSERT_TRUE(sendText(agentPipe(), "next"));
    EXPECT_EQ(nextText(), "next");
}

TEST_F(PipeReception, AMegabyteIsOneText)
{
    start();
    std::string text(1000000, 'x');
    for (size_t i = 0; i < text.size(); i += 100)
        text[i] = '\n';
    ASSERT_TRUE(sendText(agentPipe(), text));
    EXPECT_EQ(nextText(), text);
}

TEST_F(PipeReception, TwentyThousandTextsInARowAreAllThere)
{
    constexpr int count = 20000;
    start();
    std::string expected, received;
    for (int i = 0; i < count; i++) {
        const std::string line = "line " + std::to_string(i) + "\n";
        ASSERT_TRUE(sendText(agentPipe(), line)) << i;
        expected += line;
    }
    while (received.size() < expected.size()) {
        const std::string text = nextText();
        ASSERT_NE(text, "(none)") << received.size() << " of " << expected.size() << " bytes came";
        received += text;
    }
    EXPECT_EQ(received, expected);
}

TEST_F(PipeReception, AMissingPipeEndsReceptionAtOnce)
{
    ASSERT_EQ(unlink(agentPipe().c_str()), 0);
    start();
    ASSERT_TRUE(endsByItself());
    EXPECT_THAT(log(), ::testing::ElementsAre("error reading pipe No such file or directory", "Closing thread"));
}

TEST_F(PipeReception, AFolderInPlaceOfThePipeEndsReception)
{
    ASSERT_EQ(unlink(agentPipe().c_str()), 0);
    home.makeFolder(".brindle/temp/Status");
    start();
    ASSERT_TRUE(endsByItself());
    EXPECT_THAT(log(),
                ::testing::ElementsAre("file opened properly ", "error occured while writing pipes",
                                       "Error has occured", "error reading pipe Is a directory", "Closing thread"));
    EXPECT_EQ(g_async_queue_length(pipeMessageQueue), 0);
}

TEST_F(PipeReception, AFileInPlaceOfThePipeIsNotReadInACircle)
{
    ASSERT_EQ(unlink(agentPipe().c_str()), 0);
    home.write(".brindle/temp/Status", "PING UI\n");
    start();
    ASSERT_TRUE(endsByItself());
    EXPECT_EQ(nextText(), "PING UI\n");
    EXPECT_EQ(g_async_queue_length(pipeMessageQueue), 0);
}

TEST_F(PipeReception, EndsAtTheNextTextOnceTheProgramEnds)
{
    start();
    ASSERT_TRUE(sendText(agentPipe(), "x"));
    EXPECT_EQ(nextText(), "x");
    stop();
    EXPECT_EQ(log().back(), "Closing thread");
}
