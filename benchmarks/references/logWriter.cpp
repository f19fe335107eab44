// logWriter DIRECTORY COUNT FUNCTION TEXT [FUNCTION TEXT]...: makes COUNT rounds of flushed log writes through the
// program's own logger, one line for each pair of FUNCTION and TEXT; an empty TEXT stands for the line that marks the
// entry into FUNCTION. Prints the seconds it took.

#include "Logger/logger.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

static void writeRound(int pairs, char **pair)
{
    for (int i = 0; i < pairs; i++, pair += 2) {
        if (*pair[1])
            log_print(levelInfo, __LINE__, pair[0], "%s", pair[1]);
        else
            trace_print(__LINE__, pair[0]);
    }
}

int main(int argc, char **argv)
{
    if (argc < 5 || argc % 2 == 0 || log_init(argv[1], "reference.log", 1000, 1) != 0)
        return 64;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < atoi(argv[2]); i++)
        writeRound((argc - 3) / 2, argv + 3);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    printf("%.6f\n", taken.count());
    return log_close();
}
