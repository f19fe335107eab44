// The conversation as plain text and the header of its file.

#include "src/Chat/chat.h"
#include "src/main.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>

namespace
{

struct tm timeOf(int hour, int minute, int second)
{
    struct tm time = {};
    time.tm_mday = 7;
    time.tm_mon = 2;
    time.tm_year = 124;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    return time;
}

/// A chat record without a window.
class Transcript : public ::testing::Test
{
protected:
    ~Transcript() override
    {
        if (chat.chatData)
            g_string_free(chat.chatData, true);
        g_free(chat.charSender);
        g_free(chat.message);
    }

    std::string text() const { return chat.chatData ? chat.chatData->str : "(none)"; }

    ChatWindow chat = {};
};

} // namespace

TEST_F(Transcript, FirstEntryNamesSenderAndUnpaddedTime)
{
    store_chat_message("hello", "Ann", &chat, timeOf(9, 5, 2), timeOf(0, 0, 0));
    EXPECT_EQ(text(), "\nAnn (9:5:2) \n \t\t\t hello");
}

TEST_F(Transcript, SecondEntryOfAMinuteIsTheTextAlone)
{
    store_chat_message("hello", "Ann", &chat, timeOf(9, 5, 2), timeOf(0, 0, 0));
    store_chat_message("again", "Ann", &chat, timeOf(9, 5, 59), timeOf(9, 5, 2));
    EXPECT_EQ(text(), "\nAnn (9:5:2) \n \t\t\t hello\n  \t\t\t again");
}

TEST_F(Transcript, EntryOfALaterMinuteIsFullAgain)
{
    store_chat_message("late", "Ann", &chat, timeOf(9, 6, 0), timeOf(9, 5, 59));
    EXPECT_EQ(text(), "\nAnn (9:6:0) \n \t\t\t late");
}

TEST_F(Transcript, OnlyTheMinuteIsComparedNotTheHour)
{
    store_chat_message("an hour later", "Ann", &chat, timeOf(10, 5, 2), timeOf(9, 5, 2));
    EXPECT_EQ(text(), "\n  \t\t\t an hour later");
}

TEST_F(Transcript, FirstSentMessageAfterAReceivedOneIsAlwaysFull)
{
    chat.AgentMessage = 1;
    store_chat_message("hi\n", "you", &chat, timeOf(9, 5, 2), timeOf(9, 5, 1));
    EXPECT_EQ(text(), "\nyou (9:5:2) \n \t\t\t hi\n");
    chat.AgentMessage = 2;
    store_chat_message("more\n", "you", &chat, timeOf(9, 5, 3), timeOf(9, 5, 2));
    EXPECT_EQ(text(), "\nyou (9:5:2) \n \t\t\t hi\n\n  \t\t\t more\n");
}

TEST_F(Transcript, MissingTextReadsNull)
{
    store_chat_message(nullptr, "Ann", &chat, timeOf(9, 5, 2), timeOf(0, 0, 0));
    store_chat_message(nullptr, "Ann", &chat, timeOf(9, 5, 3), timeOf(9, 5, 2));
    EXPECT_EQ(text(), "\nAnn (9:5:2) \n \t\t\t (null)\n  \t\t\t (null)");
}

TEST_F(Transcript, PercentSignsAndBadBytesStayAsTheyAre)
{
    store_chat_message("100 %s %n \xff", "%d\xfe", &chat, timeOf(1, 2, 3), timeOf(0, 0, 0));
    EXPECT_EQ(text(), "\n%d\xfe (1:2:3) \n \t\t\t 100 %s %n \xff");
}

TEST_F(Transcript, ManyEntriesArriveWhole)
{
    const std::string line(100, 'x');
    for (int i = 0; i < 10000; i++)
        store_chat_message(line.c_str(), "Ann", &chat, timeOf(9, 5, 2), timeOf(9, 5, 2));
    EXPECT_EQ(text().size(), 10000 * (std::string("\n  \t\t\t ").size() + line.size()));
}

TEST(TranscriptHeader, IsWrittenByteForByte)
{
    const auto times = [](int count, char what) { return std::string(size_t(count), what); };
    std::ostringstream expected;
    const std::string stars = times(93, '*');
    expected << stars << "\n" << stars << "\n";
    expected << times(31, ' ') << "Brindle Chat Log" << times(39, ' ') << "\n";
    expected << stars << "\n" << stars << "\n";
    expected << times(26, ' ') << "\tDate:(dd/mm/yyyy) 7/3/2024" << times(48, ' ') << "\n";
    expected << times(26, ' ') << "\tsessionkey: 12345" << times(54, ' ') << "\n";
    expected << times(26, ' ') << "\tType: UrsUserSession" << times(60, ' ') << "\n";
    expected << stars << "\n" << stars << "\n";
    EXPECT_EQ(transcriptHeader(timeOf(9, 5, 2), "12345", "UrsUserSession").get(), expected.str());
}

TEST(TranscriptHeader, MissingKeyIsLeftEmpty)
{
    const std::string header = transcriptHeader(timeOf(9, 5, 2), nullptr, nullptr).get();
    EXPECT_NE(header.find("\tsessionkey: " + std::string(54, ' ') + "\n"), std::string::npos);
    EXPECT_NE(header.find("\tType: " + std::string(60, ' ') + "\n"), std::string::npos);
}

TEST(TranscriptFile, IsOpenedThroughALinkOfTheCustomer)
{
    const TemporaryFolder folder;
    const std::string target = folder.write("target", "former"), link = folder.file("link");
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    const int file = openTranscript(link.c_str());
    ASSERT_GE(file, 0);
    EXPECT_EQ(close(file), 0);
    EXPECT_EQ(folder.read("target"), "");
}

/// A link that is somebody else's, as far as root makes the test: others can't give theirs away.
class ForeignLink : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
        isForeign = lchown(link.c_str(), 2000, 2000) == 0;
    }
    const TemporaryFolder folder;
    const std::string target = folder.write("target", "former"), link = folder.file("link");
    bool isForeign = false;
};

TEST_F(ForeignLink, IsRefusedWhereOthersMayWrite)
{
    ASSERT_EQ(chmod(folder.path().c_str(), 01777), 0);
    const int file = openTranscript(link.c_str());
    EXPECT_EQ(file < 0, isForeign);
    EXPECT_EQ(folder.read("target"), isForeign ? "former" : "");
    EXPECT_TRUE(file < 0 || close(file) == 0);
}

TEST_F(ForeignLink, IsFollowedInAFolderOfOnesOwn)
{
    ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
    const int file = openTranscript(link.c_str());
    ASSERT_GE(file, 0);
    EXPECT_EQ(close(file), 0);
    EXPECT_EQ(folder.read("target"), "");
}
