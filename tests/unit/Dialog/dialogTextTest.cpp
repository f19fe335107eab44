// The words of the questions, from whatever bytes the agent sends.

#include "src/Dialog/dialogText.h"
#include "src/Dialog/questionTable.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string decoded(const char *base64)
{
    return decodeQuestion(base64).get();
}

std::string markup(const char *text)
{
    const JoinText read = readMarkup(text);
    return read.markup ? read.markup.get() : "(plain)";
}

std::string words(const char *text)
{
    return readMarkup(text).words.get();
}

std::string repeated(const char *text, int count)
{
    std::string all;
    for (int i = 0; i < count; i++)
        all += text;
    return all;
}

std::string offered(const char *line)
{
    return listOfferedFiles(line).get();
}

} // namespace

TEST(QuestionText, IsWhatTheTechnicianEncoded)
{
    EXPECT_EQ(decoded("TWF5IEk/"), "May I?");
    EXPECT_EQ(decoded("R3LDvMOfZQ=="), "Grüße");
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded(nullptr), "");
}

TEST(QuestionText, IsShowableWhateverTheBytes)
{
    EXPECT_EQ(decoded("YQBi"), "a") << "ends at a NUL byte";
    EXPECT_EQ(decoded("Yf9i"), "a\xEF\xBF\xBD"
                               "b")
        << "invalid bytes are replaced";
    EXPECT_TRUE(g_utf8_validate(decoded("!!!%%%===").c_str(), -1, nullptr));
}

TEST(QuestionText, BlanksAndInvisibleCharactersAreNothingToRead)
{
    EXPECT_TRUE(hasVisibleText("  x "));
    EXPECT_TRUE(hasVisibleText("許"));
    for (const char *const text :
         {"", "   \n\t", "\xE2\x80\x8B", "\xC2\xA0", "\xE2\x80\xAE\xEF\xBB\xBF", "\uFFFD \uFFFD"})
        EXPECT_FALSE(hasVisibleText(text)) << text;
}

TEST(QuestionText, SignsDrawnAsBlanksAreNothingToRead)
{
    static constexpr struct {
        gunichar first, last;
    } blanks[] = {
        {0x20, 0x20},       {0xa0, 0xa0},       {0xad, 0xad},       {0x34f, 0x34f},   {0x61c, 0x61c},
        {0x115f, 0x1160},   {0x1680, 0x1680},   {0x17b4, 0x17b5},   {0x180b, 0x180f}, {0x2000, 0x200f},
        {0x2028, 0x202f},   {0x205f, 0x206f},   {0x2800, 0x2800},   {0x3000, 0x3000}, {0x3164, 0x3164},
        {0xfe00, 0xfe0f},   {0xfeff, 0xfeff},   {0xffa0, 0xffa0},   {0xfff9, 0xfffd}, {0x13441, 0x13442},
        {0x1d159, 0x1d159}, {0x1d173, 0x1d17a}, {0xe0000, 0xe0fff},
    };
    for (const auto &[first, last] : blanks)
        for (gunichar character = first; character <= last; character++) {
            std::string text(6, '\0');
            g_unichar_to_utf8(character, text.data());
            EXPECT_FALSE(hasVisibleText(text.c_str())) << std::hex << character;
        }
}

TEST(JoinMarkup, KeepsItsStyleAndMnemonics)
{
    EXPECT_EQ(markup("<b>Join</b> _us &amp; go"), "<b>Join</b> _us &amp; go");
    EXPECT_EQ(markup("<span weight=\"bold\" style='italic'>x</span>"),
              "<span weight=\"bold\" style=\"italic\">x</span>");
}

TEST(JoinMarkup, CanNotHideOrBlowUpItsWords)
{
    EXPECT_EQ(markup("<span size='1' alpha='1'>and pay</span>"), "<span>and pay</span>");
    EXPECT_EQ(markup("<span foreground='#fff' font_desc='0.1'><small>and pay</small></span>"), "<span>and pay</span>");
    EXPECT_EQ(markup("<s>all</s> of <span allow_breaks='false' strikethrough='true'>it</span>"),
              "all of <span>it</span>");
    EXPECT_EQ(markup("<big>a</big> <sub>b</sub>"), "a b");
}

TEST(JoinMarkup, CanNotTurnOrSpreadItsWords)
{
    EXPECT_EQ(markup("<b>a\u202Eb</b>&#x202E;\tc"), "<b>a\uFFFDb</b>\uFFFD c");
}

