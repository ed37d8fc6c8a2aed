#!/usr/bin/python3
"""What was set is found again after a restart: asserted by what the program then does."""
import time

from stage import EARLIER, LATER, OneDay, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.hearing import Sound
from uidrive.reminders import EVENTS, NEW
from uidrive.waiting import run, wait_for, wait_gone

CHECK = 30  # seconds until a check has surely been made; when time has passed it is one
HOUR = 3600


def headings():
    """The columns that are shown, from the left: {heading: its width}."""
    found = [n for n in tree.children(tree.grid(NEW, reminders.TITLE))
             if tree.role(n) == "table column header" and tree.box(n)[2] > 0]
    return {tree.name(n): tree.box(n)[2] for n in sorted(found, key=lambda n: tree.box(n)[0])}


def heading(text):
    return next(n for n in tree.children(tree.grid(NEW, reminders.TITLE))
                if tree.role(n) == "table column header" and tree.name(n) == text)


def drag(node, across, to):
    """A heading, from the place so far across it, by so many pixels to the right."""
    x, y, width, height = tree.box(node)
    at = x + int(width * across), y + height // 2
    act.move_to(*at)
    time.sleep(0.1)
    run("xdotool", "mousedown", 1)
    for part in range(1, 11):
        act.move_to(at[0] + to * part // 10, at[1])
        time.sleep(0.02)
    run("xdotool", "mouseup", 1)


def choose(*path):
    reminders.tray_menu()
    act.choose(*path)
    wait_gone(tree.open_menus, what="the menu")


def wait_subjects(wanted):
    wait_for(lambda: reminders.subjects(NEW) == wanted, CHECK,
             lambda: f"{wanted}; there are {reminders.subjects(NEW)}")


def end(program):
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")


def toasts():
    return [w for w in tree.windows() if tree.name(w) == "Reminders"]


with OneDay(timers_too=True) as program:
    due = program.due.subject
    reminders.wait_listed(EARLIER, 30)
    program.clock.put_forward(60)
    reminders.wait_listed(due, CHECK)
    desktop.wait_active(reminders.TITLE)
    desktop.place(reminders.TITLE, 60, 60, 1000, 400)

    before = list(headings())
    first, last = before[0], before[-1]
    act.click(heading("Subject"))
    upwards = sorted([EARLIER, due], key=str.casefold)
    wait_subjects(upwards)
    time.sleep(0.6)  # or it would be a double click
    act.click(heading("Subject"))
    wait_subjects(upwards[::-1])
    x = tree.box(heading(first))[0]
    drag(heading(last), 0.5, x - tree.box(heading(last))[0])
    wait_for(lambda: list(headings())[0] == last, 5, lambda: f"{last!r} in front: {headings()}")
    wide = headings()["Subject"]
    border = tree.box(heading("Subject"))
    drag(heading("Subject"), (border[2] - 1) / border[2], 60)
    wait_for(lambda: headings()["Subject"] == wide + 60, 5, lambda: f"{wide + 60}: {headings()}")
    as_left = headings()
    act.select_tab(EVENTS, reminders.TITLE)
    act.pick_from_list("Next 14 days", tree.find("combo box", None, reminders.TITLE))
    choose("On Top")
    choose("Mute")
    choose("Notification type", "Pop-up")
    place = desktop.geometry(reminders.TITLE)
    end(program)

    program.clock.put_forward(4 * HOUR)  # LATER falls due
    with Sound() as sound, program:
        tray.icon(reminders.PROGRAM, timeout=30)
        wait_for(lambda: "new reminder" in tray.tooltip(reminders.PROGRAM), CHECK, "the icon's tip")
        check(not toasts() and not reminders.showing(), "muted, it shows nothing")
        tray.click(reminders.PROGRAM)
        reminders.wait_shown()
        tree.find("combo box", "Next 14 days", reminders.TITLE)
        act.select_tab(NEW, reminders.TITLE)
        wait_subjects(sorted([EARLIER, due, LATER], key=str.casefold)[::-1])
        check(True, "the rows stand in the order that was chosen")
        check(headings() == as_left, f"and so do the columns, as wide as they were: {headings()}")
        check("ABOVE" in desktop.states(reminders.TITLE), "the window is on top")
        check(desktop.geometry(reminders.TITLE) == place, "and where it was")
        choose("Mute")
        act.click_button("Close", reminders.TITLE)
        reminders.wait_hidden()
        end(program)
    check(sound.peak < 0.01, f"not a sound was heard: {sound.peak:.2f}")

    with Sound() as sound, program:
        reminders.wait_toast(LATER, CHECK)
        check(not reminders.showing(), "muted no more, it tells by the toast that was chosen")
        wait_for(sound.heard, 10, "a sound")
        end(program)
    check(sound.peak > 0.02, f"with its sound: {sound.peak:.2f}")
