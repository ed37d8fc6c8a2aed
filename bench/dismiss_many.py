#!/usr/bin/python3
"""How long it takes to dismiss many rows at once: from the key until the list is empty.

    ROWS=500 scripts/desktop.sh -- bench/dismiss_many.py PROGRAM REMINDB
"""
import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests",
                                "blackbox"))
from stage import EARLIER, OneDay  # noqa: E402
from uidrive import act, desktop, reminders, tray, tree  # noqa: E402
from uidrive.waiting import wait_for  # noqa: E402

ROWS = int(os.environ.get("ROWS", "500"))
COLUMNS = "StartDateTime", "EndDateTime", "reminders", "status", "Deleted", "Modified"


def literal(value):
    if isinstance(value, str):
        return f"#{value.replace('T', ' ')}#" if value[4:5] == "-" else "'" + value + "'"
    return str(int(value))


def add_rows(program):
    like = program.sql(f'SELECT * FROM Reminders WHERE Subject="{EARLIER}"')[0]
    columns = {name: literal(like[name]) for name in COLUMNS if like.get(name) is not None}
    for i in range(ROWS):
        names = ", ".join(f"[{name}]" for name in ("GUID", "Subject", *columns))
        values = ", ".join((f'"{{row-{i}}}"', f'"Row {i}"', *columns.values()))
        program.sql(f"INSERT INTO Reminders ({names}) VALUES ({values})")


def listed():
    caption = next(t for t in tree.tab_captions(reminders.TITLE) if t.startswith(reminders.NEW))
    return int(caption.split(": ")[1]) if ": " in caption else 0


def is_done():
    return not reminders.showing() or listed() == 0


def measure(program):
    tray.icon(reminders.PROGRAM, timeout=30)
    tray.click(reminders.PROGRAM)
    desktop.wait_active(reminders.TITLE)
    wait_for(lambda: listed() > ROWS, 60, lambda: f"all rows; there are {listed()}")
    act.click(tree.grid(reminders.NEW, reminders.TITLE))
    act.key("ctrl+a")
    time.sleep(1)  # until all is quiet
    begin = time.monotonic()
    act.key("Delete")
    wait_for(is_done, 300, "an empty list", step=0.02)
    print(f"{ROWS + 1} rows dismissed after {time.monotonic() - begin:.2f} s")


if __name__ == "__main__":
    shown = OneDay("NotifType=T", timers_too=True)
    add_rows(shown)
    with shown:
        measure(shown)
