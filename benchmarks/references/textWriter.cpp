// textWriter FIFO COUNT PREFIX: writes COUNT texts "PREFIX0\n", "PREFIX1\n" ... back to back, each in its own
// open-write-close cycle. Prints how many writes failed and how many seconds it took.

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

static bool writeText(const char *path, const std::string &text)
{
    const int pipe = open(path, O_WRONLY | O_CLOEXEC);
    if (pipe < 0)
        return false;
    const bool isWritten = write(pipe, text.data(), text.size()) == ssize_t(text.size());
    return close(pipe) == 0 && isWritten;
}

int main(int argc, char **argv)
{
    if (argc != 4)
        return 64;
    signal(SIGPIPE, SIG_IGN);
    const auto start = std::chrono::steady_clock::now();
    int failed = 0;
    for (int i = 0; i < atoi(argv[2]); i++)
        if (!writeText(argv[1], argv[3] + std::to_string(i) + "\n"))
            failed++;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    printf("%d %.6f\n", failed, taken.count());
    return 0;
}