TEST(JoinMarkup, IsMeasuredByWhatItShows)
{
    const std::string lineBreaks = "Join?" + repeated("&#10;", 3000) + "and pay";
    EXPECT_EQ(markup(lineBreaks.c_str()), "(plain)");
    bool wasCut = false;
    EXPECT_EQ(words(lineBreaks.c_str()), "Join?" + std::string(3000, '\n') + "and pay");
    cutToReadable(words(lineBreaks.c_str()).c_str(), &wasCut);
    EXPECT_TRUE(wasCut) << "nobody can join";
    EXPECT_EQ(words("<b>Join</b> _us &amp; go"), "Join us & go");
}

TEST(JoinMarkup, LinksLoseTheirTargetsAndKeepTheirWords)
{
    EXPECT_EQ(markup("see <a href=\"file:///etc/passwd\" title=\"x\">the <i>terms</i></a>."), "see the <i>terms</i>.");
}

TEST(JoinMarkup, WhatDoesNotParseIsPlain)
{
    for (const char *const text :
         {"<b>x & y", "a < b", "</markup><b>x</b>", "&unknown;", "<span weight='nonsense'>x</span>",
          "<nonsense>x</nonsense>", "<span nonsense='1'>x</span>", "<b x='1'>x</b>", "<a>x</a>",
          "<a href='y' z='1'>x</a>", "<a title='y'>x</a>", "<span size='nonsense'>x</span>"})
        EXPECT_EQ(words(text), text);
    for (const char *const text : {"<b>x & y", "<b></b>", "<span>  </span>"})
        EXPECT_EQ(markup(text), "(plain)") << text;
}

TEST(LongText, IsCutWhereNobodyReadsOn)
{
    bool wasCut = true;
    EXPECT_STREQ(cutToReadable("short", &wasCut).get(), "short");
    EXPECT_FALSE(wasCut);
    const std::string million(1000000, 'x');
    const OwnedText shown = cutToReadable(million.c_str(), &wasCut);
    EXPECT_TRUE(wasCut);
    EXPECT_LT(g_utf8_strlen(shown.get(), -1), readableTextRoom + readableTextRoom / 50);
    EXPECT_TRUE(g_str_has_suffix(shown.get(), "x\u200B…"));
    const std::string lines(100000, '\n');
    EXPECT_LT(strlen(cutToReadable(lines.c_str(), &wasCut).get()), 1000U) << "a line break takes a line's room";
    EXPECT_TRUE(wasCut);
}

TEST(LongText, TermsOfSeveralPagesStayWhole)
{
    std::string terms;
    for (int i = 0; i < 150; i++)
        terms += "The technician may see everything on the screen while sharing.\n";
    bool wasCut = true;
    EXPECT_EQ(cutToReadable(terms.c_str(), &wasCut).get(), terms);
    EXPECT_FALSE(wasCut) << "nobody could join";
}

TEST(LongText, WordsOfUsualLengthStayAsTheyAre)
{
    bool wasCut = true;
    const std::string word(499, 'x');
    EXPECT_EQ(cutToReadable(word.c_str(), &wasCut).get(), word);
    EXPECT_EQ(markup(("<b>" + word + "</b>").c_str()), "<b>" + word + "</b>");
    EXPECT_EQ(markup(("<b>" + std::string(501, 'x') + "</b>").c_str()), "(plain)");
    std::string paragraph; // a script without blanks
    for (int i = 0; i < 150; i++)
        paragraph += "参加";
    EXPECT_EQ(markup(("<b>" + paragraph + "</b>").c_str()), "<b>" + paragraph + "</b>");
}

TEST(LongText, IsMeasuredInRoom)
{
    EXPECT_EQ(measureTextRoom(""), 0);
    EXPECT_EQ(measureTextRoom("äöü"), 3);
    EXPECT_GT(measureTextRoom("a\nb"), 40);
    EXPECT_EQ(measureTextRoom(std::string(1000000, 'x').c_str()), readableTextRoom + 1);
    EXPECT_EQ(measureLongestLine("ab\ncdef\ng"), 4);
    EXPECT_EQ(measureTextRoom("許可"), 4) << "wide letters";
}

