// The desktop entry: per user, or system-wide for the cloud products.

#include "src/desktopEntry.h"

#include "Logger/logger.h"
#include "src/Utils/installLayout.h"

#include <unistd.h>

#include <cstdio>

namespace
{

constexpr gsize pathBytes = 512; // longer paths are cut
constexpr char updateCommand[] = "update-desktop-database ~/.local/share/applications";

/// Where the entry goes and which picture it names.
struct EntryPaths {
    char entry[pathBytes];
    char icon[pathBytes];
};

const char *homeDirectory()
{
    const char *const home = g_getenv("HOME");
    return home ? home : "";
}

EntryPaths findPaths(const char *name, const MainWindow *mainWindow)
{
    EntryPaths paths;
    if (isCloudProduct(mainWindow)) {
        g_snprintf(paths.entry, pathBytes, "/usr/share/applications/%s.desktop", name);
        g_strlcpy(paths.icon, cloudLogoPath, pathBytes);
        return paths;
    }
    g_snprintf(paths.entry, pathBytes, "%s/.local/share/applications/%s.desktop", homeDirectory(), name);
    g_snprintf(paths.icon, pathBytes, "%s/.brindle/Brindle/Resource/logo.png", homeDirectory());
    return paths;
}

/// Unlike system() it lets SIGINT and SIGQUIT through: one that came meanwhile would be lost.
bool updateDatabase()
{
    const char *const arguments[] = {"/bin/sh", "-c", updateCommand, nullptr};
    int status = 0;
    return g_spawn_sync(nullptr, const_cast<char **>(arguments), nullptr, G_SPAWN_CHILD_INHERITS_STDIN, nullptr,
                        nullptr, nullptr, nullptr, &status, nullptr) &&
           status == 0;
}

/// False also when there is no room for the whole entry.
bool writeEntry(const EntryPaths &paths, const MainWindow *mainWindow)
{
    FILE *const file = fopen(paths.entry, "we");
    if (!file)
        return false;
    const int written = fprintf(
        file, "[Desktop Entry]\nVersion=1.0\nName=%s\nIcon=%s\nTerminal=false\nType=Application\nCategories=Utility;\n",
        mainWindow->productWindowTitle, paths.icon);
    return fclose(file) == 0 && written >= 0;
}

} // namespace

void create_desktop_file(const char *name, const MainWindow *mainWindow)
{
    UI_ENTER();
    if (!updateDatabase())
        UI_DEBUG("the desktop database was not updated");
    const EntryPaths paths = findPaths(name, mainWindow);
    if (!writeEntry(paths, mainWindow)) {
        UI_ERROR("Could not create desktop file: %s", paths.entry);
        return;
    }
    UI_INFO("Created .desktop file at: %s\n", paths.entry);
}

void delete_desktop_file(const char *name, const MainWindow *mainWindow)
{
    UI_ENTER();
    const EntryPaths paths = findPaths(name, mainWindow);
    if (unlink(paths.entry) == 0)
        UI_INFO("Deleted .desktop file at: %s\n", paths.entry);
    else
        UI_ERROR("Could not delete desktop file: %s", paths.entry);
}
