#!/usr/bin/python3
"""The tray over D-Bus (StatusNotifierItem), as newer desktops have it: tip, click, menu, exit."""
from stage import EARLIER, Stage, check
from uidrive import reminders, tree
from uidrive.tray import BusIcon

with Stage() as program:
    icon = BusIcon(timeout=30)
    reminders.wait_listed(EARLIER, 30)
    check("new reminder" in icon.tooltip(), f"tip {icon.tooltip()!r}")
    texts = [tree.plain(entry[1]) for entry in icon.menu()]
    check(all(text in texts for text in reminders.MENU), f"menu {texts}")

    icon.choose(reminders.MUTE)
    checked = next(e[2] for e in icon.menu() if tree.plain(e[1]) == reminders.MUTE)
    check(checked, "Mute is checked after it was chosen")

    icon.choose(texts[0])
    reminders.wait_hidden()
    icon.left_click()
    reminders.wait_shown()
    check(True, "the first entry hides the window, a click shows it")

    icon.choose(reminders.EXIT)
    check(program.wait_end() == 0, "Exit ends the program with status 0")
    with open(program.settings) as file:
        check("Muted=-1" in file.read(), "Mute was saved")
