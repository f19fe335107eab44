// Text on its way between the wire, the script and the record: escapes that make any bytes one readable line,
// the way back, percent-encoding, lines, numbers. Values in, values out.

#include "agentSimulator/wireText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace agentSimulator
{

namespace
{

constexpr char hexDigits[] = "0123456789ABCDEF";

unsigned char byteAt(std::string_view text, size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

void appendHex(std::string &out, const char *lead, char value)
{
    const auto byte = static_cast<unsigned char>(value);
    out += lead;
    out += hexDigits[byte >> 4];
    out += hexDigits[byte & 15];
}

struct Utf8Class {
    unsigned char mask;     ///< bits of the first byte that tell the length
    unsigned char lead;     ///< what they are for this length
    size_t length;          ///< bytes of the character
    std::uint32_t smallest; ///< a smaller code point in this length is not UTF-8
};

constexpr std::array<Utf8Class, 4> utf8Classes = {{
    {0x80, 0x00, 1, 0x20}, // below: control bytes
    {0xE0, 0xC0, 2, 0xA0}, // below: too long, or the second set of control characters
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
}};

bool isShown(std::uint32_t codePoint)
{
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    return codePoint != 0x7F && !surrogate && codePoint <= 0x10FFFF;
}

/// Bytes of the printable character that the text begins with, 0 when it begins with none.
size_t printableLength(std::string_view text)
{
    for (const Utf8Class &row : utf8Classes) {
        if ((byteAt(text, 0) & row.mask) != row.lead)
            continue;
        if (text.size() < row.length)
            return 0;
        std::uint32_t codePoint = byteAt(text, 0) & static_cast<unsigned char>(~row.mask);
        for (size_t i = 1; i < row.length; i++) {
            if ((byteAt(text, i) & 0xC0) != 0x80)
                return 0;
            codePoint = codePoint << 6 | (byteAt(text, i) & 0x3FU);
        }
        return codePoint >= row.smallest && isShown(codePoint) ? row.length : 0;
    }
    return 0;
}

struct Escape {
    size_t length = 0; ///< bytes of the escape in the text, 0 when there is none that we know
    char value = 0;    ///< the byte it stands for
};

Escape readEscape(std::string_view text)
{
    if (text.starts_with("\\n"))
        return {2, '\n'};
    if (text.starts_with("\\t"))
        return {2, '\t'};
    if (text.starts_with("\\\\"))
        return {2, '\\'};
    if (!text.starts_with("\\x") || text.size() < 4)
        return {};
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 4, value, 16);
    if (error != std::errc() || end != text.data() + 4)
        return {};
    return {4, static_cast<char>(value)};
}

/// The byte that a percent escape at the beginning of the text stands for, if there is one.
std::optional<char> readPercentEscape(std::string_view text)
{
    if (text.size() < 3 || text[0] != '%')
        return std::nullopt;
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 3, value, 16);
    if (error != std::errc() || end != text.data() + 3)
        return std::nullopt;
    return static_cast<char>(value);
}

bool isUnreserved(char c)
{
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    return letter || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~';
}

} // namespace

std::string escapeForRecord(std::string_view bytes)
{
    std::string out;
    while (!bytes.empty()) {
        const size_t shown = printableLength(bytes);
        if (bytes[0] == '\n')
            out += "\\n";
        else if (bytes[0] == '\\')
            out += "\\\\";
        else if (shown > 0)
            out += bytes.substr(0, shown);
        else
            appendHex(out, "\\x", bytes[0]);
        bytes.remove_prefix(shown > 0 ? shown : 1);
    }
    return out;
}

std::optional<std::string> unescapeText(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        if (text[0] != '\\') {
            out += text[0];
            text.remove_prefix(1);
            continue;
        }
        const Escape escape = readEscape(text);
        if (escape.length == 0)
            return std::nullopt;
        out += escape.value;
        text.remove_prefix(escape.length);
    }
    return out;
}

std::string percentEncode(std::string_view bytes)
{
    std::string out;
    for (const char c : bytes) {
        if (isUnreserved(c))
            out += c;
        else
            appendHex(out, "%", c);
    }
    return out;
}

std::string percentEncodeAll(std::string_view bytes)
{
    std::string out;
    for (const char c : bytes)
        appendHex(out, "%", c);
    return out;
}

std::string percentDecode(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const std::optional<char> decoded = readPercentEscape(text);
        out += decoded.value_or(text[0]);
        text.remove_prefix(decoded ? 3 : 1);
    }
    return out;
}

std::string base64Encode(std::string_view bytes)
{
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (size_t k = 0; k < 3; k++)
            group = group << 8 | (k < count ? byteAt(bytes, i + k) : 0U);
        for (size_t k = 0; k < 4; k++)
            out += k <= count ? digits[group >> (18 - 6 * k) & 63U] : '=';
    }
    return out;
}

std::vector<std::string> splitLines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        if (end != 0)
            lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<long> readNumber(std::string_view text, long largest)
{
    long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < 0 || value > largest)
        return std::nullopt;
    return value;
}

} // namespace agentSimulator
