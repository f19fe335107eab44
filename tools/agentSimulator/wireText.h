#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace agentSimulator
{

/// One line for people and parsers: newline as \n, backslash doubled, every other control byte and every byte
/// that is not UTF-8 as \xHH, printable UTF-8 as it is.
std::string escapeForRecord(std::string_view bytes);

/// The way back, and the escapes of scripts: \n \t \\ \xHH. Empty when the text holds any other escape.
std::optional<std::string> unescapeText(std::string_view text);

/// Escapes every byte but letters, digits and "-._~", so that the result is one field of a line.
std::string percentEncode(std::string_view bytes);

/// Escapes every byte.
std::string percentEncodeAll(std::string_view bytes);

/// The way back; what is no escape stays as it is.
std::string percentDecode(std::string_view text);

/// The standard alphabet, padded.
std::string base64Encode(std::string_view bytes);

/// The lines of a text without their newlines; empty ones are left out.
std::vector<std::string> splitLines(std::string_view text);

/// Without blanks, tabs and carriage returns at both ends.
std::string_view trimmed(std::string_view text);

/// A whole number from 0 to the largest, and nothing else.
std::optional<long> readNumber(std::string_view text, long largest);

} // namespace agentSimulator
