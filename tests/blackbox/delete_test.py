#!/usr/bin/python3
"""Several items deleted at once: told once, gone from the file and from their hosts'; what a host
does not let go is said."""
import os
import shutil
import time

from stage import EARLIER, LATER, OneDay, check, dialog, wait_left
from uidrive import act, desktop, reminders, tree
from uidrive.reminders import NEW
from uidrive.waiting import wait_for, wait_gone

DISMISS, DELETE = "Dismiss Reminder", "Dismiss all reminders and DELETE item"
TITLE, TEXT = ("Items deleted...",
               "Items were deleted. Opened grids and calendars may need to be refreshed")
KEYS_REST = 0.7  # seconds after which a window that has come by itself takes keys that act
CHECK = 30  # seconds until a check has surely been made; when time has passed it is one


def choose_delete(subject):
    box = dialog(DISMISS)
    check(any(subject in tree.name(n) for n in tree.find_all("label", within=box)),
          f"asked about {subject!r}")
    done = tree.find("check box", "Mark item as Done", box)
    check("enabled" in tree.states(done), "it can be marked as done")
    act.click(tree.find("radio button", DELETE, box))
    wait_gone(lambda: "enabled" in tree.states(done), 5, "the box that marks it as done")
    act.key("Return")
    wait_gone(lambda: box in tree.windows(), 5, "the dialog")


def toasts():
    return [w for w in tree.windows() if tree.name(w) == "Reminders"]


def close_the_toast():
    found = wait_for(toasts, 10, "the toast")
    texts = [tree.name(n) for n in tree.find_all("label", within=found[0])]
    check(len(found) == 1 and TITLE in texts and TEXT in texts, f"a toast tells it: {texts}")
    act.click(tree.find("push button", "Close", found[0]))
    wait_gone(toasts, 5, "the toast")


def said(what):
    return any(what in tree.name(n) for n in tree.find_all("label", within=reminders.TITLE))


def in_file(program, subject):
    return program.sql(f'SELECT GUID FROM Reminders WHERE Subject="{subject}"') != []


def items(program, host):
    return [row["ItemID"] for row in program.sql("SELECT ItemID FROM [\u00AFItems]", host)]


def wait_subjects(wanted):
    wait_for(lambda: reminders.subjects(NEW) == wanted, 10,
             lambda: f"{wanted}; there are {reminders.subjects(NEW)}")


program = OneDay(timers_too=True)
due = program.due.subject
lets_go = program.make_host_of(EARLIER, "LetsGo.vlb")
is_held = program.make_host_of(due, "IsHeld.vlb")
os.rename(is_held, is_held + ".away")
os.mkdir(is_held)  # is there, and cannot be read now
foreign = os.path.join(program.folder, "Foreign.vlb")
with open(foreign, "wb") as file:
    file.write(b"\0\1\0\0Standard ACE DB\0" + bytes(8192))
program.belongs_to(LATER, foreign)

with program:
    reminders.wait_listed(EARLIER, 30)
    program.clock.put_forward(60)
    reminders.wait_listed(due, CHECK)
    program.clock.put_forward(4 * 3600)
    reminders.wait_listed(LATER, CHECK)
    wait_subjects([EARLIER, due, LATER])
    desktop.wait_active(reminders.TITLE)
    desktop.place(reminders.TITLE, 60, 60, 1100, 500)

    act.click(tree.cells(tree.grid(NEW, reminders.TITLE))[0][0])
    act.key("ctrl+a", "shift+Delete")
    for subject in (EARLIER, due, LATER):
        choose_delete(subject)
    wait_subjects([LATER])
    close_the_toast()
    check(said(f"{LATER} could not be deleted"), "what a host does not let go is said")
    wait_for(lambda: said("1 change waits"), 10, "what has to wait for its host, in the status line")
    check(not in_file(program, EARLIER) and items(program, lets_go) == [12],
          "an item whose host lets it go is gone, from the host's file as well")
    check(in_file(program, due) and in_file(program, LATER), "the other two are still in the file")
    check(reminders.subjects(NEW) == [LATER], "but of them only what was not deleted is listed")

    os.rmdir(is_held)
    shutil.move(is_held + ".away", is_held)
    program.clock.put_forward(4 * 3600 + CHECK)
    wait_gone(lambda: in_file(program, due), 20, "the row of what had to wait")
    check(items(program, is_held) == [12], "it is deleted when its host is there")
    wait_gone(lambda: said("1 change waits"), 10, "what the status line says of it")
    check(not toasts(), "and nothing is told a second time")

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
    program.belongs_to(LATER, program.make_host_of(LATER, "Own.vlb"))
    with program:
        rows = reminders.wait_listed(LATER, CHECK)
        check(list(map(reminders.subject, rows)) == [LATER], "after a restart only it is left")
        desktop.wait_active(reminders.TITLE)
        time.sleep(KEYS_REST)
        act.key("ctrl+a", "shift+Delete")
        choose_delete(LATER)
        reminders.wait_hidden()
        close_the_toast()
        check(not in_file(program, LATER), "it is deleted when its host lets it go")
        reminders.exit_by_tray()
        check(program.wait_end() == 0, "ended again")
