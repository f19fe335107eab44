// The record: its line format, and that other programs can follow it while it is written.

#include "agentSimulator/recorder.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <vector>

using namespace agentSimulator;

namespace
{

/// The record with the seven columns of each line's time cut off.
std::string withoutTimes(const std::string &record)
{
    std::string out;
    for (size_t begin = 0; begin < record.size();) {
        const size_t end = record.find('\n', begin);
        const std::string line = record.substr(begin, end - begin + 1);
        EXPECT_EQ(line.substr(0, 7).find_first_not_of(" 0123456789"), std::string::npos) << line;
        out += line.substr(7);
        begin = end + 1;
    }
    return out;
}

} // namespace

TEST(SimulatorRecord, ALineHasTimeMarkAndContent)
{
    EXPECT_EQ(formatRecordLine(1234, '<', "buttonClicked stop\n"), "   1234 < buttonClicked stop\\n\n");
    EXPECT_EQ(formatRecordLine(1300, '>', "sessionStatus Connected\n"), "   1300 > sessionStatus Connected\\n\n");
    EXPECT_EQ(formatRecordLine(123456789, '#', ""), "123456789 # \n");
}

TEST(SimulatorRecord, EachEntryIsInTheFileAtOnce)
{
    const TemporaryFolder folder;
    Recorder recorder(folder.file("record"));
    ASSERT_TRUE(recorder.isOpen());
    recorder.received("one\n");
    EXPECT_EQ(withoutTimes(folder.read("record")), " < one\\n\n");
    recorder.sent("two\n");
    recorder.note("three");
    recorder.failure("four");
    EXPECT_EQ(withoutTimes(folder.read("record")), " < one\\n\n > two\\n\n # three\n ! four\n");
}

TEST(SimulatorRecord, ASecondStartIsAppended)
{
    const TemporaryFolder folder;
    Recorder(folder.file("record")).note("first start");
    Recorder(folder.file("record")).note("second start");
    const std::string content = folder.read("record");
    EXPECT_LT(content.find("first start"), content.find("second start"));
    EXPECT_NE(content.find("second start"), std::string::npos);
}

TEST(SimulatorRecord, LinesOfManyThreadsNeverMixAndTimeNeverRunsBack)
{
    const TemporaryFolder folder;
    Recorder recorder(folder.file("record"));
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; i++)
        threads.emplace_back([&] {
            for (int round = 0; round < 250; round++)
                recorder.sent(std::string(100, 'x'));
        });
    for (std::thread &thread : threads)
        thread.join();

    std::ifstream lines(folder.file("record"));
    std::string line;
    int count = 0;
    long before = 0;
    for (; std::getline(lines, line); count++) {
        ASSERT_EQ(line.substr(7), " > " + std::string(100, 'x'));
        const long elapsedMs = std::stol(line.substr(0, 7));
        EXPECT_GE(elapsedMs, before);
        before = elapsedMs;
    }
    EXPECT_EQ(count, 1000);
}

TEST(SimulatorRecord, AFileThatCannotBeOpenedIsNoticed)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(Recorder(folder.file("missing/record")).isOpen());
}

TEST(SimulatorRecord, AnObserverSeesEachEntryInTheOrderOfTheFile)
{
    const TemporaryFolder folder;
    std::string seen;
    Recorder recorder(folder.file("record"), [&](const RecordEntry &entry) {
        seen += formatRecordLine(entry.elapsedMs, entry.mark, entry.content);
    });
    std::thread other([&] {
        for (int i = 0; i < 100; i++)
            recorder.sent("one\n");
    });
    for (int i = 0; i < 100; i++)
        recorder.received("two\n");
    other.join();
    EXPECT_EQ(seen, folder.read("record"));
}
