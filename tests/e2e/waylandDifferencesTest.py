"""The same session under X11 and under Wayland: what the agent receives, what is logged and which buttons are there differ
as this table says, and in nothing else."""

import collections
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import waylandRecording
from session import main

RUNNER = pathlib.Path(__file__).parents[1] / "support/uirun"
PROGRAM = "HOME/.brindle/Brindle/bin/{}"
ARGUMENTS = (" -productType true -isRolechange 0 -email Guest -version  -isDemoSession  -applicationPath HOME "
             "-productName Brindle")


def agent_log(session_type, program):
    path = PROGRAM.format(program)
    return [f"INFO AgentStarter {text}" for text in (session_type, path, f"execl args: {path}{ARGUMENTS}")]


def entries(*functions):
    return [f"TRACE_CALL {function} " for function in functions]


# What is logged under X11 only, and what under Wayland only.
LOGGED = (
    # The agent is another program.
    (agent_log("(null)", "main"), agent_log("wayland", "screenshare")),
    # There is no root access.
    (entries("add_active_dialog", "is_dialog_active", "custom_dialog", "on_response_service", "delete_active_dialog")
     + entries("encodeDialogeResponseMessage", "pipewriter") * 2
     + ["INFO on_response_service User Has approved to run as service"],
     entries("ShowUnSupportedDialog", "on_response_admin_mode_launcher") + ["INFO show_dialog_service "]),
)
# What the agent receives under X11 only: the answer that there is none of under Wayland.
HEARD = ["dialogResponse rasApproved", "dialogResponse delete_dialog serviceDialog "]
REPORTED = ["dialogResponse dialog_position serviceDialog"]
# What the window shows under X11 only, until the session is connected.
BUTTONS = {"start": ["Annotation"], "connected": []}


def recorded_under_x11():
    environment = {name: value for name, value in os.environ.items() if name != "UIRUN"}
    with tempfile.NamedTemporaryFile() as file:
        subprocess.run([RUNNER, sys.executable, waylandRecording.__file__, file.name], env=environment, check=True,
                       timeout=200)
        return json.load(file)


def without(whole, part):
    """What is left of a list in its order; the first of several equals goes."""
    left = list(whole)
    for each in part:
        left.remove(each)
    return left


class OneSession(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.x11 = recorded_under_x11()
        cls.wayland = waylandRecording.record()

    def test_ends_well_under_both(self):
        for recording in (self.x11, self.wayland):
            self.assertEqual(recording["status"], 0)
            self.assertEqual(recording["warnings"], [])

    def test_sends_the_same_but_for_root_access(self):
        self.assertEqual(without(self.x11["heard"], HEARD), self.wayland["heard"])

    def test_reports_the_places_of_the_same_dialogs_but_for_root_access(self):
        self.assertEqual(without(self.x11["reported"], REPORTED), self.wayland["reported"])

    def test_shows_the_same_buttons_but_for_annotation_at_the_start(self):
        for moment, only_under_x11 in BUTTONS.items():
            self.assertEqual(without(self.x11["buttons"][moment], only_under_x11), self.wayland["buttons"][moment])

    def test_logs_the_same_but_for_the_agent_and_root_access(self):
        x11, wayland = (collections.Counter(recording["logged"]) for recording in (self.x11, self.wayland))
        for only_under_x11, only_under_wayland in LOGGED:
            x11.subtract(only_under_x11)
            wayland.subtract(only_under_wayland)
        self.assertEqual({line: (x11[line], wayland[line]) for line in {*x11, *wayland} if x11[line] != wayland[line]},
                         {})


if __name__ == "__main__":
    main()
