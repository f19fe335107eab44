// Only the process of the tests looks for its leaks when it ends. What it forks has one thread, which would wait for
// ever for a lock of the allocator that another thread held at the fork.

#include <unistd.h>

namespace
{

const pid_t processOfTests = getpid();

} // namespace

/// Asked by the leak checker, where the build has one.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off()
{
    return getpid() != processOfTests;
}
