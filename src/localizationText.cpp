// The table of translated texts. Loading decides the language from the system's locale file, reads one base64-encoded
// JSON array of keys and values, and fills the table; whatever goes wrong leaves the program in English.
// Owns the table and its texts, which are copies of those in the document.

#include "src/localizationText.h"

#include "Logger/logger.h"
#include "src/support.h"
#include "src/textConversions.h"

#include <cjson/cJSON.h>

#include <cstring>

bool g_isEnglish = true;
GHashTable *g_hash = nullptr;

namespace
{

constexpr char localeFile[] = "/etc/default/locale";
constexpr char localeVariable[] = "LANG";
constexpr int maxLocaleLines = 7;
constexpr int minTexts = 10;

struct FreeJson {
    void operator()(cJSON *json) const { cJSON_Delete(json); }
};
using OwnedJson = std::unique_ptr<cJSON, FreeJson>;

/// What the log says when a file can't be opened or read.
struct FileMessages {
    const char *openFailed;
    const char *readFailed;
};
constexpr FileMessages localeMessages = {"error opening locale file ", "error reading locale file "};
constexpr FileMessages resourceMessages = {"error opening resoruce file ", "error reading resoruce file "};

/// Reads a file as it is, bytes and all; null, with a line in the log, when that fails.
/// @param suffix  ends the log line
OwnedText readFile(const char *path, const FileMessages &messages, const char *suffix)
{
    g_autoptr(GError) error = nullptr;
    g_autoptr(GIOChannel) channel = g_io_channel_new_file(path, "r", &error);
    if (!channel) {
        UI_INFO_AS("loadResource", "%s%s%s", messages.openFailed, error->message, suffix);
        return nullptr;
    }
    g_io_channel_set_encoding(channel, nullptr, nullptr);
    char *text = nullptr;
    if (g_io_channel_read_to_end(channel, &text, nullptr, &error) != G_IO_STATUS_NORMAL) {
        UI_INFO_AS("loadResource", "%s%s%s", messages.readFailed, error ? error->message : "", suffix);
        return nullptr;
    }
    g_io_channel_shutdown(channel, TRUE, nullptr);
    return OwnedText(text);
}

/// What the locale file says.
struct SystemLocale {
    OwnedText value;     ///< null: no value
    bool tooFar = false; ///< the file has more lines than are looked at, and none of those names a locale
};

OwnedText valueOf(const char *line)
{
    const OwnedTexts pieces(g_strsplit(line, "=", -1));
    return pieces.get()[0] && pieces.get()[1] ? OwnedText(g_strdup(pieces.get()[1])) : nullptr;
}

SystemLocale findLocale(const char *text)
{
    const OwnedTexts lines(g_strsplit(text, "\n", -1));
    for (int i = 0; lines.get()[i]; i++) {
        // Kept on purpose: a locale further down counts as none.
        if (i >= maxLocaleLines)
            return {nullptr, true};
        if (g_str_has_prefix(g_strstrip(lines.get()[i]), localeVariable))
            return {valueOf(lines.get()[i]), false};
    }
    return {};
}

void addText(const cJSON *element)
{
    const char *const value = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(element, "Value"));
    const char *const key = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(element, "Key"));
    if (!key || !value || !g_utf8_validate(value, -1, nullptr) || !sameConversions(key, value))
        return; // a text that could not be shown or formatted stays English
    gpointer oldKey = nullptr, oldValue = nullptr;
    if (g_hash_table_steal_extended(g_hash, key, &oldKey, &oldValue))
        remove_hash_value(oldKey, oldValue, nullptr);
    g_hash_table_insert(g_hash, g_strdup(key), g_strdup(value));
}

OwnedJson parseBase64Json(const char *text)
{
    gsize length = 0;
    g_autofree guchar *decoded = g_base64_decode(text, &length);
    UI_INFO_AS("loadResource", "decoded Text");
    return OwnedJson(cJSON_ParseWithLength(reinterpret_cast<const char *>(decoded), length));
}

/// The parsed language file of a locale directory's entry; null, with a line in the log, when it can't be used.
OwnedJson readLanguage(const char *localeDirectory, const char *entry)
{
    g_autofree char *path = g_strdup_printf("%s/%s/resource.json", localeDirectory, entry);
    const OwnedText text = readFile(path, resourceMessages, " ");
    if (!text)
        return nullptr;
    UI_INFO_AS("loadResource", "read resource file");
    OwnedJson json = parseBase64Json(text.get());
    if (!json)
        UI_INFO_AS("loadResource", "error parsing reosurce string");
    return json;
}

int fillTable(const cJSON *texts)
{
    if (!cJSON_IsArray(texts) || cJSON_GetArraySize(texts) < minTexts)
        return 0;
    UI_INFO_AS("loadResource", "count more than 10");
    g_hash = g_hash_table_new(g_str_hash, g_str_equal);
    UI_INFO_AS("loadResource", "creating hash table");
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, texts) addText(element);
    g_isEnglish = false;
    return 1;
}

} // namespace

int loadResource(const char *localeDirectory)
{
    UI_ENTER();
    g_isEnglish = true;
    const OwnedText localeText = readFile(localeFile, localeMessages, "");
    if (!localeText)
        return 0;
    const SystemLocale locale = findLocale(localeText.get());
    if (locale.tooFar)
        return 0;
    const OwnedText entry(checkSystemLocale(localeDirectory, locale.value.get()));
    if (!entry) {
        UI_INFO("error matching locale settings locale as english");
        return 0;
    }
    const OwnedJson texts = readLanguage(localeDirectory, entry.get());
    return texts ? fillTable(texts.get()) : 0;
}

char *checkSystemLocale(const char *localeDirectory, const char *locale)
{
    UI_ENTER();
    UI_INFO("system locale %s", locale ? locale : "(null)");
    g_autoptr(GDir) entries = g_dir_open(localeDirectory, 0, nullptr);
    if (!entries || !locale)
        return nullptr;
    OwnedText best;
    while (const char *name = g_dir_read_name(entries))
        if (g_str_has_prefix(locale, name) && (!best || strlen(name) > strlen(best.get())))
            best.reset(g_strdup(name));
    return best.release();
}

const char *getString(const char *englishText)
{
    if (g_isEnglish)
        return englishText;
    const auto *const translated = static_cast<const char *>(g_hash_table_lookup(g_hash, englishText));
    return translated ? translated : englishText;
}

gboolean remove_hash_value(gpointer key, gpointer value, gpointer)
{
    g_free(key);
    g_free(value);
    return TRUE;
}

void freeResource()
{
    if (!g_hash)
        return;
    g_hash_table_foreach_remove(g_hash, remove_hash_value, nullptr);
    g_hash_table_unref(g_hash);
}