TEST(LongText, LettersThatHoldTogetherAreParted)
{
    bool wasCut = true;
    const std::string family = "👩\u200D👩\u200D👧\u200D👦 e\u0301";
    EXPECT_EQ(cutToReadable(family.c_str(), &wasCut).get(), family);
    const OwnedText heap = cutToReadable(("x" + repeated("\u0316", 13)).c_str(), &wasCut);
    EXPECT_EQ(heap.get(), "x" + repeated("\u0316", 6) + "\u200B" + repeated("\u0316", 6) + "\u200B\u0316");
    for (const char *const part : {"\u1100", "\u0600", "\u0301", "👩\u200D"}) {
        const OwnedText shown = cutToReadable(repeated(part, 100).c_str(), &wasCut);
        EXPECT_TRUE(strstr(shown.get(), "\u200B")) << part;
    }
}

TEST(LongText, HasNoTabsAndNoTurnsOfDirection)
{
    bool wasCut = true;
    EXPECT_STREQ(cutToReadable("a\tb\u202Ec\u2066d", &wasCut).get(), "a b\uFFFDc\uFFFDd");
    EXPECT_STREQ(plainName("a\u202Db\u2069c\td").get(), "a\uFFFDb\uFFFDc\uFFFDd");
}

TEST(LongText, KeepsMarksOfDirection)
{
    bool wasCut = false;
    const std::string hebrew = "(C++\u200E) \u05E9\u05DC\u05D5\u05DD\u200F!\u061C";
    EXPECT_EQ(cutToReadable(hebrew.c_str(), &wasCut).get(), hebrew);
    EXPECT_EQ(plainName(hebrew.c_str()).get(), hebrew);
    EXPECT_EQ(markup(("<b>" + hebrew + "</b>").c_str()), "<b>" + hebrew + "</b>");
}

TEST(LongText, MayBeGivenMoreRoom)
{
    bool wasCut = true;
    const std::string list = repeated("name.txt, ", readableTextRoom / 10 + 1);
    EXPECT_EQ(cutToReadable(list.c_str(), &wasCut, longestListRoom).get(), list);
    EXPECT_FALSE(wasCut);
    EXPECT_NE(cutToReadable(list.c_str(), &wasCut).get(), list);
    EXPECT_TRUE(wasCut);
}

TEST(Offer, NamesEveryFile)
{
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive a%20b.txt c.txt"), "File Name:  a b.txt, c.txt.");
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive one"), "File Name:  one.");
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive"), ".");
    EXPECT_EQ(offered(nullptr), ".");
}

TEST(Offer, ShowsWhatCannotBeDecodedAsItStands)
{
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive a%zz %00"), "File Name:  a%zz, %00.");
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive %FFx"), "File Name:  \xEF\xBF\xBDx.");
    EXPECT_EQ(offered("dialogPrompt fileTransferReceive %25n%s"), "File Name:  %25n%s.");
}

TEST(Path, IsOneFieldOfALine)
{
    EXPECT_STREQ(escapePath("/home/ann/a b.txt").get(), "%2Fhome%2Fann%2Fa%20b.txt");
    EXPECT_STREQ(escapePath("ü%日").get(), "ü%25日");
    EXPECT_STREQ(escapePath("\xFF").get(), "%FF");
}

TEST(QuestionTable, EveryQuestionHasItsRow)
{
    for (const QuestionId id :
         {QuestionId::joinSession, QuestionId::featureConsent, QuestionId::leaveSession, QuestionId::rootAccess,
          QuestionId::adminModeUnsupported, QuestionId::runScript, QuestionId::unattendedAccess, QuestionId::lockScreen,
          QuestionId::participantControl, QuestionId::reboot})
        EXPECT_EQ(findQuestion(id).id, id);
}

TEST(QuestionTable, NoRefusalIsWrittenAsAnApproval)
{
    for (const QuestionId id : {QuestionId::joinSession, QuestionId::featureConsent, QuestionId::leaveSession,
                                QuestionId::rootAccess, QuestionId::runScript, QuestionId::unattendedAccess,
                                QuestionId::lockScreen, QuestionId::participantControl, QuestionId::reboot}) {
        const Question &question = findQuestion(id);
        ASSERT_TRUE(question.accepted.text);
        EXPECT_STRNE(question.accepted.text, question.refused.text);
        EXPECT_NE(question.acceptResponse, GTK_RESPONSE_REJECT);
        EXPECT_NE(question.acceptResponse, GTK_RESPONSE_DELETE_EVENT);
    }
}
