// Where the annotation program and its pipes are, for each kind of session.

#include "src/Annotation/annotation.h"
#include "src/main.h"
#include "tests/support/logFile.h"
#include "tests/support/temporaryFolder.h"

#include "Logger/logger.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

struct Case {
    const char *sessionType;
    const char *homeDir;
    const char *logPath;
    const char *pipeFolder;
    const char *program;
    std::vector<std::string> logLines;
};

// clang-format off
const Case cases[] = {
    {"normal", "/home/u", "/home/u/.brindle/Brindle/Logs", "/home/u/.brindle/temp",
     "/home/u/.brindle/Brindle/bin/Annotation", {"Normal log path has been set for Annotation window"}},
    {"ras", "", "/usr/local/.brindle/Brindle/Logs", "/usr/local/.brindle/temp",
     "/usr/local/.brindle/Brindle/bin/Annotation", {"Ras log path has been set for Annotation window"}},
    {"ras", nullptr, "/usr/local/.brindle/Brindle/Logs", "/usr/local/.brindle/temp",
     "/usr/local/.brindle/Brindle/bin/Annotation", {"Ras log path has been set for Annotation window"}},
    {"ras", "/home/u", "/home/u/.brindle/Brindle/Logs", "/home/u/.brindle/temp",
     "/home/u/.brindle/Brindle/bin/Annotation",
     {"Ras log path has been set for Annotation window",
      "Dynamic log path has been set for Annotation window: /home/u"}},
    {"oreach", "/home/u", "/var/log/OstrelReach", "/usr/local/OstrelReach/temp",
     "/usr/local/OstrelReach/bin/Annotation", {"OstrelReach log path has been set for Annotation window"}},
    {"UrsUserSession", "/home/u", "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/bin/Annotation",
     {"Urs log path has been set for Annotation window"}},
    {"Normal", "/home/u", "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/bin/Annotation",
     {"Urs log path has been set for Annotation window"}},
    {nullptr, nullptr, "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/bin/Annotation",
     {"Urs log path has been set for Annotation window"}},
    {"%s%n", "/100%", "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/bin/Annotation",
     {"Urs log path has been set for Annotation window"}},
};
// clang-format on

} // namespace

TEST(AnnotationLayout, FollowsTheSessionType)
{
    for (const Case &row : cases) {
        const TemporaryFolder logs;
        ASSERT_EQ(log_init(logs.path().c_str(), "ui.log", 5, 5), 0);
        const auto mainwindow = std::make_unique<MainWindow>();
        mainwindow->homeDir = row.homeDir;
        Annotation annotation = {};
        EXPECT_EQ(setAnnotationPath(row.sessionType, &annotation, mainwindow.get()), 0);
        log_close();
        EXPECT_STREQ(annotation.logPath, row.logPath);
        EXPECT_EQ(annotation.pipePath, std::string(row.pipeFolder) + "/AnnotationIn");
        EXPECT_EQ(annotation.pipeOutPath, std::string(row.pipeFolder) + "/AnnotationOut");
        EXPECT_STREQ(annotation.AnnotationWindow, row.program);
        EXPECT_EQ(readLogMessages(logs.file("ui.log")), row.logLines);
        for (char *const owned :
             {annotation.logPath, annotation.pipePath, annotation.pipeOutPath, annotation.AnnotationWindow})
            g_free(owned);
    }
}
