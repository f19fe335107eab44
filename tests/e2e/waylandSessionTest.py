"""A session under Wayland goes as under X11: the same controls, questions, files and conversations, with the one question
that is answered by a word of regret."""

import chatTest
import controlsTest
import exitDialogTest
import filesSentTest
import promptAnswersTest
import sessionStatusTest
from promptAnswersTest import CLOSED, ROWS, Row
from session import main

NO_ADMIN_MODE = Row(
    "runAsService", "", "ADMIN MODE", ["Admin mode is not supported under wayland"], ["OK"],
    ["Technician has requset to run as service", ""], dict.fromkeys(("OK", *CLOSED), ([], [])))

for subject in (chatTest.TheCustomer, chatTest.AReceivedMessage, controlsTest.TheSharingButton,
                controlsTest.TheSettingsMenu, exitDialogTest.LeavingTheSession, filesSentTest.OneFile,
                filesSentTest.SeveralFiles, filesSentTest.NoFile, promptAnswersTest.TheQuestionToJoin,
                sessionStatusTest.TheStatusRow, sessionStatusTest.Participants):
    globals()[subject.__name__] = subject


class EveryPrompt(promptAnswersTest.EveryPrompt):
    rows = [NO_ADMIN_MODE if row.word == NO_ADMIN_MODE.word else row for row in ROWS]


if __name__ == "__main__":
    main()
