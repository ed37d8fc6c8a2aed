"""What the tests on the virtual desktop share: the program on a profile of its own, and its clock.

A test is started inside scripts/desktop.sh with two arguments: vlreminders and remindb.
"""
import glob
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts"))
import make_profile  # noqa: E402
from uidrive.program import Program  # noqa: E402

EARLIER = "Dentist: check-up"  # its reminder fell due earlier today
LATER = "Call the insurance about the water damage"  # not due before some hours


class Clock:
    """The program's wall clock, which runs on but can be put forward; timers keep their pace."""

    def __init__(self, path):
        self._path = path
        self.put_forward(0)

    def put_forward(self, seconds):
        """To `seconds` ahead of the true time."""
        with open(self._path, "w") as file:
            file.write(f"+{seconds}\n")

    def environment(self):
        libraries = glob.glob("/usr/lib/*/faketime/libfaketime.so.1")
        if not libraries:
            sys.exit("libfaketime is missing; make setup installs it")
        return {"LD_PRELOAD": libraries[0], "FAKETIME_TIMESTAMP_FILE": self._path,
                "FAKETIME_NO_CACHE": "1", "FAKETIME_DONT_FAKE_MONOTONIC": "1"}


class Stage(Program):
    """The program on the sample, with one reminder due in a minute of the program's clock."""

    def __init__(self, settings=None, environment=None):
        """`settings`: the lines of the section "Reminders" before the start; `environment`:
        variables beside those of the profile and the clock."""
        vlreminders, remindb = map(os.path.abspath, sys.argv[1:])
        self.folder = os.path.join(os.environ["DESKTOP_TMP"], "profile")
        self.clock = Clock(os.path.join(os.environ["DESKTOP_TMP"], "clock"))
        self.due = make_profile.make(self.folder, remindb)
        self.settings = os.path.join(self.folder, "data", "Velmora", "VLReminders.ini")
        if settings:
            os.makedirs(os.path.dirname(self.settings))
            with open(self.settings, "w") as file:
                file.write(f"[Reminders]\n{settings}\n")
        super().__init__([vlreminders, "--db-folder", os.path.join(self.folder, "db")],
                         {**make_profile.environment(self.folder), **self.clock.environment(),
                          **(environment or {})},
                         os.path.join(os.environ["DESKTOP_LOGS"], "program.log"))


def check(condition, text):
    if not condition:
        raise AssertionError(text)
    print("ok:", text, flush=True)
