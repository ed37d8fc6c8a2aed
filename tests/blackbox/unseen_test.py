#!/usr/bin/python3
"""What changes while the window is hidden, with a list of the period in front and a search in it:
minutes pass over rows that wait for somebody who looks."""
import time

from stage import OneDay, check
from uidrive import act, reminders, tray, tree
from uidrive.reminders import EVENTS
from uidrive.waiting import run, wait_for

MINUTE = 60


def tip():
    """Moves the mouse, which wakes the program as well."""
    text = tray.tooltip(reminders.PROGRAM)
    act.move_to(300, 300)
    return text.splitlines()[0]


with OneDay("NotifType=T", timers_too=True) as program:
    tray.icon(reminders.PROGRAM, timeout=30)
    tray.click(reminders.PROGRAM)
    reminders.wait_shown()
    act.select_tab(EVENTS, reminders.TITLE)
    rows = wait_for(lambda: reminders.subjects(EVENTS), 10, "today's events")
    check(len(rows) >= 3, f"there are some: {rows}")
    gone, moved = rows[0], rows[-1]
    act.key("ctrl+f")
    run("xdotool", "type", "--delay", "20", moved[:4])
    wait_for(lambda: moved in reminders.subjects(EVENTS) and gone not in reminders.subjects(EVENTS),
             5, "what is searched for")
    act.key("Return")

    tray.click(reminders.PROGRAM)
    reminders.wait_hidden()
    before = tip()
    check(before == f"{len(rows)} Events", f"the tip tells of all rows of that list: {before}")
    program.sql(f'DELETE FROM Reminders WHERE Subject="{gone}"')
    for minute in (1, 2, 3, 4):
        program.clock.put_forward(minute * MINUTE + 5)
        if minute == 3:
            program.sql(f'UPDATE Reminders SET Subject="{moved[:20]} now" WHERE Subject="{moved}"')
        tip()
        time.sleep(1)
        check(not program.ended(), f"minute {minute} has passed")
    wait_for(lambda: tip() == f"{len(rows) - 1} Events", 20, "the tip to tell of one row less")

    tray.click(reminders.PROGRAM)
    reminders.wait_shown()
    wait_for(lambda: reminders.subjects(EVENTS) == [f"{moved[:20]} now"], 10,
             lambda: f"the row of the search as it is now: {reminders.subjects(EVENTS)}")
    check(EVENTS in tree.current_tab(reminders.TITLE), "the same list is in front")
    check(tip() == f"{len(rows) - 1} Events", "and the tip tells the same")
    reminders.exit_by_tray()
    check(program.wait_end() == 0, "ended")
