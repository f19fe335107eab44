// What both sides can say, row by row: the console's forms, its list of the conversation and the check of the protocol
// page all read these two tables.

#include "agentSimulator/lineTable.h"

namespace agentSimulator
{

namespace
{

constexpr char names[] = "John Smith|Ann Lee|Kim Park";
constexpr char identifiers[] = "41|42|43";
constexpr char flags[] = "true|false";

constexpr InboundLine report(Topic topic, const char *word, const char *title, const char *meaning, Field first = {},
                             Field second = {}, Field third = {})
{
    return {topic, Match::prefix, "sessionStatus", word, title, meaning, {first, second, third}};
}

constexpr InboundLine prompt(Topic topic, const char *word, const char *title, const char *meaning, Field first = {},
                             Field second = {}, Field third = {})
{
    return {topic, Match::prefix, "dialogPrompt", word, title, meaning, {first, second, third}};
}

constexpr InboundLine outcome(const char *word, const char *title, const char *meaning)
{
    return {Topic::swap, Match::prefix, "initSwap", word, title, meaning, {}};
}

constexpr InboundLine alone(Topic topic, const char *keyword, Match match, const char *title, const char *meaning)
{
    return {topic, match, keyword, "", title, meaning, {}};
}

constexpr Field name = {"name", Encoding::percent, "John Smith", names};
constexpr Field identifier = {"ID", Encoding::plain, "41", identifiers};

constexpr InboundLine inbound[] = {
    report(Topic::session, "Connected", "Connected", "Sharing runs: the online icon, and the button pauses"),
    report(Topic::session, "disconnected", "Disconnected",
           "Sharing is paused: the offline icon, and the button resumes"),
    report(Topic::session, "TECH-NAME", "Technician's name", "Shown as status. The first name stays", name),
    alone(Topic::session, "connectionLost", Match::equal, "Connection lost",
          "The offline icon; an open notice says that the connection is down"),
    alone(Topic::session, "ONDEMAND START", Match::prefix, "Recording begins", "The recording picture shows"),
    alone(Topic::session, "ONDEMAND STOP", Match::prefix, "Recording ends", "The recording picture goes"),
    alone(Topic::session, "blockInput", Match::equal, "Block input", "A notice tells how to enable the input devices"),
    alone(Topic::session, "unblockInput", Match::equal, "Unblock input", "The notice goes"),
    alone(Topic::session, "not32", Match::equal, "No annotation here",
          "A notice says that annotation is not supported"),
    {Topic::session,
     Match::prefix,
     "sessionKey",
     "",
     "Session key",
     "Stands in the header of a saved chat transcript",
     {{"the key", Encoding::plain, "123-456-789"}},
     Shape::bare},
    alone(Topic::session, "PING UI", Match::prefix, "One sign of life",
          "Nothing to be seen; it keeps the program alive"),
    alone(Topic::session, "exit", Match::equal, "End the companion", "The program ends"),
    report(Topic::session, "exit", "End by a report", "The program ends"),

    report(Topic::people, "participantsAdd", "Somebody joins",
           "A new row on top. With \"false\" control can be revoked", name, identifier,
           {"flag", Encoding::plain, "true", flags}),
    report(Topic::people, "participantsModify", "Control changes hands", "With \"true\" control can be revoked",
           identifier, {"flag", Encoding::plain, "true", flags}),
    report(Topic::people, "participantsDelete", "Somebody leaves", "The row of this ID goes", name, identifier),

    prompt(Topic::questions, "samecon", "Join the session?", "The first question; a refusal ends the program",
           {"message", Encoding::base64, "A technician would like to see your <b>screen</b>.", "", true}),
    prompt(Topic::questions, "userConcent", "Use a feature?", "Asks with \"Remember this option\"",
           {"question", Encoding::base64, "May the technician see the list of programs?"},
           {"client ID", Encoding::plain, "41", identifiers},
           {"feature", Encoding::plain, "programs", "programs|camera"}),
    prompt(Topic::questions, "command", "Control the device?", "Asks for this participant",
           {"participant's ID", Encoding::plain, "41", identifiers}),
    prompt(Topic::questions, "runAsService", "Root-level access?", "Under Wayland it only says that it can't be"),
    prompt(Topic::questions, "launchScript", "Run a script?", "Asks for the script by its name",
           {"script's name", Encoding::plain, "cleanup.sh"}),
    prompt(Topic::questions, "configureURS", "Unattended access?", "The word comes back with the answer",
           {"a word that is echoed", Encoding::plain, "41"}),
    prompt(Topic::questions, "rebootPc", "Reboot?", "Goes by itself after ten seconds"),
    prompt(Topic::questions, "lockuser", "Lock the screen?", "Agreeing asks the agent to end"),
    alone(Topic::questions, "clipboard", Match::prefix, "Use the clipboard?", "Always, once, or not at all"),

    prompt(Topic::files, "fileTransferReceive", "Offer files", "Save these files, and where? Names separated by \";\"",
           {"file names", Encoding::percentList, "user manual.pdf; settings.txt"}),
    prompt(Topic::files, "fileTransfer", "Ask for files", "A file chooser opens",
           {"receiver's ID", Encoding::plain, "41", identifiers}),
    prompt(Topic::files, "acall", "Voice call", "Rings for three minutes"),
    prompt(Topic::files, "vcall", "Video call", "Rings for three minutes"),
    prompt(Topic::files, "cancelavcall", "Stop ringing", "The call's question goes"),

    prompt(Topic::swap, "initswap", "Technician's screen is asked for",
           "The customer waits and may cancel. The dialog shows the name of TECH-NAME, not this one",
           {"technician's name", Encoding::plain, "John", "John|Ann|Kim"}),
    outcome("approved", "Approved", "The waiting dialog and the main window go; the program runs on"),
    outcome("swapRejected", "Rejected", "The waiting dialog goes, with a notice"),
    outcome("toManyUsers", "Too many technicians", "A notice; the dialog stays"),

    {Topic::chat,
     Match::prefix,
     "chat",
     "",
     "Chat message",
     "The chat panel opens and shows it",
     {{"name", Encoding::plain, "John Smith", names}, {"message", Encoding::percent, "Good morning!"}},
     Shape::chat},
    {Topic::chat,
     Match::prefix,
     "AR_SESSION",
     "",
     "Invite to an AR session",
     "An invitation in the conversation",
     {{"URL", Encoding::plain, "http://127.0.0.1:8642/"},
      {"technician's name", Encoding::plain, "John", "John|Ann|Kim"}}},

    report(Topic::permissions, "enablechat", "Allow chat", "The chat button comes"),
    report(Topic::permissions, "disablechat", "Forbid chat", "The chat button goes"),
    report(Topic::permissions, "enablefiletransfer", "Allow file transfer", "The file transfer button comes"),
    report(Topic::permissions, "disablefiletransfer", "Forbid file transfer", "The file transfer button goes"),
    report(Topic::permissions, "enableannotation", "Allow annotation", "The annotation button comes"),
    report(Topic::permissions, "disableannotation", "Forbid annotation", "The annotation button goes"),
    report(Topic::permissions, "enableswapscreen", "Allow swapping", "Who joins from now on gets a menu"),
    report(Topic::permissions, "disableswapscreen", "Forbid swapping", "Who joins from now on gets none"),
    report(Topic::permissions, "disableClipboard", "Forbid the clipboard", "The clipboard watch reports nothing more"),
};

constexpr OutboundLine outbound[] = {
    {"SendSessionDetails", "The companion is up and wants to be told about the session"},
    {"buttonClicked stop", "The customer pauses sharing"},
    {"buttonClicked start", "The customer resumes sharing"},
    {"buttonClicked settings", "The customer wants to see the website"},
    {"buttonClicked exit", "The customer leaves"},
    {"buttonClicked swapScreen ID", "The customer wants to see the screen of participant ID"},
    {"buttonClicked revokeControl ID", "The customer takes control away from participant ID"},
    {"dialogResponse screenSharingApproved", "The customer joins"},
    {"dialogResponse screenSharingDenied", "The customer does not join"},
    {"dialogResponse concentuser approved CLIENT FEATURE REMEMBER", "FEATURE is allowed to CLIENT; remember: REMEMBER"},
    {"dialogResponse concentuser disapproved CLIENT FEATURE REMEMBER",
     "FEATURE is not allowed to CLIENT; remember: REMEMBER"},
    {"dialogResponse rasApproved", "Root-level access is allowed"},
    {"dialogResponse scriptApproved", "The script may run"},
    {"dialogResponse controlApproved ID", "Participant ID may control the device"},
    {"dialogResponse controlRefused", "Control is refused"},
    {"dialogResponse ursConfigureApproved WORD", "Unattended access is allowed: WORD"},
    {"dialogResponse ursConfigureRejected WORD", "Unattended access is refused: WORD"},
    {"dialogResponse rebootInitiated", "The customer agrees to reboot"},
    {"dialogResponse rebootCanceled", "The customer does not want to reboot"},
    {"dialogResponse AVAccept", "The customer takes the call"},
    {"dialogResponse AVReject", "The customer does not take the call"},
    {"dialogResponse swapRejected", "The customer waits no longer for the technician's screen"},
    {"dialogResponse FTAccept FOLDER", "The files are to be saved in FOLDER"},
    {"dialogResponse FTCancel", "The files are not wanted"},
    {"dialogResponse FileName PATH RECEIVER", "One file for RECEIVER: PATH"},
    {"zip_folder LIST RECEIVER", "Several files for RECEIVER: LIST"},
    {"dialogResponse dialog_position KIND X Y WIDTH HEIGHT", "The dialog KIND stands at X, Y and is WIDTH by HEIGHT"},
    {"dialogResponse delete_dialog KIND", "The dialog KIND has gone"},
    {"monitorData fileTransferRecive", "The offer of files is shown"},
    {"monitorData fileTransferSend", "The choice of another folder has ended"},
    {"monitorData AnnotationClose", "The annotation program has ended"},
    {"clipboard 1", "The clipboard is always allowed"},
    {"clipboard 2", "The clipboard is allowed once"},
    {"clipboard 3", "The question about the clipboard has gone"},
    {"chat MESSAGE", "The customer writes: MESSAGE"},
    {"sessionAuditClipboard TEXT", "New in the customer's clipboard: TEXT"},
};

} // namespace

std::span<const InboundLine> inboundLines()
{
    return inbound;
}

std::span<const OutboundLine> outboundLines()
{
    return outbound;
}

size_t InboundLine::fieldCount() const
{
    size_t count = 0;
    while (count < maxFields && fields[count].name)
        count++;
    return count;
}

} // namespace agentSimulator
