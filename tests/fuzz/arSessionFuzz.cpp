// Whatever an invitation to an AR session may say: the line, the boxed notice and its clickable word.

#include "tests/fuzz/fuzzing.h"

#include "src/Utils/webview.h"

namespace
{

/// The real one would load a web engine.
void seeAddress(const char *url, ChatWindow *)
{
    if (url && !g_str_is_ascii(url) && !g_utf8_validate(url, -1, nullptr))
        g_debug("an address that is no text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSession &session = FuzzSession::current();
    HandleLensSession(g_strdup(("AR_SESSION " + textOf(data, size)).c_str()), session.chat());
    drainMainLoop();
    ClickableRange *const range = session.chat()->clickableRange;
    if (range->cb) {
        range->cb = seeAddress;
        range->cb(session.chat()->ArSessionUrl, session.chat());
    }
    session.tidyUp();
    return 0;
}
