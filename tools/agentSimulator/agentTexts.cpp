// Texts of the agent that have fields to be put in order and encoded. Values in, values out.

#include "agentSimulator/agentTexts.h"

#include "agentSimulator/lineTable.h"
#include "agentSimulator/wireText.h"

namespace agentSimulator
{

// The companion looks every line of a text up in its table, so a message that a technician begins with such a word must
// not look like it.
std::string chatText(std::string_view name, std::string_view message)
{
    std::string encoded = percentEncode(message);
    if (beginsWithKeyword(encoded))
        encoded.replace(0, 1, percentEncodeAll(encoded.substr(0, 1)));
    return "chat " + std::string(name) + "\n" + encoded;
}

std::string participantAddText(std::string_view identifier, std::string_view name, std::string_view flag)
{
    return "sessionStatus participantsAdd " + percentEncode(name) + " " + std::string(identifier) + " " +
           std::string(flag) + "\n";
}

// Encoded too, although the companion takes the name as it stands: it is one field.
std::string participantDeleteText(std::string_view identifier, std::string_view name)
{
    return "sessionStatus participantsDelete " + percentEncode(name) + " " + std::string(identifier) + "\n";
}

std::string participantModifyText(std::string_view identifier, std::string_view flag)
{
    return "sessionStatus participantsModify " + std::string(identifier) + " " + std::string(flag) + "\n";
}

std::string technicianNameText(std::string_view name)
{
    return "sessionStatus TECH-NAME " + percentEncode(name) + "\n";
}

} // namespace agentSimulator
