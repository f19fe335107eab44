"""One round of a session: everything that technician and customer can do, and what has to come of it."""

import collections
import itertools
import time
import urllib.parse

from processes import until, write_text
from questions import CANCELLED, CHOOSER, FRAME, QUESTIONS, TIME

NAMES = ("Ann Lee", "Jörg Müßig", "Łukasz Żółć", "Ольга", "דוד", "مريم", "日本 太郎", "한지민", "Ελένη", "नेहा", "ไทย",
         "👩‍💻 Zoë")
MESSAGES = ("Good morning! Shall I have a look?", "Können Sie das Fenster öffnen?", "Что вы видите на экране?",
            "האם זה עובד עכשיו?", "هل يعمل الآن؟", "もう一度お願いします。\nありがとうございます。",
            "A somewhat longer message that needs several lines in the narrow panel, as most explanations do.", "👍")

# Lines that ask nothing, and what the log says about each; the state at the end is that of the beginning.
REPORTS = (
    ("PING UI", "Received Ping UI, sending alive response"),
    ("sessionStatus disconnected", " Screen Sharing is Stopped"),
    ("sessionStatus disableannotation", "Annotation is disabled"),
    ("sessionStatus disablechat", "chat is disabled"),
    ("sessionStatus disablefiletransfer", "file transfer is disabled"),
    ("sessionStatus disableswapscreen", "swapScreen is disabled"),
    ("sessionStatus disableClipboard", "Clipboard Has been disabled in agent"),
    ("ONDEMAND START", None),
    ("blockInput", "blockInput"),
    ("sessionStatus nothing of the sort", "Unhandled message  nothing"),
    ("dialogPrompt nothing of the sort", "dialogPrompt nothing of the sorts"),
    ("dialogPrompt cancelavcall", "Audio viode call got cancelled"),
    ("initSwap nothing", "unhandled message initSwap nothing"),
    ("neither this", None),
    ("unblockInput", "UnblockInput"),
    ("ONDEMAND STOP", None),
    ("sessionStatus enableswapscreen", "swapScreen is enabled"),
    ("sessionStatus enablefiletransfer", "file transfer is enabled"),
    ("sessionStatus enablechat", "chat is enabled"),
    ("sessionStatus enableannotation", "Annotation is enabled"),
    ("sessionStatus Connected", " Screen Sharing is Started"),
)
NOTICES = (("not32", "Cannot start annotation as this system doenn't support 32 bit"),
           ("connectionLost", "connection Lost"), ("sessionStatus Connected", " Screen Sharing is Started"))
_REPEATS = 40  # of the reports, in one text
_ANSWERS = [(question, *answer) for question in QUESTIONS for answer in question.answers]
_EACH_ROUND = 12  # of those
_NOTICE_SECONDS = 0.4  # longer than a notice shows by the companion's clock


