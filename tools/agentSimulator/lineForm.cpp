// From what a person fills in to what goes over the pipe, and to the script that would send it again. Pure.

#include "agentSimulator/lineForm.h"

#include "agentSimulator/agentTexts.h"
#include "agentSimulator/lineTable.h"
#include "agentSimulator/wireText.h"

#include <algorithm>

namespace agentSimulator
{

namespace
{

/// A newline in a plain value would begin another line.
std::string onOneLine(std::string value)
{
    std::replace(value.begin(), value.end(), '\n', ' ');
    return value;
}

std::string encodeList(std::string_view values)
{
    std::string encoded;
    for (;;) {
        const size_t end = values.find(';');
        const std::string_view value = trimmed(values.substr(0, end));
        if (!value.empty())
            encoded += (encoded.empty() ? "" : " ") + percentEncode(value);
        if (end == std::string_view::npos)
            return encoded;
        values.remove_prefix(end + 1);
    }
}

std::string encodeValue(const Field &field, const std::string &value)
{
    switch (field.encoding) {
    case Encoding::percent:
        return percentEncode(value);
    case Encoding::percentList:
        return encodeList(value);
    case Encoding::base64:
        return base64Encode(value);
    case Encoding::plain:
        break;
    }
    return onOneLine(value);
}

std::string valueAt(const std::vector<std::string> &values, size_t index)
{
    return index < values.size() ? values[index] : std::string();
}

/// For the end of a script's line, where blanks at the ends do not count.
std::string escapeForScript(std::string_view text)
{
    std::string escaped = escapeForRecord(text);
    if (escaped.ends_with(' '))
        escaped.replace(escaped.size() - 1, 1, "\\x20");
    if (escaped.starts_with(' '))
        escaped.replace(0, 1, "\\x20");
    return escaped;
}

std::string withoutBlanksAtEnd(const std::string &text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

std::string encodeForm(const InboundLine &line, const std::vector<std::string> &values)
{
    if (line.shape == Shape::chat)
        return chatText(onOneLine(valueAt(values, 0)), valueAt(values, 1));
    std::string text = line.keyword;
    if (*line.word)
        text += std::string(" ") + line.word;
    for (size_t i = 0; i < line.fieldCount(); i++)
        text += " " + encodeValue(line.fields[i], valueAt(values, i));
    text = withoutBlanksAtEnd(text);
    return line.shape == Shape::bare ? text : text + "\n";
}

std::string scriptCommandFor(std::string_view text)
{
    const bool isLine = text.ends_with('\n');
    if (isLine)
        text.remove_suffix(1);
    return (isLine ? "send " : "sendraw ") + escapeForScript(text);
}

std::string expectCommandFor(std::string_view line)
{
    return "expect " + escapeForScript(line);
}

} // namespace agentSimulator
