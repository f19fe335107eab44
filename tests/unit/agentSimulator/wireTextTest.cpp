// Escapes of the record and of scripts, percent-encoding, lines.

#include "agentSimulator/wireText.h"

#include <gtest/gtest.h>

using namespace agentSimulator;

namespace
{

struct Pair {
    std::string bytes;
    std::string text;
};

} // namespace

TEST(SimulatorEscapes, EveryTextBecomesOneReadableLine)
{
    const Pair pairs[] = {
        {"buttonClicked stop\n", "buttonClicked stop\\n"},
        {"C:\\new", "C:\\\\new"},
        {"a\tb\rc", "a\\x09b\\x0Dc"},
        {std::string("nul\0byte", 8), "nul\\x00byte"},
        {"\x7F\x1B[2J", "\\x7F\\x1B[2J"},
        {"Grüße 日本 😀", "Grüße 日本 😀"},
        {"\xC2\x9B", "\\xC2\\x9B"},                   // a control character in two bytes
        {"\xFF\xC3", "\\xFF\\xC3"},                   // no UTF-8, cut UTF-8
        {"\xC0\xAF", "\\xC0\\xAF"},                   // too long for what it says
        {"\xED\xA0\x80", "\\xED\\xA0\\x80"},          // half of a pair
        {"\xF5\x80\x80\x80", "\\xF5\\x80\\x80\\x80"}, // beyond the last character
        {"", ""},
    };
    for (const Pair &pair : pairs)
        EXPECT_EQ(escapeForRecord(pair.bytes), pair.text);
}

TEST(SimulatorEscapes, WhatTheRecordShowsLeadsBackToTheSameBytes)
{
    std::string everyByte;
    for (int value = 0; value < 256; value++)
        everyByte += static_cast<char>(value);
    EXPECT_EQ(unescapeText(escapeForRecord(everyByte)), everyByte);
}

TEST(SimulatorEscapes, ScriptsMayWriteHexInEitherCase)
{
    EXPECT_EQ(unescapeText("a\\x4aB\\x4A\\t\\\\\\n"), "aJBJ\t\\\n");
}

TEST(SimulatorEscapes, AnUnknownOrCutEscapeIsRefused)
{
    for (const char *text : {"\\q", "\\", "\\x", "\\x4", "\\xZZ", "\\x4G", "\\x+4"})
        EXPECT_FALSE(unescapeText(text)) << text;
}

TEST(SimulatorPercentEncoding, NamesBecomeOneField)
{
    const Pair pairs[] = {
        {"John Smith", "John%20Smith"},
        {"Zoë", "Zo%C3%AB"},
        {"50%/\n", "50%25%2F%0A"},
        {"AZaz09-._~", "AZaz09-._~"},
        {"", ""},
    };
    for (const Pair &pair : pairs)
        EXPECT_EQ(percentEncode(pair.bytes), pair.text);
}

TEST(SimulatorPercentEncoding, LeadsBackToTheSameBytes)
{
    std::string everyByte;
    for (int value = 0; value < 256; value++)
        everyByte += static_cast<char>(value);
    EXPECT_EQ(percentDecode(percentEncode(everyByte)), everyByte);
    EXPECT_EQ(percentDecode(percentEncodeAll(everyByte)), everyByte);
}

TEST(SimulatorPercentEncoding, WhatIsNoEscapeStaysAsItIs)
{
    const Pair pairs[] = {
        {"a%20b%2fc", "a b/c"}, {"50%", "50%"}, {"%2", "%2"}, {"%ZZ", "%ZZ"}, {"%%41", "%A"}, {"", ""},
    };
    for (const Pair &pair : pairs)
        EXPECT_EQ(percentDecode(pair.bytes), pair.text);
}

TEST(SimulatorBase64, IsPaddedToWholeGroups)
{
    const Pair pairs[] = {
        {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xff\xfe\xfb", "//77"},
    };
    for (const Pair &pair : pairs)
        EXPECT_EQ(base64Encode(pair.bytes), pair.text);
}

TEST(SimulatorLines, EmptyPiecesOfATextAreNoLines)
{
    EXPECT_EQ(splitLines("one\n\ntwo\n"), (std::vector<std::string>{"one", "two"}));
    EXPECT_EQ(splitLines("chat hello%0A"), std::vector<std::string>{"chat hello%0A"});
    EXPECT_TRUE(splitLines("\n\n").empty());
    EXPECT_TRUE(splitLines("").empty());
}

TEST(SimulatorLines, BlanksAtBothEndsAreTrimmed)
{
    EXPECT_EQ(trimmed(" \t a b \r"), "a b");
    EXPECT_EQ(trimmed(" \t"), "");
}
