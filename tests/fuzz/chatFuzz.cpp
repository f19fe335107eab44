// Whatever a technician may write, from the reception to the conversation view and the transcript.

#include "tests/fuzz/fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSession &session = FuzzSession::current();
    session.receiveChat(textOf(data, size));
    session.tidyUp();
    return 0;
}
