#!/usr/bin/python3
"""A reminder comes: listed, counted, heard, told by the tray; shown, hidden, ended by its menu."""
import os

from stage import EARLIER, LATER, Stage, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.hearing import Sound
from uidrive.waiting import wait_for, wait_gone

with Stage() as program:
    due = program.due.subject
    tray.icon(reminders.PROGRAM, timeout=30)
    check(True, "the tray has the icon")

    # What fell due earlier today is shown at once, what is not due yet is not.
    reminders.wait_listed(EARLIER, 30)
    listed = reminders.subjects(reminders.NEW)
    check(due not in listed and LATER not in listed, f"listed at the start: {listed}")

    with Sound() as sound:
        sound.wait_quiet()
        program.clock.put_forward(60)
        rows = reminders.wait_listed(due, 60)
        wait_for(sound.heard, 10, "a sound")
    check(sound.peak > 0.02 and sound.seconds > 0.05,
          f"heard {sound.seconds:.2f} s, loudest {sound.peak:.2f}")

    row = next(r for r in rows if reminders.subject(r) == due)
    clock = f"{program.due.time:%H:%M}"
    check(clock in row[reminders.TIME], f"the row's reminder {row[reminders.TIME]!r} is of {clock}")
    check(LATER not in map(reminders.subject, rows), "nothing that is not due is listed")

    caption = f"{reminders.NEW}: {len(rows)}"
    wait_for(lambda: caption in tree.tab_captions(reminders.TITLE), 10, f"the tab {caption!r}")
    check(tree.current_tab(reminders.TITLE) == caption, f"the tab in front reads {caption!r}")
    desktop.wait_active(reminders.TITLE)
    check(True, "the window is in front")
    desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], "reminder.png"))

    seen = set()
    box = tray.icon(reminders.PROGRAM)
    wait_for(lambda: seen.add(desktop.pixels(*box)) or len(seen) > 1, 5, "a flashing icon")
    check(True, "the icon flashes")
    tip = tray.tooltip(reminders.PROGRAM)
    check(f"{len(rows)} new reminders" in tip and reminders.HIDDEN_TIP not in tip, f"tip {tip!r}")

    entries = reminders.tray_menu()
    check(all(text in entries for text in reminders.MENU), f"menu {list(entries)}")
    check(not any(entries[text] for text in (reminders.MUTE, reminders.SILENT, reminders.ON_TOP)),
          "nothing is muted, silent or on top")
    act.choose(next(iter(entries)))
    reminders.wait_hidden()
    check(True, "the first entry hides the window")
    wait_gone(tree.open_menus, what="the menu")
    entries = reminders.tray_menu()
    first = next(iter(entries))
    check(reminders.HIDDEN_TIP in first, f"the first entry now reads {first!r}")
    act.choose(first)
    reminders.wait_shown()
    check(due in reminders.subjects(reminders.NEW), "it shows the window again, with its rows")

    wait_gone(tree.open_menus, what="the menu")
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "Exit ends the program with status 0")
    with open(program.settings) as file:
        check("NotifType=D" in file.read(), "the settings were saved in the profile")
