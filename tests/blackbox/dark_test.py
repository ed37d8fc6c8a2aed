#!/usr/bin/python3
"""The desktop turns dark, and light again, while the program runs: window, dialog and toast follow
at once, and every text can be read."""
import os

from stage import EARLIER, OneDay, check
from uidrive import act, colours, desktop, reminders, tray, tree
from uidrive.waiting import wait_for

READABLE = 4.5  # WCAG 2, level AA
CHOSEN = 3.0  # a selected row has the two colours that the desktop has for it
TEXTS = ("label", "push button", "button menu", "page tab", "combo box", "radio button",
         "check box", "table column header", "column header")


def piece(node):
    x, y, width, height = tree.box(node)
    return desktop.picture().crop((x, y, x + width, y + height))


def ground(node):
    """How light the most frequent colour of a window is."""
    image = piece(node)
    return colours.luminance(max(image.getcolors(image.width * image.height))[1])


def wait_ground(node, dark):
    wait_for(lambda: (ground(node) < 0.1) == dark and (dark or ground(node) > 0.7), 15,
             lambda: f"{'dark' if dark else 'light'} ground; it is {ground(node):.2f}")


def unreadable(window):
    texts = [n for n in tree.find_all(TEXTS, within=window)
             if tree.name(n).strip() and "enabled" in tree.states(n)]
    check(len(texts) > 2, f"{len(texts)} texts in {tree.name(window)!r}")
    return [f"{tree.name(n)!r} {colours.contrast(piece(n)):.1f}" for n in texts
            if min(tree.box(n)[2:]) > 2 and colours.contrast(piece(n)) < READABLE]


def unreadable_cells():
    grid = tree.grid(reminders.NEW, reminders.TITLE)
    cells = [c for row in tree.cells(grid) for c in row if tree.name(c).strip()]
    return [f"{tree.name(c)!r} {colours.contrast(piece(c)):.1f}" for c in cells
            if colours.contrast(piece(c)) < (CHOSEN if "selected" in tree.states(c) else READABLE)]


def check_readable(window, what):
    bad = unreadable(window)
    check(bad == [], f"{what}: all texts can be read; not: {bad}")


def choose(program, dark):
    colours.choose(os.path.join(program.folder, "config"), dark)


def keep(name):
    desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], f"{name}.png"))


def turn(program, node, dark, what):
    choose(program, dark)
    wait_ground(node, dark)
    keep(what)
    check_readable(node, what)


def light_at_first(kind):
    program = OneDay(f"NotifType={kind}", environment=colours.ENVIRONMENT)
    choose(program, False)
    return program


with light_at_first("D") as program:
    reminders.wait_listed(EARLIER, 30)
    desktop.wait_active(reminders.TITLE)
    act.move_to(1270, 600)
    window = tree.find_window(reminders.TITLE)
    wait_ground(window, False)
    check_readable(window, "light at the start")
    for number, dark in enumerate((True, False, True)):
        what = f"{number + 1}-{'dark' if dark else 'light'}"
        turn(program, window, dark, what)
        bad = unreadable_cells()
        check(bad == [], f"{what}: all cells can be read; not: {bad}")

    act.key("shift+Delete")
    dialog = wait_for(lambda: next((w for w in tree.windows()
                                    if tree.name(w).startswith("Dismiss")), None), 10, "the dialog")
    for dark in (False, True):
        turn(program, dialog, dark, f"dialog-{'dark' if dark else 'light'}")
    act.key("Escape")
    desktop.wait_active(reminders.TITLE)
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")

with light_at_first("P") as program:
    tray.icon(reminders.PROGRAM, timeout=30)
    reminders.wait_toast(EARLIER, 30)
    toast = next(w for w in tree.windows() if tree.name(w) == "Reminders")
    for dark in (True, False):
        choose(program, dark)
        wait_ground(toast, dark)
        keep(f"toast-{'dark' if dark else 'light'}")
        low = colours.contrast(piece(reminders.toast_link(EARLIER)))
        check(low >= READABLE, f"toast, {'dark' if dark else 'light'}: contrast {low:.1f}")
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
