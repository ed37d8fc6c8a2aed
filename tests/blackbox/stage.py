"""What the tests on the virtual desktop share: the program on a profile of its own, and its clock.

A test is started inside scripts/desktop.sh with two arguments: vlreminders and remindb.
"""
import glob
import json
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts"))
import make_profile  # noqa: E402
from uidrive import desktop, tree  # noqa: E402
from uidrive.program import Program  # noqa: E402
from uidrive.waiting import NotThere, wait_for, wait_gone  # noqa: E402

EARLIER = "Dentist: check-up"  # its reminder fell due earlier today
LATER = "Call the insurance about the water damage"  # not due before some hours


class Clock:
    """The program's wall clock, which runs on but can be put forward. Timers keep their pace, as
    when somebody sets the clock; with `timers_too` they have waited as long, as when time has
    passed."""

    def __init__(self, path, timers_too=False):
        self._path = path
        self._timers_too = timers_too
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
                "FAKETIME_NO_CACHE": "1",
                "FAKETIME_DONT_FAKE_MONOTONIC": "0" if self._timers_too else "1"}


class Stage(Program):
    """The program on the sample, with one reminder due in a minute of the program's clock."""

    def __init__(self, settings=None, environment=None, timers_too=False):
        """`settings`: the lines of the section "Reminders" before the start; `environment`:
        variables beside those of the profile and the clock; `timers_too`: see `Clock`."""
        vlreminders, remindb = map(os.path.abspath, sys.argv[1:])
        self._remindb = remindb
        self.folder = os.path.join(os.environ["DESKTOP_TMP"], "profile")
        self.clock = Clock(os.path.join(os.environ["DESKTOP_TMP"], "clock"), timers_too)
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

    def sql(self, statement, file=None):
        """The rows of a query on the program's database, or another one, as dictionaries; of a
        change one row."""
        file = file or os.path.join(self.folder, "db", make_profile.DATABASE)
        done = subprocess.run([self._remindb, "sql", file, statement, "--json"], check=True,
                              stdout=subprocess.PIPE, text=True)
        return [json.loads(line) for line in done.stdout.splitlines()]

    def host_file(self):
        """A database of the host that is there."""
        path = os.path.join(self.folder, "Host.vlb")
        with open(path, "w"):
            return path

    def belongs_to(self, subject, path):
        """The event's item is in that file of the host's."""
        self.sql(f'UPDATE Reminders SET VLBase="{path}" WHERE Subject="{subject}"')

    def make_host_of(self, subject, name="Items.vlb"):
        """A database of the host that holds the item of that event, and another one."""
        path = os.path.join(self.folder, name)
        subprocess.run([self._remindb, "new", path], check=True)
        event = self.sql(f'SELECT GUID FROM Reminders WHERE Subject="{subject}"')[0]
        for statement in (
                "CREATE TABLE Event (EventID LONG CONSTRAINT pk PRIMARY KEY, GUID TEXT(255), "
                "ItemID LONG)",
                "CREATE TABLE [\u00AFItems] (ItemID LONG CONSTRAINT pk PRIMARY KEY, Title TEXT(50))",
                f'INSERT INTO Event (EventID, GUID, ItemID) VALUES (1, "{event["GUID"]}", 11)',
                'INSERT INTO Event (EventID, GUID, ItemID) VALUES (2, "another", 12)',
                'INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (11, "Its item")',
                'INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (12, "Another\'s")'):
            self.sql(statement, path)
        self.belongs_to(subject, path)
        return path


class OneDay(Stage):
    """Whenever the test is run, on a day that begins at nine, and for its next five hours only
    EARLIER, `due` and LATER fall due: without the series of the sample, which know weekdays."""

    def __init__(self, *settings, **more):
        os.environ["TZ"] = f"DAY{time.gmtime().tm_hour - 9:+d}"
        time.tzset()
        super().__init__(*settings, **more)
        self.sql("DELETE FROM Reminders WHERE RecurrenceState <> 0")


class Opener:
    """What the program finds when it looks for who opens documents: notes what it is to open."""

    def __init__(self):
        tmp = os.environ["DESKTOP_TMP"]
        self._folder, self._asked = os.path.join(tmp, "opener"), os.path.join(tmp, "opened")
        self._path = os.path.join(self._folder, "xdg-open")
        os.makedirs(self._folder)
        self.install()

    def install(self):
        with open(self._path, "w") as file:
            file.write(f'#!/bin/sh\necho "$1" >> {self._asked}\n')
        os.chmod(self._path, 0o755)

    def environment(self, alone=False):
        """`alone`: besides it nothing can be started."""
        return {"PATH": self._folder if alone else f"{self._folder}:{os.environ['PATH']}"}

    def remove(self):
        os.remove(self._path)

    def opened(self):
        """All addresses so far."""
        if not os.path.exists(self._asked):
            return []
        with open(self._asked) as file:
            return file.read().splitlines()

    def wait_opened(self, count):
        return wait_for(lambda: (lambda found: found if len(found) >= count else None)(
            self.opened()), 10, f"{count} addresses to be opened")


class Elsewhere:
    """A window of another program, in which the user is at work while the block runs."""

    TITLE = "Event Tester"  # xev's; what is typed into it does nothing

    def __enter__(self):
        self._start()
        # Once its window did not come, which says nothing of ours.
        for _ in range(2):
            try:
                self._wait_there()
                break
            except NotThere as e:
                print(f"the other program is started again: {e}, its exit code is "
                      f"{self._program.poll()}", flush=True)
                self.__exit__()
                self._start()
        self.go_there()
        return self

    def _start(self):
        self._program = subprocess.Popen(["xev", "-geometry", "200x200+60+60"],
                                         stdout=subprocess.DEVNULL)

    def _wait_there(self):
        wait_for(lambda: self.TITLE in desktop.titles(), 15, "the other program")

    def go_there(self):
        self._wait_there()
        desktop.activate(self.TITLE)
        desktop.wait_active(self.TITLE)
        # Qt hears of it a little later.
        wait_gone(lambda: any("active" in tree.states(w) for w in tree.windows()), 5,
                  "the focus of our window")

    def __exit__(self, *_):
        self._program.terminate()
        self._program.wait()


def dialog(caption):
    """The dialog whose caption begins so, once it has the keys."""
    def in_front():
        found = next((w for w in tree.windows() if tree.name(w).startswith(caption)), None)
        return found if found and "active" in tree.states(found) and (
            desktop.active_title() or "").startswith(caption) else None
    return wait_for(in_front, 10, f"the dialog {caption!r} in front")


def wait_left(caption):
    wait_gone(lambda: any(tree.name(w).startswith(caption) for w in tree.windows()), 10,
              f"the dialog {caption!r}")


def check(condition, text):
    if not condition:
        raise AssertionError(text)
    print("ok:", text, flush=True)
