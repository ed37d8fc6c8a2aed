"""The tray icon, embedded (XEmbed) and over D-Bus (StatusNotifierItem)."""
import os
import re
import signal
import subprocess
import time

from gi.repository import Gio, GLib

from .act import click_at, move_to
from .tree import name, role, same, windows
from .waiting import TIMEOUT, NotThere, run, wait_for

_WINDOW = re.compile(r'( +)0x[0-9a-f]+ (.*?): \(([^)]*)\)\s+(\d+)x(\d+)\+-?\d+\+-?\d+\s+'
                     r'\+(-?\d+)\+(-?\d+)')
_TIP_TAKES = 3  # seconds at the most, once the mouse rests


def _embedded():
    """(program, x, y, width, height) of what sits in the tray."""
    depth = None  # of the tray's window in the tree that xwininfo prints
    for line in run("xwininfo", "-root", "-tree").splitlines():
        found = _WINDOW.match(line)
        if not found:
            continue
        indent, title, program = len(found.group(1)), found.group(2), found.group(3)
        if depth is not None and indent <= depth:
            depth = None
        is_tray = "trayer" in title + program or "panel" in title + program
        if depth is None and is_tray:
            depth = indent
        elif depth is not None and program and not is_tray:
            width, height, x, y = (int(found.group(i)) for i in (4, 5, 6, 7))
            yield program.split()[0].strip('"'), x, y, width, height


def icon(program, timeout=TIMEOUT):
    """(x, y, width, height) of the program's embedded icon, once the tray has given it its place."""
    return wait_for(lambda: next((i[1:] for i in _embedded()
                                  if i[0] == program and min(i[1:3]) >= 0), None), timeout,
                    f"a tray icon of {program}")


def click(program, button=1):
    x, y, width, height = icon(program)
    click_at(x + width // 2, y + height // 2, button)


def tooltip(program, timeout=TIMEOUT, across=0.5, down=0.5):
    """Rests the mouse on the icon, so far across and down; the text of the tip that appears."""
    end = time.monotonic() + timeout
    while True:
        x, y, width, height = icon(program)
        at = x + int(width * across), y + int(height * down)
        move_to(at[0] + 3, at[1])
        time.sleep(0.1)  # two movements, or the program takes the mouse for passing by
        move_to(*at)
        left = end - time.monotonic()
        try:
            return wait_for(lambda: next((name(w) for w in windows(showing=False)
                                          if role(w) == "tool tip" and name(w)), None),
                            min(_TIP_TAKES, left), "the tray icon's tip")
        except NotThere:  # the icon may just have been given its place
            if left <= _TIP_TAKES:
                raise


def start():
    """A tray that embeds icons, as a desktop has it below on the right."""
    return subprocess.Popen(("trayer", "--edge", "bottom", "--align", "right", "--widthtype",
                             "request", "--heighttype", "pixel", "--height", "24",
                             "--SetDockType", "true"),
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def end():
    """Ends the desktop's own: from then on there is none."""
    os.kill(int(run("xdotool", "search", "--class", "trayer", "getwindowpid").split()[0]),
            signal.SIGTERM)
    wait_for(lambda: not run("xdotool", "search", "--class", "trayer", check=False).strip(),
             10, "the end of the tray")


# ---- over D-Bus -----------------------------------------------------------------------------------
_WATCHER = "org.kde.StatusNotifierWatcher"


def _call(destination, path, interface, method, arguments):
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    return bus.call_sync(destination, path, interface, method, arguments, None, 0, 3000,
                         None).unpack()


def _property(destination, path, interface, wanted):
    return _call(destination, path, "org.freedesktop.DBus.Properties", "Get",
                 GLib.Variant("(ss)", (interface, wanted)))[0]


class BusIcon:
    """The first icon that is registered with the tray host."""

    def __init__(self, timeout=20):
        items = wait_for(lambda: _property(_WATCHER, "/StatusNotifierWatcher", _WATCHER,
                                           "RegisteredStatusNotifierItems"),
                         timeout, "a tray icon on the bus")
        self.owner = items[0].split("/")[0]

    def tooltip(self):
        tip = _property(self.owner, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "ToolTip")
        return "\n".join(part for part in tip[2:4] if part)

    def left_click(self):
        _call(self.owner, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate",
              GLib.Variant("(ii)", (0, 0)))

    def menu(self):
        """The entries: [(number, text, checked, children)]."""
        def tidy(entry):
            number, values, below = entry
            return (number, values.get("label", "").replace("_", ""),
                    values.get("toggle-state", 0) == 1, [tidy(e) for e in below])
        _call(self.owner, "/MenuBar", "com.canonical.dbusmenu", "AboutToShow",
              GLib.Variant("(i)", (0,)))
        layout = _call(self.owner, "/MenuBar", "com.canonical.dbusmenu", "GetLayout",
                       GLib.Variant("(iias)", (0, -1, [])))
        return tidy(layout[1])[3]

    def choose(self, wanted):
        """Chooses an entry the way the tray host does."""
        def search(entries):
            for number, text, _, below in entries:
                if same(text, wanted):
                    return number
                inner = search(below)
                if inner is not None:
                    return inner
            return None
        entries = self.menu()
        number = search(entries)
        if number is None:
            raise NotThere(f"menu entry {wanted!r}; there are {[e[1] for e in entries]}")
        _call(self.owner, "/MenuBar", "com.canonical.dbusmenu", "Event",
              GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))
