#pragma once
// The words of a question: decided here, shown elsewhere. No widget, no global. Thread: any.

#include "src/support.h"

/// Room from which a text is put into a scrolled area in any case, about a dozen lines of a narrow dialog.
inline constexpr int scrolledTextRoom = 600;
/// Room that a question may take at most; the rest is cut.
inline constexpr int readableTextRoom = 16000;
/// The same of a list of names: thousands of files are a list that one looks through. Its label is some 20,000 pixels
/// high then; a window system that counts them in 16 bits has room for half as much again.
inline constexpr int longestListRoom = 65536;

/// How much room a text takes: one for each character, two for a wide one, a line's worth for each line break; never
/// more than one past `readableTextRoom`, however long the text is.
int measureTextRoom(const char *text);

/// The text of a base64 field, which may be null: decoded, cut at a NUL byte, repaired where it isn't UTF-8; never
/// null.
OwnedText decodeQuestion(const char *base64);

/// True when there is something to read in a text: not only blanks, controls, characters without width and what
/// stands for characters that can't be shown.
bool hasVisibleText(const char *text);

/// A text that can be read whole, or its beginning and an ellipsis. Tabs are blanks, turns of direction are
/// replacement characters. Very long words and heaps of marks get invisible places to break, which also keeps their
/// layout from taking seconds. @param wasCut set, never null. @param longestRoom what the text may take.
OwnedText cutToReadable(const char *text, bool *wasCut, int longestRoom = readableTextRoom);

/// A name as it reads: valid UTF-8 in which controls, line breaks and turns of direction stand as replacement
/// characters, so that no name looks like another.
OwnedText plainName(const char *name);

/// Characters of the longest line of a text.
int measureLongestLine(const char *text);

/// A text that may be markup with mnemonics.
struct JoinText {
    OwnedText words;  ///< what it shows once parsed, or the text itself when it isn't markup or takes too much room
    OwnedText markup; ///< bold, italic and underlined words as a label can show them; null: shown plain
};

/// Reads markup: of all but `b`, `i`, `tt`, `u` and `span` with style, weight and underline only the words stay. What
/// the toolkit would refuse is no markup.
JoinText readMarkup(const char *text);

/// The offered files as a sentence: "File Name:  a, b.", or "." without a file.
/// @param line  the agent's prompt with the escaped names from field 2 on; may be null
OwnedText listOfferedFiles(const char *line);

/// A path as one field of a line: reserved characters escaped, UTF-8 kept.
OwnedText escapePath(const char *path);
