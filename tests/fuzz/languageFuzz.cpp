// Whatever a language file may hold. The system's locale is "fuzz" here; see the sandbox in scripts/fuzz.

#include "tests/fuzz/fuzzing.h"

#include "src/localizationText.h"
#include "src/support.h"

#include <glib.h>

namespace
{

constexpr const char *keys[] = {"Connecting...", "Cancel", " Requesting %s to share screen          "};

void load(const std::string &folder)
{
    if (loadResource(folder.c_str()) != 1)
        return;
    for (const char *const key : keys)
        g_free(g_strdup_printf("%s", getString(key)));
    g_free(g_strdup_printf(getString(" Requesting %s to share screen          "), "Ann"));
    freeResource();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const TemporaryFolder folder;
    failOnWarnings();
    g_autofree char *base64 = g_base64_encode(data, size);
    folder.write("fuzz/resource.json", base64);
    load(folder.path());
    folder.write("fuzz/resource.json", std::string(reinterpret_cast<const char *>(data), size));
    load(folder.path());
    return 0;
}
