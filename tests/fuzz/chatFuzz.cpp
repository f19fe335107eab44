// Whatever a technician may write, from the reception to the conversation view. The conversation is kept as text,
// too, but no transcript is saved.

#include "tests/fuzz/fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSession &session = FuzzSession::current();
    session.receiveChat(textOf(data, size));
    session.tidyUp();
    return 0;
}
