#!/usr/bin/python3
"""A command is about what its user saw when he gave it: a menu that was open when a reminder came,
a key held down, a dialog that was open. With the notification that brings the window."""
import time

from stage import EARLIER, LATER, Elsewhere, OneDay, check, dialog, wait_left
from uidrive import act, desktop, reminders, tree
from uidrive.reminders import ALL, NEW
from uidrive.waiting import run, wait_for

SNOOZE = "Snooze reminder for"
MINUTE, HOUR = 60, 3600
CHECK = 40  # seconds in which a check is surely made
HELD = 1.5  # seconds; a key repeats itself after a good half of one


def holding(key, seconds, until=lambda: None):
    run("xdotool", "keydown", key)
    try:
        until()
        time.sleep(seconds)
    finally:
        run("xdotool", "keyup", key)


def dismissed(program):
    found = program.sql("SELECT Subject FROM Reminders WHERE Dismissed IS NOT NULL")
    return {row["Subject"] for row in found}


def snooze_current(offset):
    act.key("ctrl+a")
    run("xdotool", "type", "--delay", "20", offset)
    act.key("Return")
    wait_left(SNOOZE)


with OneDay("NotifType=D", timers_too=True) as program:
    due = program.due.subject
    before = dismissed(program)
    reminders.wait_listed(EARLIER, 30)
    desktop.wait_active(reminders.TITLE)
    desktop.place(reminders.TITLE, 60, 60, 1100, 500)

    act.select_tab(ALL, reminders.TITLE)
    wait_for(lambda: LATER in reminders.subjects(ALL), 10, "today's reminders")
    row = next(r for r in tree.cells(tree.grid(ALL, reminders.TITLE))
               if tree.name(r[0]).startswith(LATER))
    act.click(row[0], button=3)
    wait_for(tree.open_menus, 5, "the row's menu")
    program.clock.put_forward(MINUTE)
    wait_for(lambda: NEW == tree.current_tab(reminders.TITLE).split(":")[0], CHECK,
             "the reminder that comes behind the menu")
    check(tree.open_menus() != [], "the menu stays open while a reminder comes")
    act.choose("Dismiss this reminder")
    wait_for(lambda: dismissed(program) - before == {LATER}, 10,
             lambda: f"only {LATER} to be dismissed: {dismissed(program) - before}")
    check(set(reminders.subjects(NEW)) == {EARLIER, due},
          "it was about the row that it was opened on, not about what came meanwhile")

    act.select_row(due, NEW, reminders.TITLE)
    act.key("alt+s")
    dialog(SNOOZE)
    snooze_current("1h")
    wait_for(lambda: reminders.subjects(NEW) == [EARLIER], 10, "the snoozed one gone")
    act.select_row(EARLIER, NEW, reminders.TITLE)
    act.key("alt+s")
    dialog(SNOOZE)
    program.clock.put_forward(HOUR + 3 * MINUTE)
    reminders.wait_listed(due, CHECK)
    box = dialog(SNOOZE)
    check(EARLIER in tree.name(box), "the dialog keeps the keys when a reminder comes")
    snooze_current("2h")
    wait_for(lambda: reminders.subjects(NEW) == [due], 10, "the row that the dialog was about gone")
    check(True, "and what is typed then is its answer")

    act.key("alt+c")
    reminders.wait_hidden()
    with Elsewhere():
        def until_it_has_come():
            program.clock.put_forward(4 * HOUR)
            desktop.wait_active(reminders.TITLE, CHECK)
        holding("Delete", HELD, until_it_has_come)
        wait_for(lambda: set(reminders.subjects(NEW)) == {due, EARLIER, LATER}, 10, "all rows")
        check(reminders.showing(), "a key held in another program dismisses nothing that comes")

    desktop.activate(reminders.TITLE)
    act.select_row(EARLIER, NEW, reminders.TITLE)
    holding("Delete", HELD)
    check(set(reminders.subjects(NEW)) == {due, LATER}, "and one held in the list acts once")
    act.select_row(LATER, NEW, reminders.TITLE)
    holding("alt+d", HELD)
    check(reminders.subjects(NEW) == [due], "so does the letter of a button")

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
