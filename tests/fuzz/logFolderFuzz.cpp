// Whatever a log folder may hold when the log is opened: the first two bytes say whether the log counts as full and how
// many files are kept, the rest are names, a line each; one that ends in a slash is a folder.

#include "tests/fuzz/fuzzing.h"

#include "Logger/logger.h"
#include "src/support.h"

#include <filesystem>
#include <fstream>

namespace
{

namespace fs = std::filesystem;

constexpr size_t maxNames = 40;
constexpr size_t maxNameBytes = 200;

/// One that is there already stays, whatever it is.
void makeFolder(const std::string &path)
{
    std::error_code error;
    fs::create_directory(path, error);
}

void makeFile(const std::string &path)
{
    const std::ofstream file(path, std::ios::app);
}

void fill(const TemporaryFolder &folder, const std::string &text)
{
    const OwnedTexts names(g_strsplit(text.c_str(), "\n", maxNames));
    for (char **name = names.get(); *name; name++) {
        const bool isFolder = g_str_has_suffix(*name, "/");
        std::string plain = std::string(*name).substr(0, maxNameBytes);
        std::erase(plain, '/');
        if (plain.empty() || plain == "." || plain == "..")
            continue;
        if (isFolder)
            makeFolder(folder.file(plain));
        else
            makeFile(folder.file(plain));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return -1;
    failOnWarnings();
    const TemporaryFolder folder;
    fill(folder, textOf(data + 2, size - 2));
    if (!folder.has("ui.log"))
        folder.write("ui.log", "x");
    // A limit of no bytes rotates every log.
    log_init(folder.path().c_str(), "ui.log", data[0] % 2, data[1] % 4);
    log_print(levelInfo, __LINE__, __func__, "%s", textOf(data, size).c_str());
    log_close();
    return 0;
}
