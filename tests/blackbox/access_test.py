#!/usr/bin/python3
"""What a screen reader finds, on the accessibility bus: nothing that can be focused is without a
name, and the grids are read cell by cell."""
from stage import EARLIER, Stage, check
from uidrive import act, desktop, reminders, tree
from uidrive.waiting import wait_for


def described(node):
    return f"{tree.role(node)} {tree.name(node)!r}"


def check_named(title, at_least):
    window = tree.find_window(title)
    focusable = [n for n in tree.walk(window)
                 if {"focusable", "showing"} <= tree.states(n) and n is not window]
    unnamed = [described(n) for n in focusable if not tree.name(n).strip()
               # a list's field: what it holds is its text, and the list around it has the name
               and not tree.name(n.get_parent()).strip()]
    check(len(focusable) >= at_least, f"{title!r}: {len(focusable)} controls can be focused")
    check(not unnamed, f"{title!r}: all of them have names; without: {unnamed}")


def dialog_title(word):
    return wait_for(lambda: next((t for t in desktop.titles() if word in t), None), 10,
                    f"a dialog with {word!r} in its title")


with Stage() as program:
    reminders.wait_listed(EARLIER, 30)
    desktop.wait_active(reminders.TITLE)
    check_named(reminders.TITLE, 8)
    for tab, key in ((reminders.NEW, "alt+n"), (reminders.ALL, "alt+a"), (reminders.EVENTS, "alt+e")):
        act.key(key)
        wait_for(lambda tab=tab: tree.current_tab(reminders.TITLE).startswith(tab), 10, f"tab {tab!r}")
        rows = wait_for(lambda tab=tab: reminders.rows(tab), 10, f"rows in {tab!r}")
        check(all(row["Subject"] and row["Due"] and row["Event Date"] for row in rows),
              f"{tab!r}: each row's cells are read under their headings")
        check_named(reminders.TITLE, 8)

    act.key("alt+n")
    act.key("alt+s")
    check_named(dialog_title("Snooze"), 4)
    act.key("Escape")
    desktop.wait_active(reminders.TITLE)
    act.key("shift+Delete")
    check_named(dialog_title("Dismiss"), 6)
    act.key("Escape")
    desktop.wait_active(reminders.TITLE)
    check(EARLIER in reminders.subjects(reminders.NEW), "the keyboard opened and left both dialogs")

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "Exit ends the program with status 0")
