"""Balloons: what the notification server is asked for, and where it shows them."""
import os
import re
import signal
import subprocess
import time

from gi.repository import Gio, GLib

from .waiting import run, wait_for

_RULE = "type='method_call',interface='org.freedesktop.Notifications',member='Notify'"
_BOX = re.compile(r'"Dunst"\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+\+(-?\d+)\+(-?\d+)')


class Balloons:
    """Listens while the block runs.

        with Balloons() as balloons:
            ...
        balloons.asked()  [(title, text)], in their order
    """

    def __enter__(self):
        self._path = os.path.join(os.environ["DESKTOP_TMP"], f"balloons.{time.monotonic_ns()}")
        with open(self._path, "w") as out:
            self._monitor = subprocess.Popen(["dbus-monitor", "--session", _RULE], stdout=out,
                                             stderr=subprocess.DEVNULL)
        # It is told that it has lost its name when it begins to listen.
        wait_for(lambda: "member=NameLost" in self._text(), 10, "the bus monitor")
        return self

    def _text(self):
        with open(self._path, errors="replace") as file:
            return file.read()

    def asked(self):
        found = []
        for call in self._text().split("method call ")[1:]:
            # Application, icon, title and text stand at the margin; the actions are indented more.
            texts = re.findall(r'^   string "(.*?)"$', call, re.M | re.S)
            if len(texts) >= 4:
                found.append((texts[2], texts[3]))
        return found

    def __exit__(self, *_):
        self._monitor.terminate()
        self._monitor.wait()


def end_server():
    """Ends the desktop's notification server: from then on there is none."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)

    def ask(method):
        return bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus",
                             "org.freedesktop.DBus", method,
                             GLib.Variant("(s)", ("org.freedesktop.Notifications",)), None, 0,
                             3000, None).unpack()[0]
    os.kill(ask("GetConnectionUnixProcessID"), signal.SIGTERM)
    wait_for(lambda: not ask("NameHasOwner"), 10, "the end of the notification server")


def box():
    """(x, y, width, height) of the balloon that is shown; none: None."""
    for line in run("xwininfo", "-root", "-tree").splitlines():
        found = _BOX.search(line)
        if found and min(int(found.group(1)), int(found.group(2))) > 20:  # it begins as a line
            number = re.search(r"0x[0-9a-f]+", line).group(0)
            if "IsViewable" in run("xwininfo", "-id", number, check=False):
                width, height, x, y = map(int, found.groups())
                return x, y, width, height
    return None
