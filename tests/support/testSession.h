#pragma once
// A session as start-up would leave it, without a display: records, command line, log, pipes, queues, and a peer that
// reads what goes to the agent.

#include "tests/support/logFile.h"
#include "tests/support/pipePeer.h"
#include "tests/support/temporaryFolder.h"
#include "tests/support/waitUntil.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

struct ChatWindow;
struct MainWindow;

/// Makes a session in a home folder of its own: per-user folders, "-p" with that home, log open, pipes made, queues
/// made, image paths set. A test needs GTK only for what it builds itself; see `WindowSession`.
class TestSession : public ::testing::Test
{
protected:
    /// @param sessionType  value of -u
    /// @param more         further options, as {"-n", "FLEET_CLOUD"}
    explicit TestSession(std::string sessionType = "normal", std::vector<std::string> more = {});
    ~TestSession() override;

    void SetUp() override;
    void TearDown() override;

    std::string logPath() const { return home.file(".brindle/Brindle/Logs/ui.log"); }
    std::vector<std::string> logMessages() const { return readLogMessages(logPath()); }
    /// What was logged since the last call.
    std::vector<std::string> newMessages();
    /// A message with exactly this text stands in the log.
    bool logHas(const std::string &message) const { return countLogMessages(logPath(), message) > 0; }
    std::string uiPipe() const { return home.file(".brindle/temp/myfifo"); }
    std::string agentPipe() const { return home.file(".brindle/temp/Status"); }

    /// Waits until the agent has received as many lines, and gives them.
    std::vector<std::string> sentLines(size_t count);

    TemporaryFolder home;
    MainWindow *mainWindow = nullptr;  ///< lives to the end of the process, as in the program
    ChatWindow *chatWindow = nullptr;  ///< as `mainWindow`
    std::unique_ptr<PipeReader> agent; ///< reads "myfifo" from SetUp on

private:
    std::string m_sessionType;
    std::vector<std::string> m_arguments;
    std::vector<char *> m_argv;
    size_t m_logged = 0;
};

/// A session with its real control window, shown and arranged as start-up leaves it. Needs a display.
class WindowSession : public TestSession
{
protected:
    using TestSession::TestSession;

    void SetUp() override;
    void TearDown() override;
};
