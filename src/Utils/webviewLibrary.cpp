// Looks the web-view library up on the disk and loads it. Two versions of it can't live in one process, and none
// survives unloading once it has worked: the first one that served is the one that stays.

#include "src/Utils/webview.h"

#include "Logger/logger.h"

#include <dlfcn.h>
#include <glob.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

namespace
{

struct SystemDeleter {
    void operator()(char *text) const { free(text); }
};
using SystemText = std::unique_ptr<char, SystemDeleter>;

constexpr const char *libraryFolders[] = {"/usr/lib", "/usr/lib64", "/usr/local/lib",
                                          "/lib",     "/lib64",     "/lib/x86_64-linux-gnu"};
// The second is a last resort that has no web view; that it can't be used is then said in the log.
constexpr const char *libraryPatterns[] = {"libwebkit2gtk*.so*", "libjavascriptcoregtk*.so*"};
constexpr gsize longestPattern = 4096;
constexpr char requiredNew[] = "webkit_web_view_new";
constexpr char requiredLoad[] = "webkit_web_view_load_uri";

const char *fileNameOf(const char *path)
{
    const char *const slash = strrchr(path, '/');
    return slash ? slash + 1 : path;
}

void logMatches(const glob_t &found, const char *pattern, const char *folder)
{
    UI_INFO_AS("CheckForInstalledLibs", "Found %zu matches for pattern '%s' in '%s':\n", size_t(found.gl_pathc),
               pattern, folder);
    for (size_t i = 0; i < found.gl_pathc; i++)
        UI_INFO_AS("CheckForInstalledLibs", " → %s\n", fileNameOf(found.gl_pathv[i]));
}

/// The match that sorts first; null when there is none.
SystemText firstMatch(const char *folder, const char *pattern)
{
    g_autofree char *path = g_strdup_printf("%s%s%s", folder, g_str_has_suffix(folder, "/") ? "" : "/", pattern);
    if (strlen(path) >= longestPattern)
        return nullptr;
    glob_t found = {};
    SystemText first;
    if (glob(path, 0, nullptr, &found) == 0 && found.gl_pathc > 0) {
        logMatches(found, pattern, folder);
        first.reset(strdup(found.gl_pathv[0]));
    }
    globfree(&found);
    return first;
}

/// Path of a web-view library that is in the process already; null when there is none.
SystemText findLoadedLibrary()
{
    Dl_info info = {};
    void *const symbol = dlsym(RTLD_DEFAULT, requiredNew);
    if (!symbol || dladdr(symbol, &info) == 0 || !info.dli_fname)
        return nullptr;
    return SystemText(strdup(info.dli_fname));
}

template <class Function> void resolve(void *handle, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(dlsym(handle, name));
}

void logMissing(const WebKitLib *library)
{
    UI_INFO_AS("webkitlib_init", "Failed to resolve required symbols from WebKit library. Missing:\n");
    if (!library->webview_new)
        UI_INFO_AS("webkitlib_init", " - %s\n", requiredNew);
    if (!library->webview_load_uri)
        UI_INFO_AS("webkitlib_init", " - %s\n", requiredLoad);
}

bool loadLibrary(WebKitLib *library)
{
    library->handle = dlopen(library->lib_path, RTLD_LAZY | RTLD_GLOBAL);
    if (library->handle)
        return true;
    const char *const trouble = dlerror();
    UI_INFO_AS("webkitlib_init", "Failed to load WebKit library '%s': %s\n", library->lib_path, trouble ? trouble : "");
    return false;
}

void release(WebKitLib *library)
{
    if (library->handle)
        dlclose(library->handle);
    library->handle = nullptr;
    free(library->lib_path);
    library->lib_path = nullptr;
    library->webview_new = nullptr;
    library->webview_load_uri = nullptr;
}

} // namespace

char *CheckForInstalledLibs()
{
    UI_ENTER();
    SystemText candidates[std::size(libraryPatterns)];
    for (const char *const folder : libraryFolders)
        for (size_t i = 0; i < std::size(libraryPatterns); i++) {
            SystemText match = firstMatch(folder, libraryPatterns[i]);
            if (!candidates[i])
                candidates[i] = std::move(match);
        }
    return candidates[0] ? candidates[0].release() : candidates[1].release();
}

int webkitlib_init(WebKitLib *library)
{
    UI_ENTER();
    if (!library)
        return 0;
    *library = WebKitLib{};
    SystemText path(CheckForInstalledLibs());
    if (!path) {
        UI_INFO("No WebKit/WebCore library found.\n");
        return 0;
    }
    // Loading another version beside it would end the process.
    if (SystemText loaded = findLoadedLibrary())
        path = std::move(loaded);
    library->lib_path = path.release();
    if (!loadLibrary(library)) {
        release(library);
        return 0;
    }
    resolve(library->handle, requiredNew, library->webview_new);
    resolve(library->handle, requiredLoad, library->webview_load_uri);
    resolve(library->handle, "webkit_web_view_get_context", library->web_view_get_context);
    resolve(library->handle, "webkit_web_context_clear_cache", library->web_context_clear_cache);
    if (library->webview_new && library->webview_load_uri) {
        UI_INFO("Using webkit library: %s\n", library->lib_path);
        return 1;
    }
    logMissing(library);
    release(library);
    return 0;
}

void webkitlib_close(WebKitLib *library)
{
    UI_ENTER();
    release(library);
}
