"""What the technician may ask, and every way in which the customer answers."""

import dataclasses

FRAME = "by the frame"
TIME = "by time"
CANCELLED = "by the technician"
_CONSENT = "dialogPrompt userConcent 2YXYsdit2KjYpyDmiJHlj6/ku6UgTWF5IEkgdXNlIHlvdXIgY2FtZXJhPw== client9 camera"


@dataclasses.dataclass
class Question:
    line: str
    logged: str  # what the log says about it each time
    answers: tuple  # (button, or a way to close it; the lines that follow)


def _response(*words):
    return tuple(f"dialogResponse {each}" for each in words)


def _refused(button, *lines):
    """A refusal by its button, and one by the frame of the window."""
    return (button, lines), (FRAME, lines)


_SERVICE_GONE, _SCRIPT_GONE, _CAMERA_GONE, _SWAP_GONE, _CHOOSER_GONE, _CLIPBOARD_GONE = _response(*(
    f"delete_dialog {kind} " for kind in ("serviceDialog", "scriptLauncherDialog", "camera", "initswap",
                                          "fileChooserDialog", "clipboardDialog")))
_CALL_ANSWERS = (("Accept", _response("AVAccept")), *_refused("Reject", *_response("AVReject")), (CANCELLED, ()))
_CLIPBOARD_CLOSED = "clipboard 3", _CLIPBOARD_GONE

QUESTIONS = (
    Question("dialogPrompt runAsService", "Technician has requset to run as service", (
        ("Yes", (*_response("rasApproved"), _SERVICE_GONE)), *_refused("No", _SERVICE_GONE))),
    Question(_CONSENT, "Prompt user concent dialog", (
        ("Yes", (*_response("concentuser approved client9 camera false"), _CAMERA_GONE)),
        (FRAME, (*_response("concentuser disapproved client9 camera false"), _CAMERA_GONE)))),
    Question("dialogPrompt launchScript clean-日本語.sh", "Prompt script launcher dialog", (
        ("Allow", (*_response("scriptApproved"), _SCRIPT_GONE)), *_refused("Deny", _SCRIPT_GONE))),
    Question("dialogPrompt command 41", "Starting DialogDemo", (
        ("Yes", _response("controlApproved 41")), *_refused("No", *_response("controlRefused")))),
    Question("dialogPrompt configureURS word", "Prompting urs configure dialog box", (
        ("Yes", _response("ursConfigureApproved word")), *_refused("No", *_response("ursConfigureRejected word")))),
    Question("dialogPrompt rebootPc", "Prompting reboot dialog box", (
        ("Yes", _response("rebootInitiated")), *_refused("No", *_response("rebootCanceled")), (TIME, ()))),
    Question("dialogPrompt acall", "Technician has requset to start audio call", _CALL_ANSWERS),
    Question("dialogPrompt vcall", "Technician has requset to start video service", _CALL_ANSWERS),
    Question("dialogPrompt lockuser", "Technician has requset to run as service", _refused("No")),
    Question("dialogPrompt samecon Sm9pbiA8Yj5Cb2I8L2I+ICZhbXA7INee15nXm9ec", "Prompt confirmation dialog", (
        ("Join", _response("delete_dialog samecon ", "screenSharingApproved")),)),
    Question("dialogPrompt initswap Bob", "Prompt swap dialog", _refused(
        "Cancel", *_response("swapRejected"), _SWAP_GONE)),
    Question("clipboard", "", (
        ("Allow always", ("clipboard 1", *_CLIPBOARD_CLOSED)), ("Allow once", ("clipboard 2", *_CLIPBOARD_CLOSED)),
        (FRAME, _CLIPBOARD_CLOSED))),
    Question("dialogPrompt fileTransferReceive a%20b.txt %D7%AA%D7%9E.pdf", "receive files dialogPrompt "
             "fileTransferReceive a%20b.txt %D7%AA%D7%9E.pdf", (
                 ("Save", ("monitorData fileTransferRecive", *_response("FTAccept %2Ftmp%2F"))),
                 *_refused("Cancel", "monitorData fileTransferRecive", *_response("FTCancel")))),
)
CHOOSER = Question("dialogPrompt fileTransfer 7", "", (("Cancel", (_CHOOSER_GONE,)), (FRAME, (_CHOOSER_GONE,))))
