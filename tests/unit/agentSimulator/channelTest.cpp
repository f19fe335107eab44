// The agent's end of both FIFOs, over real FIFOs with the companion's side written out in plain calls.

#include "agentSimulator/channel.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace agentSimulator;
using namespace std::chrono_literals;

namespace
{

/// One companion-style cycle: blocking open, write, close.
void writeOnce(const std::string &path, const std::string &text)
{
    const int pipe = open(path.c_str(), O_WRONLY);
    ASSERT_GE(pipe, 0);
    EXPECT_EQ(write(pipe, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(pipe);
}

/// Blocking open, read to end of file, close.
std::string readOnce(const std::string &path)
{
    const int pipe = open(path.c_str(), O_RDONLY);
    std::string text;
    char buffer[4096];
    for (ssize_t count; (count = read(pipe, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(count));
    close(pipe);
    return text;
}

/// A TextReader on its own thread and what it has delivered so far.
class Listener
{
public:
    explicit Listener(const std::string &path)
        : m_reader(path, m_ending, [this](const std::string &text) { take(text); }),
          m_thread([this] { m_reader.run(); })
    {
    }
    ~Listener() { stop(); }

    void stop()
    {
        m_ending.request(0, "test");
        if (m_thread.joinable())
            m_thread.join();
    }

    /// Everything that arrived, once it has this size; less when that takes too long.
    std::string allOfSize(size_t size)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, 20s, [&] { return m_all.size() >= size; });
        return m_all;
    }

    size_t texts()
    {
        const std::lock_guard lock(m_mutex);
        return m_texts;
    }

private:
    void take(const std::string &text)
    {
        const std::lock_guard lock(m_mutex);
        m_all += text;
        m_texts++;
        m_changed.notify_all();
    }

    Ending m_ending;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_all;
    size_t m_texts = 0;
    TextReader m_reader;
    std::thread m_thread;
};

class SimulatorChannel : public testing::Test
{
protected:
    SimulatorChannel()
    {
        std::string whyNot;
        EXPECT_TRUE(createPipes(folder.path(), whyNot)) << whyNot;
        m_oldHandler = signal(SIGPIPE, SIG_IGN);
    }
    ~SimulatorChannel() override { signal(SIGPIPE, m_oldHandler); }

    const TemporaryFolder folder;
    const PipePaths paths = pipePathsIn(folder.path());
    Recorder recorder{folder.file("record")};
    Ending ending;

private:
    sighandler_t m_oldHandler = SIG_DFL;
};

std::string numberedTexts(int count)
{
    std::string all;
    for (int i = 0; i < count; i++)
        all += "text " + std::to_string(i) + "\n";
    return all;
}

} // namespace

TEST_F(SimulatorChannel, NoneOfTwoThousandTextsOfTheCompanionIsLost)
{
    Listener listener(paths.fromCompanion);
    for (int i = 0; i < 2000; i++)
        writeOnce(paths.fromCompanion, "text " + std::to_string(i) + "\n");
    const std::string all = numberedTexts(2000);
    EXPECT_EQ(listener.allOfSize(all.size()), all);
}

TEST_F(SimulatorChannel, NoneOfTwoThousandTextsToTheCompanionIsLost)
{
    Listener companion(paths.toCompanion);
    TextWriter writer(paths.toCompanion, recorder, ending, 10s);
    for (int i = 0; i < 2000; i++)
        ASSERT_TRUE(writer.send("text " + std::to_string(i) + "\n"));
    const std::string all = numberedTexts(2000);
    EXPECT_EQ(companion.allOfSize(all.size()), all);
}

TEST_F(SimulatorChannel, EveryTextIsOneOpenWriteCloseCycle)
{
    TextWriter writer(paths.toCompanion, recorder, ending, 10s);
    for (const char *text : {"sessionStatus Connected\n", "chat Ann\nhello", "PING UI\n"}) {
        std::thread sending([&] { EXPECT_TRUE(writer.send(text)); });
        EXPECT_EQ(readOnce(paths.toCompanion), text); // comes back only when the writer has closed
        sending.join();
    }
}

TEST_F(SimulatorChannel, ATextIsDeliveredWholeHoweverSlowlyItIsWritten)
{
    Listener listener(paths.fromCompanion);
    const int pipe = open(paths.fromCompanion.c_str(), O_WRONLY);
    ASSERT_EQ(write(pipe, "first ", 6), 6);
    EXPECT_EQ(write(pipe, std::string(300000, 'x').c_str(), 300000),
              300000); // more than the FIFO holds: it is being read
    EXPECT_EQ(listener.texts(), 0U);
    close(pipe);
    EXPECT_EQ(listener.allOfSize(300006).size(), 300006U);
    EXPECT_EQ(listener.texts(), 1U);
}

TEST_F(SimulatorChannel, ASessionThatEndsStillTakesWhatIsInThePipe)
{
    const int keepsOpen = open(paths.fromCompanion.c_str(), O_RDONLY | O_NONBLOCK);
    writeOnce(paths.fromCompanion, "last words\n");
    std::string received;
    TextReader reader(paths.fromCompanion, ending, [&](const std::string &text) {
        received += text;
        ending.request(0, "test");
        writeOnce(paths.fromCompanion, "after the end\n");
    });
    reader.run();
    close(keepsOpen);
    EXPECT_EQ(received.substr(0, 11), "last words\n");
}

TEST_F(SimulatorChannel, APipeThatAppearsLaterIsRead)
{
    Listener listener(folder.file("later"));
    ASSERT_EQ(mkfifo(folder.file("later").c_str(), 0600), 0);
    writeOnce(folder.file("later"), "hello\n");
    EXPECT_EQ(listener.allOfSize(6), "hello\n");
}

TEST_F(SimulatorChannel, APipeThatACompanionMadeAnewIsRead)
{
    Listener listener(paths.fromCompanion);
    writeOnce(paths.fromCompanion, "old\n");
    EXPECT_EQ(listener.allOfSize(4), "old\n");
    unlink(paths.fromCompanion.c_str());
    ASSERT_EQ(mkfifo(paths.fromCompanion.c_str(), 0600), 0);
    writeOnce(paths.fromCompanion, "new\n");
    EXPECT_EQ(listener.allOfSize(8), "old\nnew\n");
}

TEST_F(SimulatorChannel, AFileInThePlaceOfThePipeIsNotRead)
{
    Listener listener(folder.write("later", "no pipe\n"));
    EXPECT_FALSE(ending.waitFor(100ms)); // time to read it many times over
    std::filesystem::remove(folder.file("later"));
    ASSERT_EQ(mkfifo(folder.file("later").c_str(), 0600), 0);
    writeOnce(folder.file("later"), "pipe\n");
    EXPECT_EQ(listener.allOfSize(5), "pipe\n");
}

TEST_F(SimulatorChannel, ATextThatNobodyReadsIsGivenUpAndReported)
{
    TextWriter writer(paths.toCompanion, recorder, ending, 30ms);
    EXPECT_FALSE(writer.send("exit\n"));
    const std::string record = folder.read("record");
    EXPECT_NE(record.find(" ! not sent ("), std::string::npos) << record;
    EXPECT_NE(record.find("nobody reads it): exit\\n"), std::string::npos) << record;
    EXPECT_EQ(record.find(" > "), std::string::npos) << record;
}

TEST_F(SimulatorChannel, AReaderThatTakesNothingDoesNotHoldTheAgent)
{
    const int idle = open(paths.toCompanion.c_str(), O_RDONLY | O_NONBLOCK);
    TextWriter writer(paths.toCompanion, recorder, ending, 30ms);
    EXPECT_FALSE(writer.send(std::string(300000, 'x')));
    EXPECT_NE(folder.read("record").find("its reader takes nothing"), std::string::npos);
    close(idle);
}

TEST_F(SimulatorChannel, TheEndOfTheSessionEndsAWaitingText)
{
    TextWriter writer(paths.toCompanion, recorder, ending, 1h);
    std::thread sending([&] { EXPECT_FALSE(writer.send("exit\n")); });
    ending.request(0, "test");
    sending.join();
}

TEST_F(SimulatorChannel, TextsOfTwoThreadsNeverInterleave)
{
    const Descriptor companion(open(paths.toCompanion.c_str(), O_RDONLY | O_NONBLOCK));
    TextWriter writer(paths.toCompanion, recorder, ending, 20s);
    // Each is more than the FIFO holds, so that it takes many writes to a companion that reads slowly.
    std::thread first([&] { EXPECT_TRUE(writer.send(std::string(200000, 'a'))); });
    std::thread second([&] { EXPECT_TRUE(writer.send(std::string(200000, 'b'))); });
    std::string all;
    char buffer[8192];
    const auto deadline = std::chrono::steady_clock::now() + 15s;
    while (all.size() < 400000 && std::chrono::steady_clock::now() < deadline) {
        const ssize_t count = read(companion.get(), buffer, sizeof buffer);
        if (count > 0)
            all.append(buffer, static_cast<size_t>(count));
        ending.waitFor(3ms);
    }
    first.join();
    second.join();
    ASSERT_EQ(all.size(), 400000U);
    EXPECT_EQ(all.find_first_not_of(all.front()), 200000U);
    EXPECT_EQ(all.find_last_not_of(all.back()), 199999U);
}

TEST(SimulatorPipes, AreMadeForEveryUserAndKeptWhenTheyAreThere)
{
    const TemporaryFolder folder;
    const PipePaths paths = pipePathsIn(folder.file("a/b"));
    const mode_t oldMask = umask(077);
    std::string whyNot;
    EXPECT_TRUE(createPipes(folder.file("a/b"), whyNot)) << whyNot;
    umask(oldMask);
    struct stat first = {};
    ASSERT_EQ(stat(paths.fromCompanion.c_str(), &first), 0);
    EXPECT_EQ(first.st_mode, static_cast<mode_t>(S_IFIFO | 0666));
    EXPECT_TRUE(createPipes(folder.file("a/b"), whyNot)) << whyNot;
    struct stat second = {};
    ASSERT_EQ(stat(paths.fromCompanion.c_str(), &second), 0);
    EXPECT_EQ(first.st_ino, second.st_ino);
}

TEST(SimulatorPipes, AFileOfTheSameNameIsRefused)
{
    const TemporaryFolder folder;
    std::ofstream(folder.file("Status")) << "no pipe";
    std::string whyNot;
    EXPECT_FALSE(createPipes(folder.path(), whyNot));
    EXPECT_NE(whyNot.find("/Status"), std::string::npos) << whyNot;
    EXPECT_EQ(folder.read("Status"), "no pipe");
}
