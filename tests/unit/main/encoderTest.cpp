// The three kinds of lines that carry a category word, as the agent reads them.

#include "src/encoder.h"

#include "src/Utils/pipeTransport.h"
#include "tests/support/testSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
class Encoder : public TestSession
{
};
} // namespace

TEST_F(Encoder, EachKindPutsItsWordInFront)
{
    EXPECT_EQ(encodeButtonClickMessage("start", g_UiStatus), 0);
    EXPECT_EQ(encodeDialogeResponseMessage("AVAccept", g_UiStatus), 0);
    EXPECT_EQ(encodeMonitorMessage("AnnotationClose", g_UiStatus), 0);
    EXPECT_THAT(sentLines(3), ::testing::ElementsAre("buttonClicked start", "dialogResponse AVAccept",
                                                     "monitorData AnnotationClose"));
}

TEST_F(Encoder, ALineEndsInOneNewlineAndKeepsItsBlanks)
{
    encodeDialogeResponseMessage("delete_dialog samecon ", g_UiStatus);
    sentLines(1);
    EXPECT_EQ(agent->seen(), "dialogResponse delete_dialog samecon \n");
}

TEST_F(Encoder, APercentSignIsNoFormat)
{
    encodeButtonClickMessage("swapScreen %s%n%d", g_UiStatus);
    EXPECT_THAT(sentLines(1), ::testing::ElementsAre("buttonClicked swapScreen %s%n%d"));
}

TEST_F(Encoder, AnEmptyTextLeavesTheBlank)
{
    encodeMonitorMessage("", g_UiStatus);
    sentLines(1);
    EXPECT_EQ(agent->seen(), "monitorData \n");
}
