// A mount name space of the test's own. Root gets one directly, everybody else together with a user name space in which
// the user keeps its number.

#include "tests/unit/main/privateSystem.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>

namespace
{

::testing::AssertionResult failure(const std::string &what)
{
    return ::testing::AssertionFailure() << what << ": " << strerror(errno);
}

bool enterOwnNameSpace()
{
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (geteuid() == 0)
        return unshare(CLONE_NEWNS) == 0;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
    std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
    return true;
}

} // namespace

::testing::AssertionResult usePrivateFolders(std::initializer_list<const char *> folders)
{
    if (!enterOwnNameSpace() || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return failure("no name space of its own");
    for (const char *const folder : folders)
        if (mount("none", folder, "tmpfs", 0, nullptr) != 0)
            return failure(folder);
    return ::testing::AssertionSuccess();
}
