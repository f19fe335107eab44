// transcriptWriter COUNT: appends COUNT entries to the program's transcript, and beside it to a bare text of the same
// words. Prints a line for each tenth of COUNT: the seconds of the processor that it took the transcript and the bare
// text.

#include "src/Chat/chatTranscript.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace
{

constexpr int tenths = 10;
constexpr char message[] = "This is a message of the conversation.";

double processorSeconds()
{
    struct timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

template <typename Work> double timeOf(int count, Work work)
{
    const double start = processorSeconds();
    for (int i = 0; i < count; i++)
        work();
    return processorSeconds() - start;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 64;
    auto *const chatwindow = g_new0(ChatWindow, 1);
    GString *const bare = g_string_new(nullptr);
    const struct tm now = {};
    for (int i = 0; i < tenths; i++) {
        const int count = atoi(argv[1]) / tenths;
        const double ours = timeOf(count, [&] { store_chat_message(message, "Ann", chatwindow, now, now); });
        const double reference = timeOf(count, [&] { g_string_append_printf(bare, "\n  \t\t\t %s", message); });
        printf("%.9f %.9f\n", ours, reference);
    }
    const bool isSame = g_string_equal(chatwindow->chatData, bare);
    g_string_free(chatwindow->chatData, TRUE);
    g_string_free(bare, TRUE);
    g_free(chatwindow);
    return isSame ? 0 : 1;
}
