// Which language the customer sees. /etc/default and the languages belong to the test.

#include "src/localizationText.h"

#include "tests/support/testSession.h"
#include "tests/unit/main/privateSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace
{

class Language : public TestSession
{
protected:
    Language() { EXPECT_TRUE(usePrivateFolders({"/etc/default"})); }

    void SetUp() override
    {
        TestSession::SetUp();
        home.makeFolder("locale");
    }
    void TearDown() override
    {
        forget();
        g_isEnglish = true;
        TestSession::TearDown();
    }

    static void writeLocale(const std::string &content)
    {
        std::FILE *const file = std::fopen("/etc/default/locale", "w");
        ASSERT_NE(file, nullptr);
        std::fwrite(content.data(), 1, content.size(), file);
        std::fclose(file);
    }
    static std::string pair(const std::string &key, const std::string &value)
    {
        return R"({"Key":")" + key + R"(","Value":")" + value + R"("})";
    }
    /// An array with this first element and as many more as make up the count.
    static std::string texts(const std::string &first, int count = 10)
    {
        std::string all = "[" + first;
        for (int i = 1; i < count; i++)
            all += "," + pair("key" + std::to_string(i), "value");
        return all + "]";
    }
    void writeLanguage(const std::string &name, const std::string &json) const
    {
        g_autofree char *encoded = g_base64_encode(reinterpret_cast<const guchar *>(json.data()), json.size());
        home.write("locale/" + name + "/resource.json", encoded);
    }
    /// Loads in place of what was loaded before.
    int load() const
    {
        forget();
        return loadResource(home.file("locale").c_str());
    }
    static void forget()
    {
        freeResource();
        g_hash = nullptr;
    }
    /// Everything the load logged, without trace lines.
    std::vector<std::string> loadLog()
    {
        const size_t before = logMessages().size();
        EXPECT_EQ(load(), 0);
        std::vector<std::string> all = logMessages();
        all.erase(all.begin(), all.begin() + long(before));
        return all;
    }
};

constexpr char noMatch[] = "error matching locale settings locale as english";

} // namespace

TEST_F(Language, OfTheSystemIsShown)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(R"({"Key":"Accept","Value":"Annehmen"})"));
    writeLanguage("fr", texts(R"({"Key":"Accept","Value":"Accepter"})"));
    EXPECT_EQ(load(), 1);
    EXPECT_FALSE(g_isEnglish);
    EXPECT_STREQ(getString("Accept"), "Annehmen");
}

TEST_F(Language, ATextWithoutTranslationIsShownAsItIs)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("Accept", "Annehmen")));
    ASSERT_EQ(load(), 1);
    static constexpr char missing[] = "Cancel";
    EXPECT_EQ(getString(missing), missing);
    EXPECT_STREQ(getString("accept"), "accept");
}

TEST_F(Language, BeforeAnyLoadIsEnglish)
{
    static constexpr char text[] = "Accept";
    EXPECT_EQ(getString(text), text);
}

TEST_F(Language, LoadingIsLoggedStepByStep)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("a", "b")));
    ASSERT_EQ(load(), 1);
    std::vector<std::string> log = logMessages();
    log.erase(log.begin(), log.end() - 5);
    EXPECT_THAT(log, ::testing::ElementsAre("system locale de_DE.UTF-8", "read resource file", "decoded Text",
                                            "count more than 10", "creating hash table"));
}

TEST_F(Language, WithoutALocaleFileIsEnglish)
{
    EXPECT_THAT(loadLog(), ::testing::ElementsAre(::testing::StartsWith("error opening locale file ")));
    EXPECT_TRUE(g_isEnglish);
}

TEST_F(Language, AnUnreadableLocaleFileIsLogged)
{
    std::filesystem::create_directory("/etc/default/locale");
    EXPECT_THAT(loadLog(), ::testing::ElementsAre(::testing::StartsWith("error reading locale file ")));
}

