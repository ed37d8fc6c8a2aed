#!/usr/bin/python3
"""What each type of notification shows; only the dialog takes the user away from where he works."""
import os

from stage import EARLIER, Elsewhere, OneDay, check
from uidrive import act, balloons, desktop, reminders, tray, tree
from uidrive.balloons import Balloons
from uidrive.hearing import Sound
from uidrive.waiting import wait_for, wait_gone

LINE = f"{EARLIER} "  # how the lines about it begin


def toasts():
    return [w for w in tree.windows() if tree.name(w) == "Reminders"]


def wait_noticed():
    """The tray tells of the new reminder: the check that took it in is over."""
    tray.icon(reminders.PROGRAM, timeout=30)
    wait_for(lambda: "1 new reminder" in tray.tooltip(reminders.PROGRAM), 20, "the tray's tip")


def undisturbed(elsewhere, what):
    check(desktop.active_title() == elsewhere.TITLE, f"{what}: the focus stays where it was")


def nothing_shown(elsewhere, heard, what):
    wait_noticed()
    check(not reminders.showing() and not toasts(), f"{what}: neither window nor toast")
    undisturbed(elsewhere, what)
    check(heard.asked() == [], f"{what}: no balloon")
    box = tray.icon(reminders.PROGRAM)
    seen = set()
    wait_for(lambda: seen.add(desktop.pixels(*box)) or len(seen) > 1, 5, "a flashing icon")
    check(True, f"{what}: the icon flashes")


def corner_of(node):
    """How far it is from the tray's corner, below on the right: (across, down)."""
    x, y, width, height = tree.box(node)
    icon = tray.icon(reminders.PROGRAM)
    return 1280 - (x + width), icon[1] - (y + height)


def by_toast(program, elsewhere):
    reminders.wait_toast(EARLIER, 30)
    undisturbed(elsewhere, "P")
    check(not reminders.showing(), "P: a toast, no window")
    toast = toasts()[0]
    across, down = corner_of(toast)
    check(0 <= across <= 20 and 0 <= down <= 30, f"P: next to the tray, {across}, {down} away")
    first = tree.box(toast)
    check(first[2] == 300, "P: 300 wide")
    act.click(tree.find("push button", "Close", toast))
    wait_gone(toasts, what="the toast")
    undisturbed(elsewhere, "P, closed")

    program.clock.put_forward(60)
    reminders.wait_toast(program.due.subject, 40)
    undisturbed(elsewhere, "P, shown again")
    again = tree.box(toasts()[0])
    check((again[0], again[1] + again[3]) == (first[0], first[1] + first[3]),
          f"P: shown again in the same corner: {first}, {again}")
    titles = [tree.name(n) for n in tree.find_all("label", within=toasts()[0])]
    check("2 new reminders" in titles, f"P: the title counts the whole list: {titles}")


def by_mail(elsewhere):
    wait_for(toasts, 30, "the toast about e-mails")
    undisturbed(elsewhere, "E")
    texts = [tree.name(n) for n in tree.find_all("label", within=toasts()[0])]
    check("Email notifications..." in texts and
          "This feature is not yet implemented, but will send email reminders" in texts,
          f"E: the toast says {texts}")
    check(tree.box(toasts()[0])[2] == 250, "E: 250 wide")
    wait_gone(toasts, 10, "the toast")
    check(True, "E: it goes by itself")


def by_balloon(elsewhere, heard):
    title, text = wait_for(heard.asked, 30, "a balloon")[0]
    check(title.startswith(EARLIER) or EARLIER in title, f"S:, the balloon's title {title!r}")
    check(text.startswith(LINE), f"S:, its text {text!r}")
    x, y, width, height = wait_for(balloons.box, 10, "the balloon on the screen")
    undisturbed(elsewhere, "S:")
    check(not reminders.showing() and not toasts(), "S:, neither window nor toast")
    act.click_at(x + width // 2, y + height // 2)
    reminders.wait_shown()
    check(True, "S:, a click on the balloon brings the window")


def by_own_balloon():
    link = reminders.wait_toast(f"{LINE}15 minutes", 30)
    check(not reminders.showing(), "S:, where nobody shows balloons, the icon's own")
    act.click(link)
    reminders.wait_shown()
    check(True, "S:, and a click on that brings the window")


def by_dialog(elsewhere, sound):
    desktop.wait_active(reminders.TITLE, 30)
    check(reminders.selected_subjects(reminders.NEW) == [EARLIER], "D: the window, on the new row")
    grid = tree.grid(reminders.NEW, reminders.TITLE)
    check("focused" in tree.states(grid) or
          any("focused" in tree.states(c) for row in tree.cells(grid) for c in row),
          "D: and the row has the keyboard")
    wait_for(sound.heard, 10, "a sound")
    check(True, "D: with a sound")


def run(kind):
    act.move_to(10, 500)  # a toast with the mouse on it stays
    with Elsewhere() as elsewhere, Balloons() as heard, Sound() as sound:
        settings = {"muted": "NotifType=D\nMuted=-1",
                    "silent": "NotifType=D\nSilent=-1",
                    "S: alone": "NotifType=S:"}.get(kind, f"NotifType={kind}")
        with OneDay(settings, timers_too=True) as program:
            if kind == "P":
                by_toast(program, elsewhere)
            elif kind == "E":
                by_mail(elsewhere)
            elif kind == "S:":
                by_balloon(elsewhere, heard)
            elif kind == "S: alone":
                by_own_balloon()
            elif kind == "D":
                by_dialog(elsewhere, sound)
            elif kind == "silent":
                desktop.wait_active(reminders.TITLE, 30)
            else:
                nothing_shown(elsewhere, heard, kind)
            desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], f"type-{kind.replace(':', '')}.png"))
            reminders.exit_by_tray()
            check(program.wait_end() == 0, f"{kind}: ended")
    quiet = kind in ("muted", "silent")
    check((sound.peak < 0.01) == quiet, f"{kind}: loudest {sound.peak:.2f}")


# The menu stores "S", which a check answers with the icon alone; "S:" is the balloon's.
for one in ("D", "P", "E", "T", "S", "S:", "muted", "silent"):
    run(one)
balloons.end_server()
run("S: alone")
