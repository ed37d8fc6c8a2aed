"""Acting as a person does: real mouse and key events."""
import re
import time

from .tree import (box, cells, children, current_tab, find, grid, name, open_list, open_menus, role,
                   same, states)
from .waiting import run, wait_for


def move_to(x, y):
    run("xdotool", "mousemove", x, y)


def click_at(x, y, button=1):
    move_to(x, y)
    time.sleep(0.03)  # a click that comes with the movement is not always taken
    run("xdotool", "click", button)


def click(node, button=1):
    """A click in the middle of a widget, once it has a place on the screen."""
    def placed():
        where = box(node)
        return where if where[2] > 0 and where[3] > 0 and "showing" in states(node) else None
    x, y, width, height = wait_for(placed, 5, f"{role(node)} {name(node)!r} on the screen")
    click_at(x + width // 2, y + height // 2, button)


def key(*names):
    """key("F1"), key("ctrl+n"), key("Tab", "Return"): goes to the focus."""
    for one in names:
        run("xdotool", "key", "--clearmodifiers", one)


def click_button(named, within=None):
    node = find("push button", named, within)
    wait_for(lambda: "enabled" in states(node), 5, f"button {named!r} to be enabled")
    click(node)


def select_tab(caption, within=None):
    """`caption`: with or without the count behind it."""
    wanted = re.compile(rf"^{re.escape(caption)}(: \d+)?$")
    click(find("page tab", wanted, within))
    wait_for(lambda: same(current_tab(within), wanted), 5, f"tab {caption!r}")


def pick_from_list(text, combo):
    """Opens the list of the combo box and clicks the entry."""
    click(combo)

    def entry():
        return next((n for n in children(open_list(combo)) if same(name(n), text)), None)
    node = wait_for(entry, 5, f"the entry {text!r} of the list")
    time.sleep(0.3)  # Qt takes no click on a list that has just opened
    click(node)


def select_row(text, named=None, within=None):
    """Clicks the first row that has `text` in it."""
    def row():
        return next((r for r in cells(grid(named, within)) if any(text in name(c) for c in r)), None)
    found = wait_for(row, 10, f"a row with {text!r}")
    click(found[0])
    wait_for(lambda: "selected" in states(found[0]), 5, f"row {text!r} selected")


def choose(*path):
    """Clicks through the menu that is open: choose("Snooze all", "10 minutes")."""
    for step in path:
        def entry():
            return next((n for menu in reversed(open_menus()) for n in children(menu)
                         if same(name(n), step) and box(n)[2] > 0), None)
        node = wait_for(entry, 10, f"menu entry {step!r}")
        time.sleep(0.15)  # Qt takes no click on a menu that has just opened
        click(node)
