// The desktop entry: per user, or system-wide for the cloud products.

#include "src/desktopEntry.h"

#include "Logger/logger.h"
#include "src/Utils/installLayout.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

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

} // namespace

void create_desktop_file(const char *name, const MainWindow *mainWindow)
{
    UI_ENTER();
    if (system(updateCommand) != 0)
        UI_DEBUG("the desktop database was not updated");
    const EntryPaths paths = findPaths(name, mainWindow);
    FILE *const file = fopen(paths.entry, "we");
    if (!file) {
        UI_ERROR("Could not create desktop file: %s", paths.entry);
        return;
    }
    fprintf(file,
            "[Desktop Entry]\nVersion=1.0\nName=%s\nIcon=%s\nTerminal=false\nType=Application\nCategories=Utility;\n",
            mainWindow->productWindowTitle, paths.icon);
    fclose(file);
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
