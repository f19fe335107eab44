// Whatever the agent's pipe may bring, through the dispatcher and every handler, with the real widgets.

#include "tests/fuzz/fuzzing.h"

#include <numeric>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const size_t choice = std::accumulate(data, data + size, size_t(0));
    FuzzSession &session = FuzzSession::current();
    session.receive(textOf(data, size), choice % 2 == 1);
    session.answerDialogs(choice);
    session.tidyUp();
    return 0;
}