TEST_F(Language, IsTakenFromOneOfTheFirstSevenLines)
{
    writeLanguage("de", texts(pair("a", "b")));
    for (int line = 1; line <= 9; line++) {
        std::string content;
        for (int i = 1; i < line; i++)
            content += "# comment\n";
        writeLocale(content + "LANG=de_DE.UTF-8\n");
        EXPECT_EQ(load(), line <= 7 ? 1 : 0) << "line " << line;
    }
}

TEST_F(Language, FurtherDownThanSevenLinesNothingIsLogged)
{
    writeLocale("1\n2\n3\n4\n5\n6\n7\nLANG=de_DE.UTF-8\n");
    EXPECT_THAT(loadLog(), ::testing::ElementsAre());
}

TEST_F(Language, SevenEndedLinesWithoutLangLogNothing)
{
    // The text behind the last newline is an eighth, empty line.
    writeLocale("1\n2\n3\n4\n5\n6\n7\n");
    EXPECT_THAT(loadLog(), ::testing::ElementsAre());
}

TEST_F(Language, WithoutALangLineIsEnglish)
{
    writeLanguage("de", texts(pair("a", "b")));
    for (const char *const content : {"", "LC_ALL=de_DE.UTF-8\n", "1\n2\n3\n4\n5\n6\n7", "lang=de_DE\n"}) {
        writeLocale(content);
        const std::vector<std::string> log = loadLog();
        ASSERT_FALSE(log.empty()) << content;
        EXPECT_EQ(log.back(), noMatch) << content;
    }
}

TEST_F(Language, ALangLineIsReadThisWay)
{
    struct Case {
        const char *content;
        bool isGerman;
    };
    const Case cases[] = {
        {"LANG=de_DE.UTF-8", true},
        {"  \t LANG=de_DE.UTF-8  \n", true},
        {"LANG=de\n", true},
        {"LANGUAGE=de\nLANG=fr\n", true}, // begins with LANG, too
        {"LANG=fr\nLANG=de\n", false},    // the first one counts
        {"LANG=de=fr\n", true},
        {"LANG=\"de_DE.UTF-8\"\n", false},
        {"LANG='de'\n", false},
        {"LANG= de\n", false},
        {"LANG=d\n", false},
        {"LANG=DE\n", false},
        {"LANG=\n", false},
        {"LANG\n", false},
        {"#LANG=de\n", false},
        {"LANG=de\r\n", true},
    };
    writeLanguage("de", texts(pair("a", "b")));
    for (const Case &each : cases) {
        writeLocale(each.content);
        EXPECT_EQ(load(), each.isGerman) << each.content;
    }
}

TEST_F(Language, OfTheLongestMatchingNameWins)
{
    for (const char *const name : {"z", "zh_TW", "zh", "zh_TWN", "fr"})
        home.makeFolder(std::string("locale/") + name);
    const std::string locales = home.file("locale");
    struct Case {
        const char *locale, *name;
    };
    for (const Case &each : {Case{"zh_TW.UTF-8", "zh_TW"}, {"zh_CN.UTF-8", "zh"}, {"zu", "z"}, {"fr", "fr"}}) {
        g_autofree char *name = checkSystemLocale(locales.c_str(), each.locale);
        EXPECT_STREQ(name, each.name) << each.locale;
    }
    for (const char *const unknown : {"", "de_DE", "\"zh", "Z"})
        EXPECT_EQ(checkSystemLocale(locales.c_str(), unknown), nullptr) << unknown;
    EXPECT_EQ(checkSystemLocale(locales.c_str(), nullptr), nullptr);
}

TEST_F(Language, AFileCanMatchAsWell)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    home.write("locale/de_DE", "");
    writeLanguage("de", texts(pair("a", "b")));
    const std::vector<std::string> log = loadLog();
    ASSERT_FALSE(log.empty());
    EXPECT_THAT(log.back(), ::testing::MatchesRegex("error opening resoruce file .* "));
}

TEST_F(Language, WithoutALanguageFolderIsEnglish)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    std::filesystem::remove(home.file("locale"));
    EXPECT_THAT(loadLog(), ::testing::ElementsAre("system locale de_DE.UTF-8", noMatch));
}

