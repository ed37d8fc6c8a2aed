#!/usr/bin/python3
"""F1: the installed help at the place that is about the window, dialog or box in front."""
import re

from stage import EARLIER, Opener, OneDay, check, dialog, wait_left
from uidrive import act, desktop, reminders, tree
from uidrive.waiting import wait_for, wait_gone

SNOOZE, DISMISS, MISSING = "Snooze reminder for", "Dismiss Reminder", "Missing VLBase"
FAILED = "The help could not be opened"

opener = Opener()
asked = 0


def opens(place, what):
    """What was just done has opened the help there, and only once."""
    global asked
    asked += 1
    addresses = opener.wait_opened(asked)
    page, _, anchor = addresses[-1].removeprefix("file://").partition("#")
    check(len(addresses) == asked and anchor == place, f"{what}: {addresses[asked - 1:]}")
    with open(page) as file:
        check(re.search(rf'id="{re.escape(anchor)}"', file.read()), f"the page has the place {anchor}")


def in_front(box):
    return box in tree.windows() and "active" in tree.states(box)


def link_of(box):
    return tree.find(("label", "link"), "Show online help...", box)


def says_so():
    return any(tree.name(n) == FAILED for n in tree.find_all("label", within=reminders.TITLE))


with OneDay(environment=opener.environment(alone=True)) as program:
    reminders.wait_listed(EARLIER, 30)
    desktop.wait_active(reminders.TITLE)
    act.select_row(EARLIER, reminders.NEW, reminders.TITLE)
    act.key("F1")
    opens("5565", "F1 in the list")
    act.key("ctrl+f", "F1")
    opens("5565.search", "F1 in the search field")
    act.key("alt+n")

    act.key("alt+s")
    box = dialog(SNOOZE)
    act.key("F1")
    opens("5566", "F1 in the snooze dialog")
    combo = tree.find("combo box", None, box)
    act.key("F2")
    wait_for(lambda: tree.open_list(combo), 5, "the list of times")
    act.key("F1")
    opens("5566", "F1 while its list is open")
    act.key("F2")
    wait_gone(lambda: tree.open_list(combo), 5, "the list of times")
    act.key("Tab", "Tab", "Tab")
    wait_for(lambda: "focused" in tree.states(link_of(box)), 5, "the focus on the link")
    act.key("space")
    opens("5566", "Space on its link")
    check(in_front(box), "the dialog is still there")
    act.key("Escape")
    wait_left(SNOOZE)

    act.key("shift+Delete")
    box = dialog(DISMISS)
    act.key("F1")
    opens("5567", "F1 in the dismiss dialog")
    reminders.click_link(link_of(box))
    opens("5567", "a click on its link")
    check(in_front(box), "the dialog is still there")

    opener.remove()
    act.key("F1")
    wait_for(says_so, 10, "the status line to say that the help did not open")
    check(in_front(box), "nobody opens it: the status line says so, no box does")
    act.key("Escape")
    wait_left(DISMISS)
    check(reminders.subjects(reminders.NEW) == [EARLIER], "and nothing was dismissed")

    act.key("Return")  # opens the event, whose file is missing
    box = dialog(MISSING)
    opener.install()
    act.key("F1")
    opens("5565.trouble", "F1 in a box")
    check(in_front(box), "the box still waits for its answer")
    act.key("Return")
    wait_left(MISSING)

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
