#!/usr/bin/python3
"""How long the window takes to appear: from a click on the tray icon until it is painted.

    scripts/desktop.sh -- bench/first_show.py PROGRAM MANY-FILE [--events N] [--times N]

The first show of a program that has just started and waits, when the window's controls are made,
and the next one. Told are the first moment at which anything of the window is on the screen, and
the last one at which it changed: between the two it is seen to build up. Each the median.
"""
import argparse
import os
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from footprint import DATABASE, Running, TrayBar, environment, with_fonts  # noqa: E402
from uidrive import tray  # noqa: E402

QUIET = 1.0  # seconds
EACH = 8  # of so many lines one is looked at


class Screen(TrayBar):
    """Some lines of what lies above the tray."""

    def pixels(self):
        return b"".join(self.screen[at:at + self.line]
                        for at in range(self.top, self.begin, EACH * self.line))


def point_at_icon(program):
    x, y, width, height = tray.icon(program)
    subprocess.run(["xdotool", "mousemove", str(x + width // 2), str(y + height // 2)], check=True)
    time.sleep(0.3)


def show_and_watch(screen, program):
    """Seconds from the click to the first and to the last change of the screen."""
    point_at_icon(program)
    before = screen.pixels()
    begin = time.monotonic()
    pressed = subprocess.Popen(["xdotool", "click", "1"])
    first = last = None
    while (now := time.monotonic()) - (last or begin) < QUIET:
        pixels = screen.pixels()
        if pixels != before:
            first = first or now
            last, before = now, pixels
    pressed.wait()
    if first is None:
        raise RuntimeError("the click has shown nothing")
    return first - begin, last - begin


def measure(asked):
    profile = os.path.join(os.environ["DESKTOP_TMP"], "first-show")
    variables = environment(profile)
    for path in (*variables.values(), os.path.join(profile, "db")):
        os.makedirs(path)
    variables = with_fonts(variables, profile)
    file = os.path.join(profile, "db", DATABASE)
    subprocess.run([asked.many_file, file, str(asked.events)], check=True)
    command = [os.path.abspath(asked.program), "--db-folder", os.path.dirname(file)]
    screen, name = Screen(), os.path.basename(asked.program)
    shows = {"first show": [], "next show": []}
    for _ in range(asked.times):
        running = Running(command, variables)
        running.watch_start(3.0)
        for each in shows.values():
            each.append(show_and_watch(screen, name))
            point_at_icon(name)
            subprocess.run(["xdotool", "click", "1"], check=True)
            time.sleep(1)
        running.end()
    for which, each in shows.items():
        first, last = (statistics.median(one) * 1000 for one in zip(*each))
        least = min(one[1] for one in each) * 1000
        print(f"{which:<12} on the screen after {first:.0f} ms, "
              f"done after {last:.0f} ms (least {least:.0f})", flush=True)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("program")
    parser.add_argument("many_file")
    parser.add_argument("--events", type=int, default=10000)
    parser.add_argument("--times", type=int, default=9)
    measure(parser.parse_args())
