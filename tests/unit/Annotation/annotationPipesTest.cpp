// Commands to the annotation program and reports from it, over real FIFOs.

#include "src/Annotation/annotation.h"
#include "src/main.h"
#include "src/support.h"
#include "tests/support/testSession.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>

namespace
{

class AnnotationPipes : public TestSession
{
protected:
    void SetUp() override
    {
        TestSession::SetUp();
        setAnnotationPath("normal", mainWindow->annotation, mainWindow);
        in = makeFifo(mainWindow->annotation->pipePath);
        out = makeFifo(mainWindow->annotation->pipeOutPath);
        isAnnotationAlive = true;
    }

    void TearDown() override
    {
        isAnnotationAlive = false;
        TestSession::TearDown();
    }

    /// The part of every "unhandled Message" line between its words, put together.
    std::string unhandled() const
    {
        const std::string start = "unhandled Message ";
        std::string all;
        for (const std::string &message : logMessages())
            if (message.compare(0, start.size(), start) == 0)
                all += message.substr(start.size(), message.size() - start.size() - 1);
        return all;
    }

    /// Ends the run as the clean-up does, and with it the reader, who takes the waking for no report.
    void endRun(std::thread &reader)
    {
        isAnnotationAlive = false;
        wakeAnnotationReader(out.c_str());
        reader.join();
        EXPECT_FALSE(logHas("unhandled Message  "));
    }

    std::string in, out;
};

} // namespace

TEST_F(AnnotationPipes, CommandArrivesAsBareText)
{
    PipeReader program(in);
    EXPECT_EQ(AnnotationPipeWriter(in.c_str(), "2"), 0);
    EXPECT_EQ(AnnotationPipeWriter(in.c_str(), "Exit"), 0);
    ASSERT_TRUE(waitUntil([&] { return program.seen().size() >= 5; }, [&] { return program.seen(); }));
    std::string all;
    for (const std::string &text : program.texts())
        all += text;
    EXPECT_EQ(all, "2Exit");
    EXPECT_FALSE(logHas("error writing to pipe"));
}

TEST_F(AnnotationPipes, CommandWaitsForAProgramThatIsSlowToRead)
{
    std::atomic<bool> isWritten = false;
    std::thread writer([&] {
        AnnotationPipeWriter(in.c_str(), "3");
        isWritten = true;
    });
    EXPECT_FALSE(waitUntil([&] { return isWritten.load(); }, {}, 200));
    PipeReader program(in);
    writer.join();
    ASSERT_TRUE(waitUntil([&] { return program.seen() != ""; }));
    EXPECT_EQ(program.texts().front(), "3");
}

TEST_F(AnnotationPipes, CommandIsGivenUpWhenTheProgramDies)
{
    std::thread death([] {
        g_usleep(50000);
        isAnnotationAlive = false;
    });
    AnnotationPipeWriter(in.c_str(), "3");
    death.join();
    EXPECT_EQ(countLogMessages(logPath(), "error writing to pipe"), 1);
}

TEST_F(AnnotationPipes, MissingPipeIsNotMadeAFile)
{
    unlink(in.c_str());
    EXPECT_EQ(AnnotationPipeWriter(in.c_str(), "3"), 0);
    EXPECT_FALSE(std::filesystem::exists(in));
    EXPECT_EQ(countLogMessages(logPath(), "error writing to pipe"), 1);
}

TEST_F(AnnotationPipes, CommandUnderWayGivesUpWhenTheSessionEnds)
{
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        AnnotationPipeWriter(in.c_str(), "3");
        isOver = true;
    });
    EXPECT_FALSE(waitUntil([&] { return isOver.load(); }, {}, 200));
    request_quit();
    EXPECT_TRUE(waitUntil([&] { return isOver.load(); }, {}, 500));
    writer.join();
}

TEST_F(AnnotationPipes, ExitWaitsLessThanTwoSecondsForAProgramThatNeverReads)
{
    request_quit();
    const gint64 start = g_get_monotonic_time();
    AnnotationPipeWriter(in.c_str(), "Exit");
    const gint64 waitedUs = g_get_monotonic_time() - start;
    EXPECT_GT(waitedUs, 1000000);
    EXPECT_LT(waitedUs, 1900000);
}

TEST_F(AnnotationPipes, ExitReachesAProgramThatReadsLate)
{
    request_quit();
    std::atomic<bool> isOver = false;
    std::thread writer([&] {
        AnnotationPipeWriter(in.c_str(), "Exit");
        isOver = true;
    });
    EXPECT_FALSE(waitUntil([&] { return isOver.load(); }, {}, 200));
    PipeReader program(in);
    writer.join();
    ASSERT_TRUE(waitUntil([&] { return program.seen() != ""; }));
    EXPECT_EQ(program.texts().front(), "Exit");
}

