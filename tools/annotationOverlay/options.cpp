#include "tools/annotationOverlay/options.h"

#include <getopt.h>

namespace
{

bool takeOption(int letter, Options &options)
{
    switch (letter) {
    case 'l':
        options.logFolder = optarg;
        return true;
    case 'p':
        options.agentPipe = optarg;
        return true;
    case 'o':
        options.reportPipe = optarg;
        return true;
    case 'i':
        options.commandPipe = optarg;
        return true;
    default:
        return false;
    }
}

} // namespace

bool readOptions(int argc, char **argv, Options &options)
{
    for (int letter = getopt(argc, argv, "l:p:o:i:"); letter != -1; letter = getopt(argc, argv, "l:p:o:i:"))
        if (!takeOption(letter, options))
            return false;
    return options.reportPipe && options.commandPipe;
}
