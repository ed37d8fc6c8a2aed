"""VL Reminders as it looks on the screen: the names by which its parts are found."""
from . import act, tray, tree
from .waiting import NotThere, wait_for, wait_gone

PROGRAM = "vlreminders"
TITLE = "VL Reminders"

NEW = "New Reminders"  # tabs, and the grids on them
ALL = "All Reminders"
EVENTS = "Events"

# Columns of the reminders grids.
SUBJECT = "Subject"
TIME = "Reminder"

# Entries of the tray's menu. The first, which shows and hides the window, carries the tray's tip.
MUTE, SILENT, ON_TOP, REFRESH, EXIT = "Mute", "Silent", "On Top", "Refresh", "Exit"
MENU = (MUTE, SILENT, ON_TOP, REFRESH, EXIT)

HIDDEN_TIP = "(click to show/hide)"  # ends the tip while the window is hidden


# ---- the window ---------------------------------------------------------------------------------
def showing():
    return any(tree.name(w) == TITLE for w in tree.windows())


def wait_shown():
    wait_for(showing, what="the window")


def wait_hidden():
    wait_gone(showing, what="the window")


def rows(grid):
    """The rows of the grid on the tab that is shown: {column: text}."""
    node = tree.grid(grid, TITLE)
    columns = tree.columns(node)
    return [dict(zip(columns, map(tree.name, row))) for row in tree.cells(node)]


def subject(row):
    """The row's first line; below it stands the reminder in words."""
    return row[SUBJECT].split("\n")[0]


def subjects(grid):
    return [subject(row) for row in rows(grid)]


def selected_subjects(grid):
    return [tree.name(row[0]).split("\n")[0] for row in tree.cells(tree.grid(grid, TITLE))
            if "selected" in tree.states(row[0])]


def wait_listed(wanted, timeout):
    """The rows of the new-reminders grid, once one has the subject `wanted`."""
    def listed():
        found = rows(NEW)
        return found if wanted in map(subject, found) else None
    return wait_for(listed, timeout, f"{wanted!r} in the grid {NEW!r}", step=0.3)


# ---- the toast ------------------------------------------------------------------------------------
def toast_link(wanted):
    """The link that speaks of the reminder `wanted`; raises when there is none."""
    found = [node for window in tree.windows()
             if tree.name(window) != TITLE and tree.role(window) != "tool tip"
             for node in tree.walk(window)
             if tree.role(node) in ("label", "link") and wanted in tree.name(node)]
    if not found:
        raise NotThere(f"no link with {wanted!r}; there are the windows "
                       f"{[tree.name(w) for w in tree.windows()]}")
    return found[-1]  # the toast's title, which may name it as well, comes first


def wait_toast(wanted, timeout):
    return wait_for(lambda: toast_link(wanted), timeout, f"a toast with {wanted!r}", step=0.3)


def click_link(node):
    """At its beginning: the widget may be wider than its text, and have more than one line."""
    x, y, width, height = tree.box(node)
    act.click_at(x + min(20, width // 2), y + min(10, height // 2))


# ---- the tray -------------------------------------------------------------------------------------
def tray_menu():
    """Opens the menu; {entry: is it checked}, in their order."""
    tray.click(PROGRAM, button=3)
    return tree.menu_entries()


def exit_by_tray():
    tray_menu()
    act.choose(EXIT)
