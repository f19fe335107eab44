#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace agentSimulator
{

struct InboundLine;

/// The text that a filled-in form stands for, ready to be sent. Missing values count as empty, and empty ones at the
/// end are left out. @param values  as a person types them, one for each field
std::string encodeForm(const InboundLine &line, const std::vector<std::string> &values);

/// The script command that sends a text, byte for byte.
std::string scriptCommandFor(std::string_view text);

/// The script command that waits for a line of the companion.
std::string expectCommandFor(std::string_view line);

} // namespace agentSimulator
