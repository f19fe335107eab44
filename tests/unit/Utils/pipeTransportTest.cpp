// What the agent reads of the texts that are sent to it, and what a sender notices when it does not read.

#include "src/Utils/pipeTransport.h"

#include "src/support.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace
{

class PipeWriter : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        pipe = makeFifo(home.file("pipe"));
    }
    void TearDown() override
    {
        for (std::thread &writer : m_writers)
            writer.join();
        TestSession::TearDown();
    }

    /// Sends from a thread of its own; `finished` counts those that are through.
    void sendFromThread(const std::string &text)
    {
        m_writers.emplace_back([this, text] {
            pipewriter(pipe.c_str(), text.c_str());
            finished++;
        });
    }
    static bool isWriterAtWork()
    {
        if (!g_mutex_trylock(&pipeMutex))
            return true;
        g_mutex_unlock(&pipeMutex);
        return false;
    }
    int openReadEnd() const { return open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }
    /// A read end behind which the writer has filled the pipe.
    int openAndWaitUntilFull() const
    {
        const int end = openReadEnd();
        const int capacity = fcntl(end, F_GETPIPE_SZ);
        EXPECT_TRUE(waitUntil([&] {
            int waiting = 0;
            return ioctl(end, FIONREAD, &waiting) == 0 && waiting == capacity;
        }));
        return end;
    }
    static size_t openDescriptors()
    {
        size_t count = 0;
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
            count++;
        return count;
    }

    std::string pipe;
    std::atomic<int> finished = 0;

private:
    std::vector<std::thread> m_writers;
};

} // namespace

TEST_F(PipeWriter, ATextArrivesAsItIs)
{
    const PipeReader reader(pipe);
    for (const char *const text : {"SendSessionDetails\n", "no newline", "%s%n\n", "\xff\xfe\n", "Grüße\n"}) {
        pipewriter(pipe.c_str(), text);
        EXPECT_TRUE(waitUntil([&] { return reader.seen().ends_with(text); }, [&] { return reader.seen(); }));
    }
}

TEST_F(PipeWriter, EveryTextEndsWithItsOwnEndOfFile)
{
    pipe = uiPipe();
    for (const char *const text : {"one\n", "two\n"}) {
        pipewriter(pipe.c_str(), text);
        ASSERT_TRUE(waitUntil([&] { return agent->seen().ends_with(text); }, [&] { return agent->seen(); }));
    }
    EXPECT_THAT(agent->texts(), ::testing::ElementsAre("one\n", "two\n"));
}

TEST_F(PipeWriter, WaitsUntilTheAgentReads)
{
    sendFromThread("late\n");
    ASSERT_TRUE(waitUntil(isWriterAtWork));
    EXPECT_EQ(finished, 0);
    const PipeReader reader(pipe);
    EXPECT_TRUE(waitUntil([&] { return reader.seen() == "late\n"; }, [&] { return reader.seen(); }));
    EXPECT_TRUE(waitUntil([&] { return finished == 1; }));
}

TEST_F(PipeWriter, LinesOfTwoThreadsNeverInterleave)
{
    constexpr size_t lineLength = 6000; // more than a pipe takes in one piece
    constexpr int each = 100;
    const PipeReader reader(pipe);
    auto sendMany = [&](char letter) {
        const std::string line = std::string(lineLength, letter) + "\n";
        for (int i = 0; i < each; i++)
            pipewriter(pipe.c_str(), line.c_str());
    };
    std::thread first(sendMany, 'a'), second(sendMany, 'b');
    first.join();
    second.join();
    ASSERT_TRUE(waitUntil([&] { return reader.lines().size() == 2 * each; }));
    for (const std::string &line : reader.lines())
        EXPECT_EQ(line, std::string(lineLength, line.at(0)));
}

TEST_F(PipeWriter, AMegabyteReachesASlowAgentWhole)
{
    const std::string text = std::string(1000000, 'x') + "\n";
    sendFromThread(text);
    const int end = openAndWaitUntilFull();
    std::string received;
    char chunk[777];
    EXPECT_TRUE(waitUntil([&] {
        ssize_t length;
        while ((length = read(end, chunk, sizeof chunk)) > 0)
            received.append(chunk, size_t(length));
        return received.size() == text.size();
    }));
    EXPECT_EQ(received, text);
    close(end);
}

TEST_F(PipeWriter, AnAgentThatClosesEarlyCostsOneLoggedText)
{
    drainMainLoop(); // opens what the main loop itself needs
    const size_t before = openDescriptors();
    sendFromThread(std::string(1000000, 'x'));
    close(openAndWaitUntilFull());
    ASSERT_TRUE(waitUntil([&] { return finished == 1; }));
    EXPECT_TRUE(logHas("Error opening file " + pipe + ": Broken pipe"));
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(PipeWriter, TheTextAfterALostOneArrivesAlone)
{
    sendFromThread(std::string(1000000, 'x'));
    close(openAndWaitUntilFull());
    ASSERT_TRUE(waitUntil([&] { return finished == 1; }));
    const PipeReader reader(pipe);
    pipewriter(pipe.c_str(), "next\n");
    EXPECT_TRUE(waitUntil([&] { return reader.seen() == "next\n"; }, [&] { return reader.seen(); }));
}

TEST_F(PipeWriter, APipeThatCanNotBeOpenedIsLogged)
{
    pipewriter(home.file("missing").c_str(), "lost\n");
    pipewriter(home.path().c_str(), "lost\n");
    EXPECT_TRUE(logHas("error opening file No such file or directory"));
    EXPECT_TRUE(logHas("error opening file Is a directory"));
}

TEST_F(PipeWriter, ANormalSendLogsNothing)
{
    const size_t before = logMessages().size();
    pipewriter(uiPipe().c_str(), "fine\n");
    EXPECT_EQ(logMessages().size(), before);
}

TEST_F(PipeWriter, GivesUpWaitingForAnAgentWhenTheProgramEnds)
{
    sendFromThread("nobody reads\n");
    ASSERT_TRUE(waitUntil(isWriterAtWork));
    request_quit();
    EXPECT_TRUE(waitUntil([&] { return finished == 1; }, {}, 2000));
    EXPECT_TRUE(logHas("error opening file Operation canceled"));
}

TEST_F(PipeWriter, GivesUpAStuckTextWhenTheProgramEnds)
{
    sendFromThread(std::string(1000000, 'x'));
    const int end = openAndWaitUntilFull();
    request_quit();
    EXPECT_TRUE(waitUntil([&] { return finished == 1; }, {}, 2000));
    EXPECT_TRUE(logHas("Error opening file " + pipe + ": Operation canceled"));
    close(end);
}

TEST_F(PipeWriter, StillSendsToAListeningAgentWhenTheProgramEnds)
{
    const PipeReader reader(pipe);
    request_quit();
    pipewriter(pipe.c_str(), "last words\n");
    EXPECT_TRUE(waitUntil([&] { return reader.seen() == "last words\n"; }, [&] { return reader.seen(); }));
}
