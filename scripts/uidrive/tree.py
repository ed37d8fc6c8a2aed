"""Reading what the windows show, through the accessibility bus."""
import re
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402  (the version has to be named first)

from .waiting import TIMEOUT, NotThere, pump, wait_for, wait_gone  # noqa: E402

warnings.filterwarnings("ignore", category=DeprecationWarning)
Atspi.set_timeout(1500, 5000)  # no call to a hung program blocks for longer (milliseconds)

# Qt leaves pop-up windows, such as the tray's menu, out of the list of a program's windows. They
# make themselves known only when they are shown, so that is listened for.
_menus = []


def _remember_menu(event):
    node = event.source
    try:
        if node is not None and node.get_role_name() == "popup menu" and node not in _menus:
            _menus.append(node)
    except GLib.Error:
        pass  # gone again, or its program has ended


_listener = Atspi.EventListener.new(_remember_menu)
_listener.register("object:state-changed:showing")


def plain(text):
    return (text or "").replace("&", "").rstrip("…").rstrip(".").strip()


def same(text, wanted):
    """`wanted`: a text, or a compiled pattern that is searched for."""
    if isinstance(wanted, re.Pattern):
        return bool(wanted.search(text or ""))
    return plain(text).casefold() == plain(wanted).casefold()


def name(node):
    return node.get_name() or ""


def text(node):
    """What stands in a field."""
    return Atspi.Text.get_text(node, 0, -1)


def role(node):
    return node.get_role_name()


def states(node):
    return {s.value_nick for s in node.get_state_set().get_states()}


def children(node):
    found = (node.get_child_at_index(i) for i in range(node.get_child_count()))
    return [n for n in found if n is not None]


def walk(node):
    """`node` and all below it, without the cells of grids."""
    yield node
    if role(node) not in GRIDS:
        for child in children(node):
            yield from walk(child)


def box(node):
    """(x, y, width, height) on the screen."""
    e = node.get_extents(Atspi.CoordType.SCREEN)
    return e.x, e.y, e.width, e.height


# ---- windows and widgets ------------------------------------------------------------------------
def windows(showing=True):
    desktop = Atspi.get_desktop(0)
    found = [w for program in children(desktop) for w in children(program)]
    return [w for w in found if not showing or "showing" in states(w)]


def find_window(title, timeout=TIMEOUT):
    return wait_for(lambda: next((w for w in windows() if same(name(w), title)), None), timeout,
                    lambda: f"a window {title!r}; there are {[name(w) for w in windows()]}")


def window_gone(title, timeout=TIMEOUT):
    wait_gone(lambda: any(same(name(w), title) for w in windows()), timeout, f"window {title!r}")


def find_all(roles=None, named=None, within=None, showing=True):
    if within is None:
        roots = windows()
    else:
        roots = [find_window(within) if isinstance(within, (str, re.Pattern)) else within]
    wanted = (roles,) if isinstance(roles, str) else roles
    return [n for root in roots for n in walk(root)
            if (wanted is None or role(n) in wanted)
            and (named is None or same(name(n), named))
            and (not showing or "showing" in states(n))]


def find(roles=None, named=None, within=None, timeout=TIMEOUT):
    return wait_for(lambda: next(iter(find_all(roles, named, within)), None), timeout,
                    f"{roles or 'a widget'} {named!r}")


def dump(node=None, indent=0):
    """The windows as text: for looking at, and for a failed test's report."""
    lines = []
    shown = {"showing", "checked", "focused", "selected", "active", "enabled"}
    for n in [node] if node is not None else windows(showing=False):
        lines.append("  " * indent + f"{role(n)} {name(n)!r} " + ",".join(sorted(states(n) & shown)))
        lines.extend(dump(child, indent + 1) for child in children(n))
    return "\n".join(lines)


def open_list(combo):
    """The list of a combo box, while it is open."""
    found = next((n for n in children(combo) if role(n) in GRIDS and "showing" in states(n)), None)
    if found is None:
        raise NotThere(f"the list of {name(combo)!r} is not open")
    return found


# ---- tabs ---------------------------------------------------------------------------------------
def tab_captions(within=None):
    return [plain(name(tab)) for tab in find_all("page tab", within=within)]


def current_tab(within=None):
    """Qt gives the tab bar the current tab's caption as its name."""
    return plain(name(find("page tab list", within=within)))


# ---- grids --------------------------------------------------------------------------------------
GRIDS = ("table", "tree", "tree table", "list")
_CELLS = ("table cell", "tree item", "list item")


def grid(named=None, within=None, timeout=TIMEOUT):
    """The grid of that name, on the tab that is shown."""
    return find(GRIDS, named, within, timeout)


def columns(node):
    return [name(n) for n in children(node) if role(n) == "table column header"]


def cells(node):
    """A grid's rows of cell nodes, without headings: they come as one flat list."""
    flat = [n for n in children(node) if role(n) in _CELLS]
    width = len(columns(node)) or 1
    return [flat[i:i + width] for i in range(0, len(flat) - len(flat) % width, width)]


def rows(named=None, within=None):
    """A grid's rows, as lists of texts."""
    return [[name(cell) for cell in row] for row in cells(grid(named, within))]


# ---- menus --------------------------------------------------------------------------------------
def _showing(menu):
    try:
        return "showing" in states(menu)
    except GLib.Error:
        return False  # its program has ended


def open_menus():
    """The menus that are open now, the innermost last."""
    pump()
    found = [m for m in _menus if _showing(m)]
    for window in windows():
        found += [n for n in walk(window)
                  if role(n) == "popup menu" and "showing" in states(n) and n not in found]
    return found


def menu_entries():
    """What the open menu offers: {text: is it checked}."""
    menu = wait_for(open_menus, 10, "an open menu")[-1]
    return {plain(name(n)): "checked" in states(n) for n in children(menu)
            if role(n) == "menu" or "menu item" in role(n)}
