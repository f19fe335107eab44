// Whatever the agent's pipe may bring, through the dispatcher and every handler, with the real widgets.

#include "tests/fuzz/fuzzing.h"

#include <algorithm>
#include <numeric>

namespace
{

/// The program ends with this line, and the run with it.
bool endsProgram(const std::string &text)
{
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return char(tolower(c)); });
    return lower.find("exit") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text = textOf(data, size);
    if (endsProgram(text))
        return -1;
    FuzzSession &session = FuzzSession::current();
    session.receive(text);
    session.answerDialogs(std::accumulate(data, data + size, size_t(0)));
    session.tidyUp();
    return 0;
}
