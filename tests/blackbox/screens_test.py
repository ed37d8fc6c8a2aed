#!/usr/bin/python3
"""Several screens, and scaled ones: the toast stands next to the tray, wherever the primary screen
is, and leaves the icon free."""
import os
import signal

from stage import EARLIER, Stage, check
from uidrive import act, desktop, reminders, tray, tree
from uidrive.waiting import run, wait_for, wait_gone

WIDTH = 1280  # of the whole desktop; the tray is below on the right
LAYOUTS = (
    ("side by side, the left one first",
     ((640, 800, 0, 0, "screen"), (640, 800, 640, 0, "none")), 1),
    ("one above the other", ((1280, 300, 0, 0, "screen"), (1280, 500, 0, 300, "none")), 1),
    ("one and a half times", (), 1.5),
    ("twice", (), 2),
)


def arrange(screens):
    for number, (width, height, x, y, output) in enumerate(screens):
        run("xrandr", "--setmonitor", f"S{number}",
            f"{width}/{width // 4}x{height}/{height // 4}+{x}+{y}", output)


def undo(screens):
    for number in range(len(screens)):
        run("xrandr", "--delmonitor", f"S{number}")


def toast():
    return next((w for w in tree.windows() if tree.name(w) == "Reminders"), None)


def on_the_screen(node, scale):
    """Its place, which the bus tells in the program's own units."""
    return tuple(round(v * scale) for v in tree.box(node))


def next_to(icon, scale):
    x, y, width, height = on_the_screen(toast(), scale)
    return (0 <= WIDTH - (x + width) <= 20 * scale and
            0 <= icon[1] - (y + height) <= 30 * scale)


for name, screens, scale in LAYOUTS:
    arrange(screens)
    with Stage("NotifType=P", {"QT_SCALE_FACTOR": str(scale)}) as program:
        act.move_to(20, 20)
        icon = tray.icon(reminders.PROGRAM, timeout=30)
        reminders.wait_toast(EARLIER, 30)
        wait_for(lambda: next_to(icon, scale), 5, f"{name}: the toast next to {icon}")
        desktop.picture(os.path.join(os.environ["DESKTOP_LOGS"], f"{name.split(',')[0]}.png"))
        check(True, f"{name}: the toast stands next to the tray, {tree.box(toast())}")
        x, y, width, height = on_the_screen(tree.find("push button", "Close", toast()), scale)
        act.click_at(x + width // 2, y + height // 2)
        wait_gone(toast, what="the toast")
        program.process.send_signal(signal.SIGTERM)
        check(program.wait_end() == 0, f"{name}: ended")
    undo(screens)
