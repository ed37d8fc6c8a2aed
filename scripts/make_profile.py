#!/usr/bin/python3
"""A profile to run the program on: settings of its own and a new database with the sample's events,
moved to now.

    make_profile.py FOLDER REMINDB

FOLDER/db holds the database, FOLDER/data, config, cache and state are for the XDG variables, so
that nothing of the user's is read or written. REMINDB is the program that reads and writes the
file. Prints the reminder that falls due a minute from now.
"""
import json
import os
import shutil
import subprocess
import sys
from datetime import datetime, timezone

import sample_plan

SAMPLE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data",
                      "first-light.RemindDB")
DATABASE = "Velmora.RemindDB"
_READ = ("EventID", "GUID", "Subject", "reminders") + sample_plan.MOVED_COLUMNS


def _sql(remindb, file, statement):
    """The rows of a query; of a change one row that says how many were affected."""
    done = subprocess.run([remindb, "sql", file, statement, "--json"], stdout=subprocess.PIPE,
                          check=True, text=True)
    return [json.loads(line) for line in done.stdout.splitlines()]


def read_events(remindb, file, columns=_READ):
    """The columns that the plan needs, or others, dates as `datetime`."""
    events = _sql(remindb, file, f"SELECT {', '.join(columns)} FROM Reminders")
    for event in events:
        for column in sample_plan.MOVED_COLUMNS:
            if event[column] is not None:
                event[column] = datetime.fromisoformat(event[column])
    return events


def insert(remindb, file, event):
    values = {column: _literal(v) for column, v in event.items() if v is not None}
    done = _sql(remindb, file, f"INSERT INTO Reminders ([{'], ['.join(values)}]) "
                               f"VALUES ({', '.join(values.values())})")
    if done != [{"affected": 1}]:
        raise RuntimeError(f"adding the event {event['GUID']}: expected one row, got {done}")


def _literal(value):
    if isinstance(value, datetime):
        return f"#{value:%Y-%m-%d %H:%M:%S}#"
    if isinstance(value, str):
        return '"' + value.replace('"', '""') + '"'
    return str(value)


def _local(moment):
    return moment.astimezone().replace(tzinfo=None)


def environment(folder):
    """What the program's environment needs to live in the profile."""
    return {f"XDG_{kind.upper()}_HOME": os.path.join(folder, kind)
            for kind in ("data", "config", "cache", "state")}


def make(folder, remindb):
    """Makes the profile anew; gives the reminder that falls due in a minute."""
    db = os.path.join(folder, "db")
    for path in (db, *environment(folder).values()):
        shutil.rmtree(path, ignore_errors=True)
        os.makedirs(path)
    file = os.path.join(db, DATABASE)
    subprocess.run([remindb, "new", file], check=True)

    now = datetime.now(timezone.utc).replace(microsecond=0)
    events = read_events(remindb, SAMPLE, ("*",))
    plan = sample_plan.plan(events, now, _local)
    for event in events:
        insert(remindb, file, {**event, **plan.changes[event["GUID"]]})
    return plan.due


if __name__ == "__main__":
    due = make(os.path.abspath(sys.argv[1]), sys.argv[2])
    print(f"{due.subject}: reminder at {due.time:%H:%M:%S}")
