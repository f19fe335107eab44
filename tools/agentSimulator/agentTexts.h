#pragma once

#include <string>
#include <string_view>

namespace agentSimulator
{

/// A chat message: the sender's name, a newline, the message percent-encoded. No newline ends it. A message that begins
/// with a keyword is shown, not obeyed.
std::string chatText(std::string_view name, std::string_view message);

/// The session status lines about people; names are percent-encoded, identifiers and flags stay as they are.
std::string participantAddText(std::string_view identifier, std::string_view name, std::string_view flag);
std::string participantDeleteText(std::string_view identifier, std::string_view name);
std::string participantModifyText(std::string_view identifier, std::string_view flag);
std::string technicianNameText(std::string_view name);

} // namespace agentSimulator
