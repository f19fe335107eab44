// The words of a question, from what the agent sent. Everything here takes bytes as they come and gives valid UTF-8.

#include "src/Dialog/dialogText.h"

#include <pango/pango.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>
#include <vector>

namespace
{
/// What a line break counts, in characters: about a line of a narrow dialog.
constexpr int lineBreakRoom = 40;
/// A word gets a place to break after so many characters.
constexpr int unbrokenCharacters = 500;
/// Letters, signs and marks that no line may end between hold together for so many characters: the longest sign that
/// is one picture has fewer.
constexpr int heldCharacters = 16;
/// More marks on one letter would be drawn over the lines and buttons above and below.
constexpr int stackedMarks = 6;
constexpr char invisibleBreak[] = "\u200B";
constexpr int firstFileField = 2;
constexpr gunichar replacementCharacter = 0xfffd;

/// True for everything that a label begins a new line at.
bool endsLine(gunichar character)
{
    switch (g_unichar_break_type(character)) {
    case G_UNICODE_BREAK_MANDATORY:
    case G_UNICODE_BREAK_CARRIAGE_RETURN:
    case G_UNICODE_BREAK_LINE_FEED:
    case G_UNICODE_BREAK_NEXT_LINE:
        return true;
    default:
        return false;
    }
}

int roomOf(gunichar character)
{
    if (endsLine(character))
        return lineBreakRoom;
    return g_unichar_iswide(character) ? 2 : 1;
}

/// Letters and signs by their kind that look like blanks: fillers, the empty braille cell, blank hieroglyphs, the place
/// of an object that isn't there, the note without a head.
constexpr gunichar blankLooking[] = {0x115f, 0x1160, 0x2800, 0x3164, 0xffa0, 0xfffc, 0x13441, 0x13442, 0x1d159};

bool isVisible(gunichar character)
{
    return g_unichar_isgraph(character) && !g_unichar_isspace(character) && !g_unichar_iszerowidth(character) &&
           character != replacementCharacter && std::ranges::find(blankLooking, character) == std::end(blankLooking);
}

/// True for what turns or encloses the direction of all that follows. The marks of direction are none of them: like
/// letters, they only pull the signs beside them, and honest texts from right to left have them.
bool turnsDirection(gunichar character)
{
    return (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069);
}

/// True for what would make a name look like another one: line breaks and other controls, and turns of direction.
bool disguises(gunichar character)
{
    return g_unichar_iscntrl(character) || endsLine(character) || turnsDirection(character);
}

/// What stands for a character of a question: a tab is as wide as a stop is far away, a turn of direction shuffles the
/// words around it.
gunichar readableCharacter(gunichar character)
{
    if (character == '\t')
        return ' ';
    return turnsDirection(character) ? replacementCharacter : character;
}

/// For each character whether a line may end before it, at the worst.
std::vector<PangoLogAttr> findBreaks(const char *text)
{
    std::vector<PangoLogAttr> breaks(gsize(g_utf8_strlen(text, -1)) + 1);
    pango_get_log_attrs(text, -1, -1, pango_language_get_default(), breaks.data(), int(breaks.size()));
    return breaks;
}

/// The text with invisible places to break in very long words and between letters that hold together without end.
OwnedText addBreaks(const char *text)
{
    const std::vector<PangoLogAttr> breaks = findBreaks(text);
    GString *const broken = g_string_new(nullptr);
    int wordLength = 0, heldLength = 0, markCount = 0;
    gsize index = 0;
    for (const char *at = text; *at; at = g_utf8_next_char(at), index++) {
        const gunichar character = g_utf8_get_char(at);
        heldLength = breaks[index].is_char_break ? 1 : heldLength + 1;
        markCount = g_unichar_ismark(character) ? markCount + 1 : 0;
        if (heldLength > heldCharacters || markCount > stackedMarks) {
            g_string_append(broken, invisibleBreak);
            heldLength = 1;
            markCount = MIN(markCount, 1);
        }
        g_string_append_unichar(broken, character);
        wordLength = g_unichar_isspace(character) ? 0 : wordLength + 1;
        if (wordLength > 0 && wordLength % unbrokenCharacters == 0)
            g_string_append(broken, invisibleBreak);
    }
    return OwnedText(g_string_free(broken, FALSE));
}

// ------------------------------------------------------------------------------------------ markup of few words

/// What may be done to words; of every other element only the words are copied.
constexpr const char *plainElements[] = {"b", "i", "span", "tt", "u"};
constexpr char linkElement[] = "a";
constexpr char linkTarget[] = "href";
constexpr const char *linkAttributes[] = {linkTarget, "title"};
constexpr const char *plainAttributes[] = {"font_style", "font_weight", "style", "underline", "weight"};

bool isOneOf(std::span<const char *const> names, const char *name)
{
    return std::ranges::any_of(names, [name](const char *each) { return strcmp(each, name) == 0; });
}

/// What is taken over from a markup while it is read.
struct Copies {
    GString *plain;    ///< plain elements and all words
    GString *elements; ///< all elements but links, which the text library doesn't know, and no words
};

void appendStart(GString *copy, const char *element, const char **names, const char **values, bool isPlain)
{
    g_string_append_printf(copy, "<%s", element);
    for (guint i = 0; names[i]; i++) {
        if (isPlain && !isOneOf(plainAttributes, names[i]))
            continue;
        g_autofree char *value = g_markup_escape_text(values[i], -1);
        g_string_append_printf(copy, " %s=\"%s\"", names[i], value);
    }
    g_string_append_c(copy, '>');
}

/// As a label takes it; any other element of its name is left to the text library, which refuses it.
bool isLink(const char *element, const char **names)
{
    bool hasTarget = false;
    for (; *names; names++) {
        if (!isOneOf(linkAttributes, *names))
            return false;
        hasTarget = hasTarget || strcmp(*names, linkTarget) == 0;
    }
    return hasTarget && strcmp(element, linkElement) == 0;
}

void copyStart(GMarkupParseContext *, const char *element, const char **names, const char **values, gpointer data,
               GError **)
{
    auto *const copies = static_cast<Copies *>(data);
    if (!isLink(element, names))
        appendStart(copies->elements, element, names, values, false);
    if (isOneOf(plainElements, element))
        appendStart(copies->plain, element, names, values, true);
}

void copyEnd(GMarkupParseContext *, const char *element, gpointer data, GError **)
{
    auto *const copies = static_cast<Copies *>(data);
    if (strcmp(element, linkElement) != 0)
        g_string_append_printf(copies->elements, "</%s>", element);
    if (isOneOf(plainElements, element))
        g_string_append_printf(copies->plain, "</%s>", element);
}

void copyText(GMarkupParseContext *, const char *text, gsize length, gpointer data, GError **)
{
    g_autoptr(GString) readable = g_string_new(nullptr);
    for (const char *at = text; at < text + length; at = g_utf8_next_char(at))
        g_string_append_unichar(readable, readableCharacter(g_utf8_get_char(at)));
    g_autofree char *escaped = g_markup_escape_text(readable->str, gssize(readable->len));
    g_string_append(static_cast<Copies *>(data)->plain, escaped);
}

/// The markup with nothing in it but plain elements and words, or null when it doesn't parse.
OwnedText copyPlainMarkup(const char *text)
{
    static constexpr GMarkupParser copier = {copyStart, copyEnd, copyText, nullptr, nullptr};
    g_autoptr(GString) plain = g_string_new(nullptr);
    g_autoptr(GString) elements = g_string_new(nullptr);
    Copies copies = {plain, elements};
    g_autofree char *rooted = g_strconcat("<markup>", text, "</markup>", nullptr);
    g_autoptr(GMarkupParseContext) context =
        g_markup_parse_context_new(&copier, G_MARKUP_TREAT_CDATA_AS_TEXT, &copies, nullptr);
    const bool parses = g_markup_parse_context_parse(context, rooted, -1, nullptr) &&
                        g_markup_parse_context_end_parse(context, nullptr) &&
                        pango_parse_markup(elements->str, -1, 0, nullptr, nullptr, nullptr, nullptr);
    return OwnedText(parses ? g_strdup(plain->str) : nullptr);
}
} // namespace

