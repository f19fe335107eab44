// logRotator DIRECTORY FILE: opens a full log in DIRECTORY with the program's logger, which moves it away, and then
// looks at each file of DIRECTORY once, by hand. Prints the seconds of the processor of both on standard error: the
// logger uses standard output.

#include "Logger/logger.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <string>

namespace
{

double processorSeconds()
{
    struct timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

int lookAtEach(const std::string &folder)
{
    DIR *const entries = opendir(folder.c_str());
    int seen = 0;
    if (!entries)
        return seen;
    while (const dirent *entry = readdir(entries)) {
        struct stat status;
        seen += stat((folder + "/" + entry->d_name).c_str(), &status) == 0;
    }
    closedir(entries);
    return seen;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 64;
    constexpr int megabytes = 2, names = 7; // as the program has them
    if (lookAtEach(argv[1]) == 0)           // so that both find what the system remembers
        return 1;
    const double start = processorSeconds();
    if (log_init(argv[1], argv[2], megabytes, names) != 0)
        return 1;
    const double walk = processorSeconds();
    lookAtEach(argv[1]);
    fprintf(stderr, "%.9f %.9f\n", walk - start, processorSeconds() - walk);
    return log_close();
}
