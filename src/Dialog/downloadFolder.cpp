// The folder that offered files are saved in.

#include "src/Dialog/fileTransferDialogs.h"

#include "Logger/logger.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr mode_t folderMode = 0755;

bool isFolder(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

enum class Found { folder, nothing, unusable };

Found lookAt(const char *path)
{
    struct stat status;
    if (stat(path, &status) == 0) {
        if (S_ISDIR(status.st_mode))
            return Found::folder;
        fprintf(stderr, "%s exists but is not a directory\n", path);
        return Found::unusable;
    }
    if (errno == ENOENT)
        return Found::nothing;
    perror("stat");
    return Found::unusable;
}

enum class Made { newFolder, byAnother, failed };

Made makeFolder(const char *path)
{
    if (mkdir(path, folderMode) == 0)
        return Made::newFolder;
    if (errno != EEXIST) {
        perror("mkdir");
        return Made::failed;
    }
    if (isFolder(path))
        return Made::byAnother;
    fprintf(stderr, "mkdir race: %s was created but is not dir\n", path);
    return Made::failed;
}

void giveFolder(int folder, const char *user)
{
    const struct passwd *account = getpwnam(user);
    if (!account)
        fprintf(stderr, "create_download_folder: user '%s' not found\n", user);
    else if (fchown(folder, account->pw_uid, account->pw_gid) != 0 && errno != EPERM && errno != EACCES)
        perror("chown");
}

/// The owner of a folder, and of one of ours the rights, whatever the process leaves out of those of its own files.
/// Works on the folder itself, not on what a link in its place points at: somebody may have put one there meanwhile,
/// and the program may run as root.
void setUpFolder(const char *path, const char *user, Made made)
{
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) {
        perror("open");
        return;
    }
    if (made == Made::newFolder && fchmod(folder, folderMode) != 0)
        perror("chmod");
    giveFolder(folder, user);
    close(folder);
}
} // namespace

char *create_download_folder(const char *path, const char *user)
{
    UI_ENTER();
    if (!path || !user || !*user)
        return nullptr;
    const Found found = lookAt(path);
    if (found == Found::unusable)
        return nullptr;
    if (found == Found::nothing) {
        const Made made = makeFolder(path);
        if (made == Made::failed)
            return nullptr;
        setUpFolder(path, user, made);
    }
    return g_strdup(path);
}
