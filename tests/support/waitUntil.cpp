// Waiting without sleeping: the main loop turns until something holds. What other threads bring about wakes nobody, so
// a tick looks again every few milliseconds.

#include "tests/support/waitUntil.h"

#include <glib.h>

namespace
{

constexpr guint tickMs = 5;
constexpr gint64 longestDrainUs = 2000000;

gboolean keepTicking(gpointer)
{
    return G_SOURCE_CONTINUE;
}

} // namespace

::testing::AssertionResult waitUntil(const std::function<bool()> &condition,
                                     const std::function<std::string()> &whatIsSeen, const int deadlineMs)
{
    const gint64 deadline = g_get_monotonic_time() + static_cast<gint64>(deadlineMs) * 1000;
    const guint tick = g_timeout_add(tickMs, keepTicking, nullptr);
    bool holds = condition();
    while (!holds && g_get_monotonic_time() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
        holds = condition();
    }
    g_source_remove(tick);
    if (holds)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "did not come true in " << deadlineMs << " ms; seen: "
                                         << (whatIsSeen ? whatIsSeen() : std::string("(nothing said)"));
}

void drainMainLoop()
{
    const gint64 end = g_get_monotonic_time() + longestDrainUs;
    while (g_main_context_iteration(nullptr, FALSE) && g_get_monotonic_time() < end) {
    }
}