int measureTextRoom(const char *text)
{
    int room = 0;
    for (const char *at = text; *at && room <= readableTextRoom; at = g_utf8_next_char(at))
        room += roomOf(g_utf8_get_char(at));
    return MIN(room, readableTextRoom + 1);
}

OwnedText decodeQuestion(const char *base64)
{
    gsize length = 0;
    g_autofree guchar *bytes = g_base64_decode(base64 ? base64 : "", &length);
    const OwnedText text(g_strndup(reinterpret_cast<const char *>(bytes), length)); // ends at the first NUL byte
    return displayable_text(text.get());
}

bool hasVisibleText(const char *text)
{
    for (const char *at = text; *at; at = g_utf8_next_char(at))
        if (isVisible(g_utf8_get_char(at)))
            return true;
    return false;
}

OwnedText cutToReadable(const char *text, bool *wasCut, int longestRoom)
{
    const OwnedText whole = displayable_text(text);
    g_autoptr(GString) shown = g_string_new(nullptr);
    int room = 0;
    const char *at = whole.get();
    for (; *at; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        room += roomOf(character);
        if (room > longestRoom)
            break;
        g_string_append_unichar(shown, readableCharacter(character));
    }
    *wasCut = *at != '\0';
    if (*wasCut)
        g_string_append(shown, "…");
    return addBreaks(shown->str);
}

