#!/usr/bin/python3
"""A desktop without a tray, and one that gets its tray late."""
from stage import EARLIER, Elsewhere, OneDay, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.waiting import wait_for, wait_gone

NOTICE = "This desktop shows no tray icons; the window is minimized instead of hidden"


def in_task_bar():
    return reminders.TITLE in desktop.titles()


def minimized():
    return in_task_bar() and "HIDDEN" in desktop.states(reminders.TITLE)


def stop(program):
    program.terminate()
    program.wait()


def says_so():
    return any(tree.name(n) == NOTICE for n in tree.find_all("label", within=reminders.TITLE))


with Elsewhere() as elsewhere, OneDay("NotifType=T") as program:
    wait_for(minimized, 30, "the window in the task bar")
    check(desktop.active_title() == elsewhere.TITLE, "in the task bar, in nobody's way")
    desktop.activate(reminders.TITLE)
    desktop.wait_active(reminders.TITLE)
    wait_for(says_so, 10, "the status line to say why")
    check(True, "and the status line says why")
    act.select_tab(reminders.EVENTS, reminders.TITLE)
    act.select_row(program.due.subject, reminders.EVENTS, reminders.TITLE)
    wait_gone(says_so, what="the notice")
    act.select_tab(reminders.NEW, reminders.TITLE)
    act.click_button("Close", reminders.TITLE)
    wait_for(minimized, 10, "the window to be minimized")
    check(True, "hidden it is minimized, within reach")
    desktop.activate(reminders.TITLE)
    desktop.wait_active(reminders.TITLE)
    check(not says_so(), "it was said once")

    late = tray.start()
    try:
        tray.icon(reminders.PROGRAM, timeout=20)
        check(True, "a tray that comes later has the icon")
        stop(late)
        late = tray.start()
        tray.icon(reminders.PROGRAM, timeout=20)
        check(True, "also one that is started again")
        before = desktop.geometry(reminders.TITLE)
        act.click_button("Close", reminders.TITLE)
        wait_gone(in_task_bar, 10, "the window")
        check(True, "and then the window is hidden for good")
        tray.click(reminders.PROGRAM)
        desktop.wait_active(reminders.TITLE)
        check(not minimized() and desktop.geometry(reminders.TITLE) == before,
              "a click on the icon shows it again, where it was")
        reminders.exit_by_tray()
        check(program.wait_end() == 0, "ended")
    finally:
        stop(late)
