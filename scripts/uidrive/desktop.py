"""Windows as the window manager sees them, and pictures of the screen."""
import os
import re
import struct

from PIL import Image

from .waiting import TIMEOUT, NotThere, run, wait_for


def active_title():
    found = re.search(r"# (0x[0-9a-f]+)", run("xprop", "-root", "_NET_ACTIVE_WINDOW", check=False))
    if not found or int(found.group(1), 16) == 0:
        return None
    text = run("xprop", "-id", found.group(1), "_NET_WM_NAME", "WM_NAME", check=False)
    title = re.search(r'= "(.*)"', text)
    return title.group(1) if title else ""


def wait_active(title, timeout=TIMEOUT):
    wait_for(lambda: active_title() == title, timeout, f"{title!r} to be the active window")


def titles():
    """The titles of all windows that the window manager knows."""
    parts = (line.split(None, 3) for line in run("wmctrl", "-l", check=False).splitlines())
    return [p[3] for p in parts if len(p) == 4]


def _id_of(title):
    """The window of that title, as the window manager names it."""
    for line in run("wmctrl", "-l", check=False).splitlines():
        parts = line.split(None, 3)
        if len(parts) == 4 and parts[3] == title:
            return parts[0]
    raise NotThere(f"window {title!r}; there are {titles()}")


def geometry(title):
    """(x, y, width, height) of a window's inside on the screen."""
    text = run("xwininfo", "-id", _id_of(title))
    return tuple(int(re.search(rf"{what}:\s+(-?\d+)", text).group(1))
                 for what in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))


def place(title, x, y, width, height):
    """Moves and resizes a window, as dragging it does; waits until it has come to rest."""
    run("wmctrl", "-i", "-r", _id_of(title), "-e", f"0,{x},{y},{width},{height}")
    wait_for(lambda: geometry(title)[2:] == (width, height), 5, f"{title!r} to be resized")
    before = geometry(title)
    wait_for(lambda: geometry(title) == before, 5, f"{title!r} to come to rest", step=0.3)


def wait_known(title, timeout=TIMEOUT):
    """Until the window manager has the window, in front or minimized."""
    wait_for(lambda: title in titles(), timeout, f"the window {title!r}")


def activate(title):
    """Brings a window forward, as a click in the task bar does."""
    run("wmctrl", "-i", "-a", _id_of(title))


def states(title):
    """What the window manager says of a window: ABOVE, HIDDEN, SKIP_TASKBAR..."""
    text = run("xprop", "-id", _id_of(title), "_NET_WM_STATE")
    return set(re.findall(r"_NET_WM_STATE_(\w+)", text))


def picture(path=None):
    """The screen as it is now; saved when a path is given."""
    with open(os.environ["DESKTOP_SCREEN"], "rb") as file:
        raw = file.read()
    # An XWD file: a header of 25 numbers and a name, the colour table, the lines.
    head = struct.unpack(">25I", raw[:100])
    size, width, height, line_bytes, colours = head[0], head[4], head[5], head[12], head[19]
    image = Image.frombuffer("RGB", (width, height), raw[size + colours * 12:], "raw", "BGRX",
                             line_bytes, 1)
    if path:
        image.save(path)
    return image


def pixels(x, y, width, height):
    """The colours of a piece of the screen."""
    return picture().crop((x, y, x + width, y + height)).tobytes()