int measureLongestLine(const char *text)
{
    const OwnedTexts lines(g_strsplit(text, "\n", -1));
    glong longest = 0;
    for (char **line = lines.get(); *line; line++)
        longest = MAX(longest, g_utf8_strlen(*line, -1));
    return int(longest);
}

JoinText readMarkup(const char *text)
{
    JoinText read = {displayable_text(text), nullptr};
    if (measureTextRoom(read.words.get()) > readableTextRoom)
        return read;
    OwnedText markup = copyPlainMarkup(read.words.get());
    char *words = nullptr;
    if (!markup || !pango_parse_markup(markup.get(), -1, '_', nullptr, &words, nullptr, nullptr))
        return read;
    read.words.reset(words);
    bool wasCut = false;
    // Words that have to be cut or broken are shown without their style.
    if (hasVisibleText(words) && strcmp(cutToReadable(words, &wasCut).get(), words) == 0)
        read.markup = std::move(markup);
    return read;
}

OwnedText plainName(const char *name)
{
    const OwnedText valid = displayable_text(name);
    GString *const plain = g_string_new(nullptr);
    for (const char *at = valid.get(); *at; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        g_string_append_unichar(plain, disguises(character) ? replacementCharacter : character);
    }
    return OwnedText(g_string_free(plain, FALSE));
}

OwnedText listOfferedFiles(const char *line)
{
    const OwnedTexts fields(g_strsplit(line ? line : "", " ", -1));
    g_autoptr(GString) sentence = g_string_new(nullptr);
    for (guint i = firstFileField; i < g_strv_length(fields.get()); i++) {
        const char *field = fields.get()[i];
        const OwnedText name = unescape_text(field);
        g_string_append(sentence, i == firstFileField ? "File Name:  " : ", ");
        g_string_append(sentence, plainName(name ? name.get() : field).get());
    }
    g_string_append_c(sentence, '.');
    return displayable_text(sentence->str);
}

OwnedText escapePath(const char *path)
{
    return OwnedText(g_uri_escape_string(path, nullptr, TRUE));
}
