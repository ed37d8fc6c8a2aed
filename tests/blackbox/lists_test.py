#!/usr/bin/python3
"""The lists in the window: searched, sorted, stepped through, their columns, several rows at once."""
import time

from stage import EARLIER, LATER, OneDay, check, dialog, wait_left
from uidrive import act, desktop, reminders, tree
from uidrive.reminders import ALL, NEW
from uidrive.waiting import NotThere, run, wait_for, wait_gone

SNOOZE, DISMISS = "Snooze reminder for", "Dismiss Reminder"


def wait_subjects(wanted, grid=NEW):
    wait_for(lambda: reminders.subjects(grid) == wanted, 10,
             lambda: f"{wanted}; there are {reminders.subjects(grid)}")


def heading(text):
    return next(n for n in tree.children(tree.grid(NEW, reminders.TITLE))
                if tree.role(n) == "table column header" and tree.name(n) == text)


def columns():
    return [tree.name(n) for n in tree.children(tree.grid(NEW, reminders.TITLE))
            if tree.role(n) == "table column header" and tree.box(n)[2] > 0]


def search(text):
    act.key("ctrl+f")
    wait_for(lambda: "focused" in tree.states(
        tree.find("text", "Search subject and location", reminders.TITLE)), 5, "the search field")
    run("xdotool", "type", "--delay", "20", text)


def in_the_list(grid):
    """The keyboard is in it."""
    return "focused" in tree.states(tree.grid(grid, reminders.TITLE))


def open_menu(*how):
    """By the key, or by a right click; what comes too early on a busy machine is lost."""
    for last in (False, False, True):
        if how:
            act.click(*how, button=3)
        else:
            act.key("Menu")
        try:
            return wait_for(tree.open_menus, 4, "a menu")
        except NotThere:
            if last:
                raise