TEST_F(AnnotationPipes, ReaderDoesNotStartForADeadProgram)
{
    isAnnotationAlive = false;
    EXPECT_EQ(AnnotationPipeReader(mainWindow), nullptr);
}

TEST_F(AnnotationPipes, UnknownReportIsLogged)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    EXPECT_TRUE(sendText(out, "Normal %s%n"));
    EXPECT_TRUE(waitUntil([&] { return logHas("unhandled Message Normal %s%n "); }));
    endRun(reader);
}

TEST_F(AnnotationPipes, ReportForgesNoLineOfTheLog)
{
    const auto hasLogged = [&](const std::string &text) {
        return waitUntil([&] { return readWholeFile(logPath()).find(text) != std::string::npos; }) ? "" : text;
    };
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    EXPECT_TRUE(sendText(out, "x\n2026/11/21 1:2:3 <INFO> [on_response_service]: User\r\n"));
    EXPECT_EQ(hasLogged("unhandled Message x\uFFFD2026/11/21 1:2:3 <INFO> [on_response_service]: User\uFFFD\n \n"), "");
    EXPECT_TRUE(sendText(out, "closing\n"));
    EXPECT_EQ(hasLogged("unhandled Message closing\n \n"), "");
    endRun(reader);
}

TEST_F(AnnotationPipes, ProgramThatSaysNothingIsLogged)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    EXPECT_TRUE(sendText(out, ""));
    EXPECT_TRUE(waitUntil([&] { return logHas("unhandled Message  "); }));
    isAnnotationAlive = false;
    wakeAnnotationReader(out.c_str());
    reader.join();
    EXPECT_EQ(countLogMessages(logPath(), "unhandled Message  "), 1);
}

TEST_F(AnnotationPipes, NoReportOfManyIsLost)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    std::string all;
    for (int i = 0; i < 2000; i++) {
        const std::string text = "[" + std::to_string(i) + "]";
        ASSERT_TRUE(sendText(out, text));
        all += text;
    }
    EXPECT_TRUE(waitUntil([&] { return unhandled() == all; }, [&] { return std::to_string(unhandled().size()); }));
    endRun(reader);
}

TEST_F(AnnotationPipes, LastReportBeforeTheEndIsStillTaken)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    ASSERT_TRUE(sendText(out, "last words"));
    endRun(reader);
    EXPECT_EQ(unhandled(), "last words");
}

TEST_F(AnnotationPipes, HugeReportIsCutNotKept)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    ASSERT_TRUE(sendText(out, std::string(1000000, 'x')));
    EXPECT_TRUE(waitUntil([&] { return unhandled().size() == 65536; }));
    endRun(reader);
}

TEST_F(AnnotationPipes, PlainFileEndsTheReaderAndFreesTheWayForAnotherStart)
{
    unlink(out.c_str());
    home.write(".brindle/temp/AnnotationOut", "normal");
    EXPECT_EQ(AnnotationPipeReader(mainWindow), nullptr);
    EXPECT_FALSE(isAnnotationAlive);
    EXPECT_TRUE(logHas("error reading pipe Invalid argument "));
}

TEST_F(AnnotationPipes, MissingReportPipeEndsTheReader)
{
    unlink(out.c_str());
    EXPECT_EQ(AnnotationPipeReader(mainWindow), nullptr);
    EXPECT_FALSE(isAnnotationAlive);
    EXPECT_TRUE(logHas("error reading pipe No such file or directory "));
}

TEST_F(AnnotationPipes, EndOfAnEarlierRunLeavesTheLaterOneAlone)
{
    mainWindow->annotation->run = 2;
    endAnnotationRun(mainWindow->annotation, 1);
    closeAnnotation(mainWindow->annotation, 1);
    EXPECT_TRUE(isAnnotationAlive);
    EXPECT_TRUE(std::filesystem::exists(in));
    EXPECT_TRUE(std::filesystem::exists(out));
    endAnnotationRun(mainWindow->annotation, 2);
    EXPECT_FALSE(isAnnotationAlive);
}

TEST_F(AnnotationPipes, CleanUpDeletesBothPipesAndEndsTheReader)
{
    std::thread reader([&] { AnnotationPipeReader(mainWindow); });
    mainWindow->annotation->buttonState = 1;
    closeAnnotation(mainWindow->annotation);
    reader.join();
    EXPECT_FALSE(isAnnotationAlive);
    EXPECT_FALSE(std::filesystem::exists(in));
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_EQ(mainWindow->annotation->buttonState, 2);
    EXPECT_TRUE(logHas("cleaning up annotation"));
}