TEST_F(Language, AnUnreadableLanguageFileIsLogged)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    home.makeFolder("locale/de/resource.json");
    EXPECT_THAT(loadLog(), ::testing::ElementsAre("system locale de_DE.UTF-8",
                                                  ::testing::MatchesRegex("error reading resoruce file .* ")));
}

TEST_F(Language, OfNineTextsIsBrokenOfTenItIsNot)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("a", "b"), 9));
    EXPECT_THAT(loadLog(), ::testing::ElementsAre("system locale de_DE.UTF-8", "read resource file", "decoded Text"));
    writeLanguage("de", texts(pair("a", "b"), 10));
    EXPECT_EQ(load(), 1);
}

TEST_F(Language, ThatCanNotBeParsedIsEnglish)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    const std::string plain = texts(pair("a", "b"));
    for (const std::string &file : {plain, std::string(), std::string("####"), std::string("\xff\0\xfe", 3)}) {
        home.write("locale/de/resource.json", file);
        const std::vector<std::string> log = loadLog();
        ASSERT_FALSE(log.empty());
        EXPECT_EQ(log.back(), "error parsing reosurce string") << file;
        EXPECT_TRUE(g_isEnglish);
    }
}

TEST_F(Language, OfAnotherShapeIsEnglishWithoutAWord)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    for (const char *const json : {"{}", "1", "\"text\"", "null", "[]", R"({"Key":"a","Value":"b"})"}) {
        writeLanguage("de", json);
        const std::vector<std::string> log = loadLog();
        ASSERT_FALSE(log.empty());
        EXPECT_EQ(log.back(), "decoded Text") << json;
    }
}

TEST_F(Language, ElementsThatAreNoTextCountButAreSkipped)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", R"([1,null,[],"x",{},{"Key":"a"},{"Value":"b"},{"Key":1,"Value":"c"},{"Key":"d","Value":2},)" +
                            pair("Accept", "Annehmen") + "]");
    EXPECT_EQ(load(), 1);
    EXPECT_STREQ(getString("Accept"), "Annehmen");
    for (const char *const key : {"a", "d"})
        EXPECT_EQ(g_hash_table_lookup(g_hash, key), nullptr) << key;
}

TEST_F(Language, TheLastOfTwoTranslationsCounts)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("Accept", "Ja") + "," + pair("Accept", "Annehmen")));
    ASSERT_EQ(load(), 1);
    EXPECT_STREQ(getString("Accept"), "Annehmen");
}

TEST_F(Language, BlanksAndOtherMembersOfAnElementStay)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(R"({"Note":"x","Key":"Ostrel Reach  ","Value":" Fern  ","More":[1]})"));
    ASSERT_EQ(load(), 1);
    EXPECT_STREQ(getString("Ostrel Reach  "), " Fern  ");
    EXPECT_STREQ(getString("Ostrel Reach"), "Ostrel Reach");
}

TEST_F(Language, ATranslationThatIsNoFormatOfItsKeyIsNotUsed)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    static constexpr char key[] = "%s has requested control";
    writeLanguage("de", texts(pair(key, "%d%n will steuern")));
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(g_hash_table_lookup(g_hash, key), nullptr);
}

TEST_F(Language, ATranslationThatIsNoTextIsNotUsed)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("Accept", "\xff\xfe")));
    load();
    EXPECT_STREQ(getString("Accept"), "Accept");
}

TEST_F(Language, AFailedLoadLeavesEnglishInForce)
{
    writeLocale("LANG=de_DE.UTF-8\n");
    writeLanguage("de", texts(pair("Accept", "Annehmen")));
    ASSERT_EQ(load(), 1);
    writeLocale("LANG=xx\n");
    EXPECT_EQ(load(), 0);
    EXPECT_STREQ(getString("Accept"), "Accept");
}

TEST_F(Language, EntriesAreFreedWithTheTable)
{
    EXPECT_TRUE(remove_hash_value(g_strdup("key"), g_strdup("value"), nullptr));
    freeResource(); // no table: nothing happens
    EXPECT_EQ(g_hash, nullptr);
}
