#!/usr/bin/python3
"""No database, no settings file: the program comes up, says so, and finds the database on F5."""
import os

from stage import Opener, Stage, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.waiting import wait_for, wait_gone

TMP = os.environ["DESKTOP_TMP"]
TRACE = os.path.join(TMP, "trace")


def text_of(path):
    with open(path, errors="replace") as file:
        return file.read()


def said(what):
    return any(what in tree.name(n) for n in tree.find_all("label", within=reminders.TITLE))


def first_row_top():
    return tree.box(tree.cells(tree.grid(reminders.EVENTS, reminders.TITLE))[0][0])[1]


opener = Opener()
stage = Stage(environment={"VL_TRACE": TRACE, **opener.environment()})
database = os.path.join(stage.folder, "db", "Velmora.RemindDB")
os.rename(database, database + ".away")
with open(os.path.dirname(stage.settings), "w") as file:  # where the data folder should be
    file.write("in the way")

with stage as program:
    tray.icon(reminders.PROGRAM, timeout=30)
    check(not reminders.showing(), "the program is in the tray")
    tray.click(reminders.PROGRAM)
    reminders.wait_shown()
    wait_for(lambda: said("Velmora.RemindDB is not there"), 10, "the status line to say so")
    check(len(tree.windows()) == 1, "the status line says that the database is not there, no box does")
    check(said("Settings cannot be saved"), "nor is it hidden that no setting can be saved")
    desktop.wait_active(reminders.TITLE)
    desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], "trouble.png"))

    os.rename(database + ".away", database)
    act.key("F5")
    wait_gone(lambda: said("Velmora.RemindDB is not there"), what="the trouble")
    check(True, "it is gone after F5")

    act.select_tab(tree.tab_captions(reminders.TITLE)[2], reminders.TITLE)
    act.click(tree.find("combo box", within=reminders.TITLE))
    act.key("End", "Up", "Up", "Return")  # the last before Dismissed and Hidden: the next 30 days
    grid = wait_for(lambda: tree.grid(reminders.EVENTS, reminders.TITLE), 10, "the events")
    wait_for(lambda: len(tree.cells(grid)) > 3, 10, "rows")
    x, y, width, height = tree.box(grid)
    before = first_row_top()
    act.move_to(x + width // 2, y + height // 2)
    act.run("xdotool", "click", 5)
    wait_for(lambda: first_row_top() < before, 10, "the rows to move up")
    act.run("xdotool", "click", 4)
    wait_for(lambda: first_row_top() == before, 10, "the rows to come back")
    check(True, "the wheel scrolls the grid under the pointer")

    act.key("F1")
    address = opener.wait_opened(1)[0]
    check(address.startswith("file:///") and address.endswith("/help/index.html#5565"), address)
    page = address[len("file://"):].split("#")[0]
    check('id="5565"' in text_of(page), "F1 opens the installed help at the window's place")

    reminders.tray_menu()
    act.choose(reminders.MUTE)
    wait_for(lambda: "VLReminders.ini" in text_of(TRACE), 10, "the trace to name the settings file")
    check(len(tree.windows()) == 1, "a setting that cannot be written is lost and traced, no box")
    wait_gone(tree.open_menus, what="the menu")
    check(reminders.tray_menu()[reminders.MUTE], "it holds as long as the program runs")
    act.choose(reminders.EXIT)
    check(program.wait_end() == 0, "Exit ends the program with status 0")
    check(text_of(os.path.dirname(program.settings)) == "in the way", "nothing was overwritten")
