// Looks lines up in the two tables and says what they mean. Pure: lines in, words out.

#include "agentSimulator/lineTable.h"

#include "agentSimulator/wireText.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>
#include <vector>

namespace agentSimulator
{

namespace
{

using Words = std::vector<std::string_view>;

/// The words between single blanks; a limit leaves the rest in the last one.
Words splitWords(std::string_view text, size_t limit = std::string_view::npos)
{
    Words words;
    for (;;) {
        const size_t end = words.size() + 1 < limit ? text.find(' ') : std::string_view::npos;
        words.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return words;
        text.remove_prefix(end + 1);
    }
}

bool equalInAnyCase(std::string_view one, std::string_view other)
{
    const auto same = [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), same);
}

bool matchesKeyword(const InboundLine &row, std::string_view line)
{
    return row.match == Match::prefix ? line.starts_with(row.keyword) : equalInAnyCase(line, row.keyword);
}

bool isCapital(char c)
{
    return c >= 'A' && c <= 'Z';
}

bool isVariable(std::string_view word)
{
    return !word.empty() && std::all_of(word.begin(), word.end(), isCapital);
}

struct Value {
    std::string_view name;
    std::string text;
};

/// A value in readable form. A list of files is encoded file by file, and then as a whole.
std::string readable(std::string_view name, std::string_view value)
{
    std::string text = percentDecode(value);
    if (name == "LIST")
        text = percentDecode(text);
    return escapeForRecord(text);
}

/// The values of a line, or nothing when it does not match the pattern.
std::optional<std::vector<Value>> readValues(const OutboundLine &row, std::string_view line)
{
    const Words pattern = splitWords(row.pattern);
    const Words words = isVariable(pattern.back()) ? splitWords(line, pattern.size()) : splitWords(line);
    if (words.size() != pattern.size())
        return std::nullopt;
    std::vector<Value> values;
    for (size_t i = 0; i < words.size(); i++) {
        if (isVariable(pattern[i]))
            values.push_back({pattern[i], readable(pattern[i], words[i])});
        else if (pattern[i] != words[i])
            return std::nullopt;
    }
    return values;
}

/// Replaces each word of capital letters that names a value.
std::string fillIn(std::string_view meaning, const std::vector<Value> &values)
{
    std::string text;
    while (!meaning.empty()) {
        const auto end = std::find_if_not(meaning.begin(), meaning.end(), isCapital);
        const std::string_view word = meaning.substr(0, std::max<size_t>(1, size_t(end - meaning.begin())));
        const auto named = [&](const Value &value) { return value.name == word; };
        const auto value = std::find_if(values.begin(), values.end(), named);
        text += value == values.end() ? std::string(word) : value->text;
        meaning.remove_prefix(word.size());
    }
    return text;
}

/// The line without the blank that ends some of them.
std::string_view withoutEnd(std::string_view line)
{
    while (line.ends_with(' '))
        line.remove_suffix(1);
    return line;
}

} // namespace

const InboundLine *findInbound(std::string_view line)
{
    line = trimmed(line);
    for (const InboundLine &row : inboundLines()) {
        if (!matchesKeyword(row, line))
            continue;
        const Words words = splitWords(line);
        if (!*row.word || (words.size() > 1 && equalInAnyCase(words[1], row.word)))
            return &row;
    }
    return nullptr;
}

bool beginsWithKeyword(std::string_view line)
{
    line = trimmed(line);
    const auto matching = [&](const InboundLine &row) { return matchesKeyword(row, line); };
    return std::any_of(inboundLines().begin(), inboundLines().end(), matching);
}

const OutboundLine *findOutbound(std::string_view line)
{
    for (const OutboundLine &row : outboundLines()) {
        if (readValues(row, withoutEnd(line)))
            return &row;
    }
    return nullptr;
}

std::string describeReceived(std::string_view line)
{
    const OutboundLine *const row = findOutbound(line);
    if (!row)
        return {};
    return fillIn(row->meaning, *readValues(*row, withoutEnd(line)));
}

std::string describeSent(std::string_view text)
{
    const InboundLine *const row = findInbound(text.substr(0, text.find('\n')));
    return row ? row->title : "";
}

} // namespace agentSimulator
