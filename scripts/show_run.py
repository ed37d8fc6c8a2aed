#!/usr/bin/python3
"""One run of the program on the virtual desktop: shows that a reminder comes.

    show_run.py FOLDER BUILD-FOLDER

Makes the sample profile in FOLDER, starts the program, waits until the reminder that falls due a
minute later is listed, takes a picture to FOLDER/picture.png, prints what was notified and ends
the program. Status 1, and why, when nothing was notified.
"""
import os
import subprocess
import sys
import time

import make_profile
from uidrive import desktop, reminders
from uidrive.program import Program
from uidrive.waiting import NotThere, wait_for

PATIENCE = 180  # seconds; the reminder falls due after 60


class Ended(Exception):
    pass


def show(folder, build):
    vlreminders = os.path.join(build, "app", reminders.PROGRAM)
    due = make_profile.make(folder, os.path.join(build, "tools", "remindb"))
    print(f"A reminder of \"{due.subject}\" falls due at {due.time:%H:%M:%S}; waiting for it.",
          flush=True)
    with Program([vlreminders, "--db-folder", os.path.join(folder, "db")],
                 make_profile.environment(folder), os.path.join(folder, "program.log")) as program:
        def listed():
            if program.ended():
                raise Ended(f"the program ended with status {program.process.returncode}:\n"
                            + program.output())
            rows = reminders.rows(reminders.NEW)
            return rows if due.subject in map(reminders.subject, rows) else None

        try:
            rows = wait_for(listed, PATIENCE, f"the reminder of {due.subject!r}", step=0.5)
        except (NotThere, Ended) as failure:
            raise Ended(f"nothing was notified: {failure}") from failure
        desktop.wait_active(reminders.TITLE)
        time.sleep(0.5)  # the last repaint
        picture = os.path.join(folder, "picture.png")
        desktop.picture(picture)
        reminders.exit_by_tray()
        status = program.wait_end()
        if status != 0:
            raise Ended(f"the program ended with status {status}:\n" + program.output())
    print("Notified:")
    for row in rows:
        print(f"  {reminders.subject(row)}, reminder {row[reminders.TIME]}")
    print(f"Picture: {picture}")


if __name__ == "__main__":
    try:
        show(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]))
    except (NotThere, Ended, OSError, RuntimeError, subprocess.CalledProcessError) as failure:
        print(f"make run: {failure}", file=sys.stderr)
        sys.exit(1)
