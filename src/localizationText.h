#pragma once
// Translated texts: the table is loaded once at start-up and looked up with the English text as key.

#include <glib.h>

/// True while no translation is in force. Written by `loadResource` before any other thread runs.
extern bool g_isEnglish;
/// English text to translated text; null until a language was loaded. Written by `loadResource` only.
extern GHashTable *g_hash;

/// Loads the language of the system's locale. Thread: main, once, before any other thread runs.
/// @param localeDirectory  directory with one entry per language, named by a prefix of the locale; borrowed
/// @return 1 when a language was loaded, 0 when the texts stay English
int loadResource(const char *localeDirectory);

/// The entry of the directory that is the longest prefix of the locale; a new text, or null. Thread: main.
/// @param locale  as the system gives it, "de_DE.UTF-8"; may be null
char *checkSystemLocale(const char *localeDirectory, const char *locale);

/// The text to show: the translation, or the key itself; never null, never freed by the caller. A translation of a
/// format has the same conversions as its key, so it may be formatted with the key's arguments. Thread: main, since the
/// table goes at the shut-down.
const char *getString(const char *englishText) G_GNUC_FORMAT(1);

/// Frees the table. Thread: main, when nothing asks for texts any more.
void freeResource();
/// Frees one entry of the table and has it removed.
gboolean remove_hash_value(gpointer key, gpointer value, gpointer userData);
