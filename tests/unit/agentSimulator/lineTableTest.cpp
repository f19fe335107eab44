// The one table of lines against everything that also knows them: the protocol page, and the program's own tables.

#include "agentSimulator/lineTable.h"
#include "tests/support/temporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

using namespace agentSimulator;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

namespace
{

using Cells = std::vector<std::string>;

std::string source(const std::string &path)
{
    return readWholeFile(std::string(SOURCE_FOLDER) + "/" + path);
}

/// What stands between two marks, behind the first of them.
std::string between(const std::string &text, const std::string &start, const std::string &end)
{
    const size_t from = text.find(start);
    EXPECT_NE(from, std::string::npos) << start;
    if (from == std::string::npos)
        return {};
    const size_t behind = from + start.size();
    return text.substr(behind, text.find(end, behind) - behind);
}

std::vector<std::string> allMatches(const std::string &text, const std::string &pattern)
{
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator i(text.begin(), text.end(), expression), end; i != end; ++i)
        found.push_back((*i)[1].str());
    return found;
}

/// The rows of the first table under a heading, without its head.
std::vector<Cells> pageTable(const std::string &heading)
{
    const std::string section = between(source("docs/protocol.md"), "\n" + heading + "\n", "\n#");
    const size_t start = section.find("\n|---");
    const std::string table = section.substr(section.find('\n', start + 1) + 1);
    std::vector<Cells> rows;
    for (const std::string &line : allMatches(table.substr(0, table.find("\n\n")), "\\|(.*)\\|"))
        rows.push_back(allMatches(line + "|", " ?([^|]*?) ?\\|"));
    return rows;
}

/// The names in code style of a cell.
std::vector<std::string> codeNames(const std::string &cell)
{
    return allMatches(cell, "`([^`]*)`");
}

/// A row's fields in the words of the protocol page.
std::string describeFields(const InboundLine &line)
{
    const std::map<Encoding, std::string> leads = {{Encoding::plain, ""},
                                                   {Encoding::percent, "percent-encoded "},
                                                   {Encoding::percentList, "percent-encoded "},
                                                   {Encoding::base64, "base64 "}};
    std::string text;
    for (size_t i = 0; i < line.fieldCount(); i++) {
        const Field &field = line.fields[i];
        text += (i > 0 ? ", " : "") + leads.at(field.encoding) + field.name + (field.isOptional ? ", or none" : "");
    }
    return text;
}

/// What a side knows: a keyword or a word, with what is to be compared of its row.
using Known = std::map<std::string, std::string>;

Known knownWords(const std::string &keyword)
{
    Known known;
    for (const InboundLine &line : inboundLines())
        if (line.keyword == keyword)
            known[line.word] = describeFields(line);
    return known;
}

Known pageWords(const std::string &keyword)
{
    const bool hasFields = keyword != "initSwap";
    Known known;
    for (const Cells &row : pageTable("### " + keyword))
        for (const std::string &word : codeNames(row.at(0)))
            known[word] = hasFields ? row.at(1) : "";
    return known;
}

const std::set<std::string> keywordsWithWords = {"dialogPrompt", "sessionStatus", "initSwap"};

Known knownKeywords()
{
    Known known;
    for (const InboundLine &line : inboundLines()) {
        const std::string match = line.match == Match::prefix ? "prefix" : "equal";
        known[line.keyword] = match + (keywordsWithWords.contains(line.keyword) ? "" : ": " + describeFields(line));
    }
    return known;
}

std::set<std::string> wordsOf(const std::string &keyword)
{
    std::set<std::string> words;
    for (const auto &[word, fields] : knownWords(keyword))
        words.insert(word);
    return words;
}

std::set<std::string> asSet(const std::vector<std::string> &texts)
{
    return {texts.begin(), texts.end()};
}

