#!/usr/bin/python3
"""Notification type "P": a toast with a link per reminder; a link brings the window with its row."""
import os

from stage import EARLIER, Stage, check
from uidrive import desktop, reminders, tray
from uidrive.waiting import wait_for, wait_gone

with Stage("NotifType=P") as program:
    due = program.due.subject
    tray.icon(reminders.PROGRAM, timeout=30)
    reminders.wait_toast(EARLIER, 30)
    check(not reminders.showing(), "a toast tells what fell due earlier, the window stays hidden")

    program.clock.put_forward(60)
    link = reminders.wait_toast(due, 60)
    check(not reminders.showing(), "a toast with a link for the reminder, the window still hidden")
    desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], "popup.png"))
    reminders.click_link(link)
    reminders.wait_shown()
    wait_for(lambda: reminders.selected_subjects(reminders.NEW) == [due], 10, f"row {due!r} selected")
    check(True, "the link brings the window and selects the row")
    wait_gone(lambda: reminders.toast_link(due), what="the toast")
    check(True, "the toast is gone")

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "Exit ends the program with status 0")
