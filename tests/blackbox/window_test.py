#!/usr/bin/python3
"""The window among others: its place over hiding and restarts, on top, its names, its end."""
import os
import signal
import time

from stage import EARLIER, Elsewhere, OneDay, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.waiting import wait_for, wait_gone

PLACE = (150, 90, 800, 420)
NAMED = ("push button", "combo box", "text", "table", "tree", "tree table", "page tab",
         "spin button", "check box", "radio button", "table column header")


def hide():
    act.click_button("Close", reminders.TITLE)
    reminders.wait_hidden()


def show():
    tray.click(reminders.PROGRAM)
    reminders.wait_shown()
    desktop.wait_active(reminders.TITLE)


def settings(program):
    with open(program.settings) as file:
        return file.read()


def choose_on_top(on):
    reminders.tray_menu()
    act.choose(reminders.ON_TOP)
    wait_gone(tree.open_menus, what="the menu")
    wait_for(lambda: ("ABOVE" in desktop.states(reminders.TITLE)) == on, 5, f"on top: {on}")


def nameless(within):
    return [tree.role(n) for n in tree.find_all(NAMED, within=within) if not tree.name(n).strip()]


def open_dialog(key, caption):
    act.key(key)
    return wait_for(lambda: next((w for w in tree.windows() if tree.name(w).startswith(caption)),
                                 None), 10, caption)


with Elsewhere() as elsewhere, OneDay() as program:
    reminders.wait_listed(EARLIER, 30)
    desktop.wait_active(reminders.TITLE)

    desktop.place(reminders.TITLE, *PLACE)
    before = desktop.geometry(reminders.TITLE)
    for _ in range(3):
        hide()
        show()
    check(desktop.geometry(reminders.TITLE) == before, f"hidden and shown thrice, still at {before}")

    choose_on_top(True)
    check(reminders.showing() and desktop.geometry(reminders.TITLE) == before,
          "put on top it stays where it is")
    check("OnTop=-1" in settings(program), "and that is saved")
    elsewhere.go_there()
    check("ABOVE" in desktop.states(reminders.TITLE), "above the window that has the focus")
    choose_on_top(False)
    check("OnTop=0" in settings(program) and desktop.geometry(reminders.TITLE) == before,
          "and back, saved, in its place")

    # The window is visible without the focus: a click brings it forward, the next one hides it.
    elsewhere.go_there()
    time.sleep(1.2)  # the window looks once a second whether it has the focus
    tray.click(reminders.PROGRAM)
    desktop.wait_active(reminders.TITLE)
    time.sleep(1.2)
    tray.click(reminders.PROGRAM)
    reminders.wait_hidden()
    check(True, "a click on the icon brings it forward, and hides it when it is there")
    time.sleep(0.6)  # or this would be a double click
    show()

    check(nameless(reminders.TITLE) == [], "everything in the window has a name")
    for key, caption in (("alt+s", "Snooze reminder for"), ("shift+Delete", "Dismiss Reminder")):
        act.key("alt+n")
        reminders.wait_listed(EARLIER, 5)
        act.key("Home")
        dialog = open_dialog(key, caption)
        check(nameless(dialog) == [], f"and in {caption!r}")
        if caption.startswith("Snooze"):
            act.key("Escape")
            wait_gone(lambda: dialog in tree.windows(), 5, caption)

    # The session ends while a dialog is open.
    os.kill(program.process.pid, signal.SIGTERM)
    check(program.wait_end() == 0, "told to end with a dialog open, it ends, with status 0")
    x, y = (f"{key}={value}" for key, value in zip(("Width", "Height"), before[2:]))
    check(x in settings(program) and y in settings(program), "having saved its size")

    with program:
        reminders.wait_listed(EARLIER, 30)
        desktop.wait_active(reminders.TITLE)
        check(desktop.geometry(reminders.TITLE) == before, "after a restart it is where it was")
        reminders.exit_by_tray()
        check(program.wait_end() == 0, "ended")