std::string trimmedEnd(const std::string &text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

TEST(LineTable, KnowsTheKeywordsOfTheProtocolPage)
{
    Known page;
    for (const Cells &row : pageTable("## From the agent"))
        for (const std::string &keyword : codeNames(row.at(0))) {
            const std::string fields = row.at(2).substr(0, row.at(2).find("; see "));
            page[keyword] = row.at(1) + (keywordsWithWords.contains(keyword) ? "" : ": " + fields);
        }
    EXPECT_EQ(knownKeywords(), page);
}

TEST(LineTable, KnowsTheWordsAndFieldsOfTheProtocolPage)
{
    for (const std::string &keyword : keywordsWithWords) {
        EXPECT_THAT(knownWords(keyword), Not(IsEmpty()));
        EXPECT_EQ(knownWords(keyword), pageWords(keyword)) << keyword;
    }
}

TEST(LineTable, KnowsTheAnswersOfTheProtocolPageInItsOrder)
{
    std::vector<std::string> page, known;
    for (const Cells &row : pageTable("## To the agent"))
        for (const std::string &line : codeNames(row.at(0)))
            page.push_back(trimmedEnd(line));
    for (const OutboundLine &line : outboundLines())
        known.emplace_back(line.pattern);
    EXPECT_THAT(known, ElementsAreArray(page));
}

TEST(LineTable, KnowsWhatTheDispatcherKnows)
{
    const std::string routes = between(source("src/thread/thread.cpp"), "const Route routes[] = {", "\n};");
    const std::string address = between(source("src/Utils/webview.cpp"), "PROTO_AR_SESSION = \"", "\"");
    std::set<std::string> program = asSet(allMatches(routes, "\\{\"([^\" ][^\"]*)\", Match"));
    if (routes.find("{PROTO_AR_SESSION, ") != std::string::npos)
        program.insert(address);
    std::set<std::string> known;
    for (const auto &[keyword, row] : knownKeywords())
        known.insert(keyword);
    EXPECT_EQ(known, program);
}

TEST(LineTable, MatchesKeywordsAsTheDispatcherDoes)
{
    const std::string routes = between(source("src/thread/thread.cpp"), "const Route routes[] = {", "\n};");
    const std::set<std::string> equal = asSet(allMatches(routes, "\\{\"([^\" ][^\"]*)\", Match::equal"));
    for (const InboundLine &line : inboundLines())
        EXPECT_EQ(line.match == Match::equal, equal.contains(line.keyword)) << line.keyword;
}

TEST(LineTable, KnowsTheWordsThatTheProgramKnows)
{
    struct ProgramTable {
        const char *keyword;
        const char *file;
        const char *start;
    };
    constexpr ProgramTable tables[] = {
        {"dialogPrompt", "src/Protocol/dialogPrompts.cpp", "PromptRow promptRows[] = {"},
        {"sessionStatus", "src/Protocol/sessionStatus.cpp", "StatusRow statusRows[] = {"},
        {"initSwap", "src/Protocol/swapScreen.cpp", "Outcome outcomes[] = {"},
    };
    for (const ProgramTable &table : tables) {
        const std::string rows = between(source(table.file), table.start, "\n};");
        EXPECT_EQ(wordsOf(table.keyword), asSet(allMatches(rows, "\n +\\{\"([^\"]+)\""))) << table.keyword;
    }
}

TEST(LineTable, SaysSomethingAboutEveryLine)
{
    for (const InboundLine &line : inboundLines()) {
        EXPECT_STRNE(line.title, "") << line.keyword;
        EXPECT_STRNE(line.meaning, "") << line.title;
    }
    for (const OutboundLine &line : outboundLines())
        EXPECT_STRNE(line.meaning, "") << line.pattern;
}

TEST(LineTable, GivesEveryLineATitleOfItsOwn)
{
    std::set<std::string> titles;
    for (const InboundLine &line : inboundLines())
        EXPECT_TRUE(titles.insert(line.title).second) << line.title;
}