class Work:
    def __init__(self, home, screen, agent, customer):
        self._home, self._screen, self._agent, self._customer = home, screen, agent, customer
        self._closed = screen.height(customer.window)  # the window with all panels closed
        self._answers = itertools.cycle(_ANSWERS)
        self._names = itertools.cycle(NAMES)
        self._messages = itertools.cycle(MESSAGES)
        self.done = collections.Counter()

    def round(self, with_chat):
        self.report()
        self.participants()
        for _ in range(_EACH_ROUND):
            self.ask(*next(self._answers))
        if with_chat:
            self.chat()
        self.sharing()
        self.file_transfer()
        self.annotate()
        self.leave_and_stay()
        self.done["rounds"] += 1

    def report(self):
        """Hundreds of lines in one text, then notices."""
        lines = [*REPORTS * _REPEATS, *NOTICES]
        self._agent.send("\n".join(line for line, _ in lines), *(logged for _, logged in lines if logged))
        self._agent.settle()
        self._wait_notices_gone()
        self.done["reports"] += len(lines)

    def _wait_notices_gone(self):
        """Waits until the window has had its own height longer than any notice shows."""
        since = time.monotonic()
        while time.monotonic() - since < _NOTICE_SECONDS:
            time.sleep(0.02)
            if not self.is_closed():
                since = time.monotonic()

    # ------------------------------------------------------------------------------------------------- questions

    def ask(self, question, how, lines):
        mark = self._agent.mark()
        self._screen.forget()
        self._agent.send(question.line, *filter(None, [question.logged]))
        _, dialog = self._screen.wait_for_map()
        if how == FRAME:
            self._screen.close(dialog)
        elif how == CANCELLED:
            self._agent.send("dialogPrompt cancelavcall", "Audio viode call got cancelled")
        elif how != TIME:
            self._customer.press(how, lambda: self._has_ended(dialog), window=dialog, where=question.line)
        self._screen.wait_for_end(dialog)
        self._agent.expect(mark, *lines)
        self.done["questions", how if how in (FRAME, CANCELLED, TIME) else "by a button"] += 1

    def _has_ended(self, window):
        return not self._screen.exists(window)

    # ----------------------------------------------------------------------------------------------- participants

    def participants(self):
        agent = self._agent
        names = [next(self._names) for _ in range(3)]
        with self._panel("Participant"):
            for number, name in enumerate(names, 41):
                agent.send_and_wait(f"sessionStatus participantsAdd {urllib.parse.quote(name)} {number} false",
                                    f"no of participants :{number - 40} ")
            agent.expected_log["received participants modify"] += 1
            agent.send_and_wait("sessionStatus participantsModify 43 true", "found both widgets")
            self._choose(f"More: {names[-1]}", "Swap Screen", "buttonClicked swapScreen 43")
            self._choose(f"More: {names[-1]}", "Revoke Control", "buttonClicked revokeControl 43")
            for number, name in enumerate(names, 41):
                agent.send_and_wait(f"sessionStatus participantsDelete {urllib.parse.quote(name)} {number}",
                                    "data cleared")
        self.done["participants"] += len(names)

    def _choose(self, button, entry, line):
        mark = self._agent.mark()
        self._customer.choose(button, entry, lambda: self._agent.has(mark, line))
        self._agent.expect(mark, line)
        self.done["menus"] += 1

    # ------------------------------------------------------------------------------------------------------- chat

    def _receive(self, message, name):
        words = f"chat {name}\n{urllib.parse.quote(message, safe='')}"
        self._agent.send(words)
        self._agent.settle()  # its line may be read as the message's third, which nothing shows
        self.done["messages"] += 1

    def chat(self):
        """Two messages, an invitation and a reply."""
        with self._panel("Chat"):
            self._receive(next(self._messages), next(self._names))
            self._receive(next(self._messages), next(self._names))
            self._invite(next(self._names))
            self._reply("Yes", "chat Yes%0A")

    def _invite(self, name):
        self._agent.send_and_wait(f"AR_SESSION https://example.org/ar {name}", "AR Session initiate message received")
        self.done["invitations"] += 1

    def _reply(self, text, line):
        mark = self._agent.mark()
        self._customer.type_into("Message", text, lambda: self._agent.has(mark, line))
        self._agent.expect(mark, line)
        self.done["messages"] += 1

    def choose_files(self, times):
        """The customer looks for a file, then for a folder, and thinks better of it."""
        with self._panel("Chat"):
            for _ in range(times):
                for answer in CHOOSER.answers:
                    self.ask(CHOOSER, *answer)
                self._screen.forget()
                self._customer.press("Download Chat", self._screen.map_comes)
                self._screen.close(self._screen.came)
                self._screen.wait_for_end(self._screen.came)
                self.done["choosers"] += 1 + len(CHOOSER.answers)

    # ----------------------------------------------------------------------------------------------------- panels

    def _panel(self, button):
        return _OpenPanel(self, button)

    def open_panel(self, button):
        self._customer.press(button, lambda: self._screen.height(self._customer.window) > self._closed)
        self.done["panels"] += 1

    def close_panel(self, button):
        self._customer.press(button, self.is_closed)

    def is_closed(self):
        return self._screen.height(self._customer.window) == self._closed

    def sharing(self):
        """Pauses, resumes, and looks at the web site."""
        for button, line, report in (
                ("Pause Screen Sharing", "buttonClicked stop", ("sessionStatus disconnected", " Screen Sharing is Stopped")),
                ("Resume Screen Sharing", "buttonClicked start", ("sessionStatus Connected", " Screen Sharing is Started"))):
            mark = self._agent.mark()
            self._customer.press(button, lambda: self._agent.has(mark, line))
            self._agent.expect(mark, line)
            self._agent.send(*report)
            self._agent.settle()
        self._choose("More", "Go to Website", "buttonClicked settings")

    def file_transfer(self):
        with self._panel("File Transfer"):
            pass

    def annotate(self):
        """The program that draws is started, told to draw, and ends."""
        pipes = [self._home.pipes / name for name in ("AnnotationIn", "AnnotationOut")]
        mark = self._agent.mark()
        self.open_panel("Annotation")
        until(lambda: all(pipe.exists() for pipe in pipes), "the pipes of the annotation program")
        self._customer.press("Pen", self._agent.sees("<TRACE_CALL> [MakeButtonSensitive]"))
        write_text(pipes[0], "Exit")
        self._agent.expect(mark, "monitorData AnnotationClose")
        until(lambda: self.is_closed() and not any(pipe.exists() for pipe in pipes), "annotation is over")
        self.done["annotations"] += 1

    def leave_and_stay(self):
        """The customer closes the window, is asked, and stays."""
        self._screen.forget()
        self._screen.close(self._customer.window)
        _, dialog = self._screen.wait_for_map()
        self._customer.press("No", lambda: self._has_ended(dialog), window=dialog, where="leave")
        self._screen.wait_for_end(dialog)
        self.done["questions", "whether to leave"] += 1


class _OpenPanel:
    def __init__(self, work, button):
        self._work, self._button = work, button

    def __enter__(self):
        self._work.open_panel(self._button)
        time.sleep(0.02)

    def __exit__(self, failure, *_):
        if not failure:
            self._work.close_panel(self._button)