def step(up):
    x, y, width, height = tree.box(tree.find("spin button", None, reminders.TITLE))
    act.click_at(x + width // 2, y + height * (1 if up else 3) // 4)


with OneDay(timers_too=True) as program:
    due = program.due.subject
    reminders.wait_listed(EARLIER, 30)
    program.clock.put_forward(60)
    reminders.wait_listed(due, 30)
    program.clock.put_forward(4 * 3600)
    reminders.wait_listed(LATER, 30)
    desktop.wait_active(reminders.TITLE)
    desktop.place(reminders.TITLE, 60, 60, 1100, 500)
    wait_subjects([EARLIER, due, LATER])

    search("t")
    wait_subjects([EARLIER, due, LATER])
    for letter, shown in zip("he i", ([due, LATER], [LATER], [LATER], [LATER])):
        run("xdotool", "type", letter)
        wait_for(lambda shown=shown: set(reminders.subjects(NEW)) <= set(shown), 5, f"{shown}")
    wait_subjects([LATER])
    check(True, "with each letter the list shows less")
    act.key("Down")
    wait_for(lambda: reminders.selected_subjects(NEW) == [LATER], 5, "the row that was found")
    act.key("ctrl+f", "Escape")
    wait_subjects([EARLIER, due, LATER])
    check(reminders.selected_subjects(NEW) == [LATER], "searched, found, and still chosen afterwards")
    for key in ("Return", "Down", "alt+n"):
        act.key("ctrl+f")
        wait_gone(lambda: in_the_list(NEW), 5, "the keyboard's leaving the list")
        act.key(key)
        wait_for(lambda: in_the_list(NEW), 5, f"the keyboard back in the list after {key}")
    check(reminders.selected_subjects(NEW) == [LATER], "from the field the keys come back to the row")

    act.click(heading("Subject"))
    by_subject = sorted([EARLIER, due, LATER], key=str.casefold)
    wait_subjects(by_subject)
    open_menu(heading("Repeats"))
    check(tree.menu_entries()["Repeats"], "the menu of a heading shows which columns there are")
    act.choose("Repeats")
    wait_for(lambda: "Repeats" not in columns(), 5, "the column to be hidden")
    check(True, "sorted by a heading, and a column hidden")
    act.select_row(due, NEW, reminders.TITLE)
    before = tree.box(heading("Due"))[2]
    open_menu()
    for depth, letter in enumerate("cwd", 1):  # Columns, Wider, Due
        wait_for(lambda depth=depth: len(tree.open_menus()) >= depth, 5, f"menu {depth}")
        act.key(letter)
    wait_for(lambda: tree.box(heading("Due"))[2] > before, 5, "the column to be wider")
    wait_gone(tree.open_menus, what="the menu")
    check(True, "by the keyboard a column is made wider")
    open_menu(tree.cells(tree.grid(NEW, reminders.TITLE))[1][0])
    act.choose("Columns", "Reset columns")
    wait_for(lambda: "Repeats" in columns(), 5, "all columns")
    wait_subjects([EARLIER, due, LATER])
    check(tree.box(heading("Due"))[2] == before, "from a row's menu the columns are as at first")
    act.click(heading("Subject"))
    wait_subjects(by_subject)
    open_menu(heading("Repeats"))
    act.choose("Repeats")
    wait_for(lambda: "Repeats" not in columns(), 5, "the column to be hidden")

    act.select_tab(ALL, reminders.TITLE)
    act.pick_from_list("Hidden", tree.find("combo box", None, reminders.TITLE))
    for up, period in ((True, "Previous 30 days"), (False, "Hidden"), (False, "Dismissed")):
        step(up)
        tree.find("combo box", period, reminders.TITLE)
        wait_for(lambda: in_the_list(ALL), 5, "the keyboard in the list")
    check(True, "the arrows step through the periods, past both ends")
    for _ in range(8):
        step(False)
    tree.find("combo box", "Today", reminders.TITLE)
    wait_for(lambda: {EARLIER, due, LATER} <= set(reminders.subjects(ALL)), 10, "today's reminders")
    check(True, "and the list shows the period that they stop at")
    x, y, width, height = tree.box(tree.find("combo box", "Today", reminders.TITLE))
    act.move_to(x + width // 2, y + height // 2)
    run("xdotool", "click", "--repeat", 3, 5)
    time.sleep(0.3)
    tree.find("combo box", "Today", reminders.TITLE)
    check(in_the_list(ALL), "the wheel over the periods changes none of them, nor the focus")
    act.select_tab(NEW, reminders.TITLE)

    act.select_row(EARLIER, NEW, reminders.TITLE)
    open_menu()
    entries = tree.menu_entries()
    check({"Open", "Snooze", "Dismiss this reminder", "Dismiss", "Columns"} <= set(entries),
          f"a row's menu offers what the buttons do: {list(entries)}")
    act.choose("Snooze")
    box = dialog(SNOOZE)
    combo = tree.find("combo box", None, box)
    act.key("F2")
    wait_for(lambda: tree.open_list(combo), 5, "the list of times")
    act.key("F2")
    wait_gone(lambda: tree.open_list(combo), 5, "the list of times")
    act.key("Escape")
    wait_gone(lambda: box in tree.windows(), 5, "the dialog")
    check(True, "F2 opens and closes the list of the snooze dialog")

    act.key("ctrl+a", "shift+Delete")
    for subject, answer in zip(by_subject, ("Return", "Escape", "Return")):
        box = dialog(DISMISS)
        wait_for(lambda: any(subject in tree.name(n) for n in tree.find_all("label", within=box)), 5,
                 f"the dialog about {subject!r}")
        act.key(answer)
        wait_gone(lambda: box in tree.windows(), 5, "the dialog")
    wait_subjects(by_subject[1:2])
    check(True, "three rows, three dialogs: the second was cancelled, its row stays")

    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
    with program:
        reminders.wait_listed(by_subject[1], 30)
        check("Repeats" not in columns(), "a hidden column is hidden after a restart")
        open_menu(tree.cells(tree.grid(NEW, reminders.TITLE))[0][0])
        act.choose("Dismiss this reminder")
        reminders.wait_hidden()
        check(True, "dismissed from the menu that a right click opens")
        reminders.exit_by_tray()
        check(program.wait_end() == 0, "ended again")
    with open(program.settings) as file:
        check("NewRemindersSort=Subject" in file.read(), "sorted as it was left")
