#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace agentSimulator
{

/// How a received line is compared with a keyword: its beginning in this letter case, or the whole of it in any.
enum class Match { prefix, equal };

/// How a value stands on the wire.
enum class Encoding {
    plain,
    percent,
    percentList, ///< several values, separated by ";" where a person types them and by blanks on the wire
    base64,
};

/// How a text is put together.
enum class Shape {
    line, ///< keyword, word and values separated by blanks, and a newline
    chat, ///< the name behind the keyword, the message on a line of its own; no newline ends it
    bare, ///< as a line, but no newline ends it
};

/// Where the technician finds a line.
enum class Topic { session, people, questions, files, swap, chat, permissions };

/// One value of a line.
struct Field {
    const char *name = nullptr; ///< as the protocol page calls it; null: there is no such field
    Encoding encoding = Encoding::plain;
    const char *initial = ""; ///< what a form begins with
    const char *choices = ""; ///< values worth a click, separated by "|"
    bool isOptional = false;
};

inline constexpr size_t maxFields = 3;

/// A line that the companion understands.
struct InboundLine {
    Topic topic;
    Match match;
    const char *keyword;
    const char *word;    ///< the first field of the keywords that have words of their own, in any letter case; or empty
    const char *title;   ///< what the technician wants
    const char *meaning; ///< what the customer sees
    Field fields[maxFields] = {};
    Shape shape = Shape::line;

    size_t fieldCount() const;
};

/// A line that the companion sends. Words of capital letters stand for values.
struct OutboundLine {
    const char *pattern;
    const char *meaning; ///< the same words of capital letters are replaced by what came
};

std::span<const InboundLine> inboundLines();
std::span<const OutboundLine> outboundLines();

/// The row that says what the companion does with a line; null when it does nothing.
const InboundLine *findInbound(std::string_view line);
const OutboundLine *findOutbound(std::string_view line);

/// What a received line means, its values in readable form; empty when nothing is known about it.
std::string describeReceived(std::string_view line);

/// The title of what was sent; empty when the companion would do nothing.
std::string describeSent(std::string_view text);

/// Whether this line, wherever it stands, would be taken for a keyword.
bool beginsWithKeyword(std::string_view line);

} // namespace agentSimulator
