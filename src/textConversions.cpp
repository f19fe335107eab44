// Compares the printf conversions of two texts.

#include "src/textConversions.h"

#include <cstring>
#include <string_view>

namespace
{

/// The next conversion, from its percent sign to its letter; empty at the end of the text.
std::string_view nextConversion(const char *&text)
{
    const char *const start = strchr(text, '%');
    if (!start) {
        text += strlen(text);
        return {};
    }
    const char *end = start + 1;
    end += strspn(end, "-+ #0123456789.*$'hlLqjzt");
    if (*end)
        end++;
    text = end;
    return {start, size_t(end - start)};
}

} // namespace

bool sameConversions(const char *key, const char *translation)
{
    std::string_view wanted = nextConversion(key);
    if (wanted.empty())
        return true;
    for (; !wanted.empty(); wanted = nextConversion(key))
        if (nextConversion(translation) != wanted)
            return false;
    return nextConversion(translation).empty();
}
