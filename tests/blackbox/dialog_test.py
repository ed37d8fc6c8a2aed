#!/usr/bin/python3
"""While a dialog is open it has the window; toast, tray and clock go on working."""
import time

from stage import EARLIER, LATER, OneDay, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.waiting import wait_for, wait_gone

SNOOZE = "Snooze reminder for"
HOUR = 3600


def dialog_in_front():
    return wait_for(lambda: (desktop.active_title() or "").startswith(SNOOZE), 10,
                    "the dialog in front")


def toast_gone(subject):
    wait_gone(lambda: reminders.toast_link(subject), what="the toast")


with OneDay("NotifType=P", timers_too=True) as program:
    due = program.due.subject
    link = reminders.wait_toast(EARLIER, 30)
    program.clock.put_forward(30)
    time.sleep(1)
    check(reminders.toast_link(EARLIER), "a toast stays until it is closed")
    reminders.click_link(link)
    reminders.wait_shown()
    desktop.wait_active(reminders.TITLE)
    toast_gone(EARLIER)

    act.key("alt+s")
    dialog_in_front()
    program.clock.put_forward(60)
    reminders.wait_toast(due, 30)
    act.click_button("Close", "Reminders")
    toast_gone(due)
    check(True, "its cross closes the toast that comes while a dialog is open")

    program.clock.put_forward(4 * HOUR)
    link = reminders.wait_toast(LATER, 30)
    desktop.activate(reminders.TITLE)
    reminders.click_link(link)
    toast_gone(LATER)
    dialog_in_front()
    check(True, "a link brings the dialog forward")

    tray.click(reminders.PROGRAM)
    time.sleep(0.6)
    check(reminders.showing() and dialog_in_front(), "a click on the icon does not hide the window")
    act.key("Escape")
    desktop.wait_active(reminders.TITLE)
    check(reminders.selected_subjects(reminders.NEW) == [LATER], "it is on the row of the link")

    act.key("alt+s")
    dialog_in_front()
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "Exit ends the program, with status 0, whatever is open")
