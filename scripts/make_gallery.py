#!/usr/bin/python3
"""Takes the pictures of docs/gallery.md: the program on the virtual desktop, in each of its states.

    scripts/desktop.sh --limit 1500 -- scripts/make_gallery.py BUILD-FOLDER FOLDER [NAME...]

FOLDER is where the pictures go, by default docs/pictures; with NAMEs only these are taken. The
program's clock stands at the events' time (gallery_events.py), so that every run shows the same.
"""
import contextlib
import glob
import os
import shutil
import subprocess
import sys
import time

import gallery_events
import make_profile
from uidrive import act, balloons, colours, desktop, reminders, tray, tree
from uidrive.program import Program
from uidrive.waiting import NotThere, run, wait_for

TITLE = reminders.TITLE
CROP = 8  # around a piece of the screen
KEYS_REST = 0.7  # seconds after which a window that has come by itself takes keys that act


class Scene(Program):
    """The program on the gallery's events; the window is up unless the type says otherwise."""

    def __init__(self, build, events, kind="D", scale=None, dark=False, lost=(),
                 doubled=0, period="T"):
        """`lost`: the subjects of events whose files are gone; `doubled`: how often all events are
        listed once more, see gallery_events."""
        folder = os.path.join(os.environ["DESKTOP_TMP"], "gallery")
        shutil.rmtree(folder, ignore_errors=True)
        variables = make_profile.environment(folder)
        database = os.path.join(folder, "db", make_profile.DATABASE)
        for path in (*variables.values(), os.path.dirname(database)):
            os.makedirs(path)
        remindb = os.path.join(build, "tools", "remindb")
        subprocess.run([remindb, "new", database], check=True)
        host = os.path.join(folder, gallery_events.HOST)
        subprocess.run([remindb, "new", host], check=True)
        for statement in gallery_events.host_statements():
            subprocess.run([remindb, "sql", host, statement], check=True,
                           stdout=subprocess.DEVNULL)
        for number, event in enumerate(events, 1):
            make_profile.insert(remindb, database, gallery_events.columns(number, event, host))
        for times in range(doubled):
            subprocess.run([remindb, "sql", database, gallery_events.doubling(2 ** times)],
                           check=True, stdout=subprocess.DEVNULL)
        for number, subject in enumerate(lost):
            gone = os.path.join(folder, f"Gone{number}.vlb")
            subprocess.run([remindb, "sql", database, f'UPDATE Reminders SET VLBase="{gone}" '
                            f'WHERE Subject="{subject}"'], check=True, stdout=subprocess.DEVNULL)
        self.settings = os.path.join(variables["XDG_DATA_HOME"], "Velmora", "VLReminders.ini")
        os.makedirs(os.path.dirname(self.settings))
        with open(self.settings, "w") as file:
            width, height = {2: (560, 330), 1.5: (760, 400)}.get(scale, (920, 440))
            file.write(f"[Reminders]\nNotifType={kind}\nPeriod={period}\n[Window]\nLeft=20\nTop=20\n"
                       f"Width={width}\nHeight={height}\n")
        if dark:
            variables.update(colours.ENVIRONMENT)
            colours.choose(variables["XDG_CONFIG_HOME"], True)
        if scale:
            variables["QT_SCALE_FACTOR"] = str(scale)
        self.scale = scale or 1
        library = glob.glob("/usr/lib/*/faketime/libfaketime.so.1")[0]
        variables.update(LD_PRELOAD=library, FAKETIME=f"@{gallery_events.NOW:%Y-%m-%d %H:%M:%S}",
                         FAKETIME_DONT_FAKE_MONOTONIC="1", LC_ALL="C.UTF-8", TZ="UTC")
        super().__init__([os.path.join(build, "app", reminders.PROGRAM), "--db-folder",
                          os.path.dirname(database)], variables,
                         os.path.join(os.environ["DESKTOP_LOGS"], "gallery.log"))


class Gallery:
    def __init__(self, build, folder):
        self.build, self.folder = build, folder

    def scene(self, events=gallery_events.ORDINARY, **how):
        return Scene(self.build, events, **how)

    # ---- what is cut out of the screen ----------------------------------------------------------
    @staticmethod
    def frame(title=TITLE):
        """(left, top, right, bottom) of a window with its frame."""
        ids = [line.split()[0] for line in run("wmctrl", "-l").splitlines()
               if line.split(None, 3)[3:] == [title]]
        info = dict(line.split(":", 1) for line in run("xwininfo", "-id", ids[-1]).splitlines()
                    if line.count(":") == 1)
        x, y = int(info["  Absolute upper-left X"]), int(info["  Absolute upper-left Y"])
        width, height = int(info["  Width"]), int(info["  Height"])
        edges = run("xprop", "-id", ids[-1], "_NET_FRAME_EXTENTS").split("=")[1].split(",")
        left, right, top, bottom = map(int, edges)
        return x - left, y - top, x + width + right, y + height + bottom

    @staticmethod
    def around(node, scale=1, margin=CROP):
        x, y, width, height = (round(v * scale) for v in tree.box(node))
        return x - margin, y - margin, x + width + margin, y + height + margin

    @staticmethod
    def together(first, *others):
        """The area around all of them."""
        lefts, tops, rights, bottoms = zip(first, *others)
        return min(lefts), min(tops), max(rights), max(bottoms)

    def keep(self, name, area, when=lambda screen: True):
        """`when`: what is to be seen on the screen."""
        time.sleep(0.6)  # the last repaint
        screen = wait_for(lambda: (lambda s: s if when(s) else None)(desktop.picture()), 10,
                          f"what {name} is to show")
        left, top, right, bottom = area
        area = (max(left, 0), max(top, 0), min(right, screen.width), min(bottom, screen.height))
        path = os.path.join(self.folder, name + ".png")
        image = screen.crop(area)
        image.save(path, optimize=True)
        if shutil.which("optipng"):
            subprocess.run(["optipng", "-quiet", "-o2", "-strip", "all", path], check=True)
        print(f"{name}: {image.width} x {image.height}, {os.path.getsize(path)} bytes", flush=True)

    @staticmethod
    def shown():
        reminders.wait_shown()
        desktop.wait_active(TITLE)
        time.sleep(KEYS_REST)
        # The mouse is out of the way, so that it points at nothing.
        act.move_to(1200, 600)

    @staticmethod
    def choose_period(text):
        act.pick_from_list(text, tree.find("combo box", None, TITLE))
        tree.find("combo box", text, TITLE)  # it is known by what it shows
        act.move_to(1200, 600)

    @staticmethod
    def titled(part):
        """The title of a dialog or box, once it is there."""
        return wait_for(lambda: next((t for t in desktop.titles() if part in t), None), 10, part)

    @staticmethod
    def open_menu():
        """The button "Menu"; a key that comes too early is lost."""
        for last in (False, False, True):
            act.key("alt+m")
            try:
                return wait_for(tree.open_menus, 3, "the menu")[-1]
            except NotThere:
                if last:
                    raise

    @contextlib.contextmanager
    def window(self, **how):
        with self.scene(**how) as program:
            self.shown()
            yield program

    # ---- the pictures ---------------------------------------------------------------------------
    def new(self):
        with self.window():
            self.keep("new", self.frame())

    def all(self):
        with self.window():
            act.key("alt+a")
            self.keep("all", self.frame())

    def events(self):
        with self.window():
            act.key("alt+e")
            self.keep("events", self.frame())

    def week(self):
        with self.window():
            self.choose_period("Today + Tomorrow")
            act.key("alt+e")
            self.keep("week", self.frame())

    def dismissed(self):
        with self.window():
            act.key("alt+a")
            self.choose_period("Dismissed")
            act.key("Home")
            tree.find("push button", "Reactivate", TITLE)
            self.keep("dismissed", self.frame())

    def hidden(self):
        with self.window():
            act.key("alt+e")
            act.select_row("Project meeting", reminders.EVENTS, TITLE)
            act.key("alt+h")
            self.choose_period("Hidden")
            act.key("Home")
            tree.find("push button", "Unhide", TITLE)
            self.keep("hidden", self.frame())

    def snooze(self):
        with self.window():
            act.key("alt+s")
            title = wait_for(lambda: next((t for t in desktop.titles() if "Snooze" in t), None))
            self.keep("snooze", self.frame(title))

    def dismiss(self):
        with self.window():
            act.key("shift+Delete")
            title = wait_for(lambda: next((t for t in desktop.titles() if "Dismiss" in t), None))
            self.keep("dismiss", self.frame(title))

    def toast(self, name="toast", **how):
        with self.scene(kind="P", **how):
            node = wait_for(lambda: next((w for w in tree.windows() if tree.name(w) == "Reminders"),
                                         None), 30)
            act.move_to(700, 300)
            self.keep(name, self.around(node, how.get("scale") or 1))

    def balloon(self):
        with self.scene(kind="S:"):
            x, y, width, height = wait_for(balloons.box, 30, "the balloon")
            act.move_to(1200, 600)
            self.keep("balloon", (x - CROP, y - CROP, x + width + CROP, y + height + CROP))

    def email(self):
        with self.scene(kind="E"):
            node = wait_for(lambda: next((w for w in tree.windows() if tree.name(w) == "Reminders"),
                                         None), 30)
            self.keep("email", self.around(node))

    def tray(self):
        with self.scene(kind="T"):
            x, y, width, height = tray.icon(reminders.PROGRAM, 30)
            tray.tooltip(reminders.PROGRAM, across=0.1, down=0.9)  # or the pointer hides the icon

            def with_dot(screen):
                return any(red > 200 and green < 60 and blue < 60 for red, green, blue in
                           screen.crop((x, y, x + width, y + height)).getdata())

            self.keep("tray", (x - 250, y - 70, x + width + 12, y + height), with_dot)

    def menu(self):
        with self.scene(kind="T"):
            tray.click(reminders.PROGRAM, button=3)
            menu = wait_for(tree.open_menus, 10)[-1]
            self.keep("menu", self.around(menu))

    def context(self):
        with self.window():
            act.key("Down")
            wait_for(lambda: any(tree.name(n).startswith("Call the bank")
                                 for n in tree.find_all("label", within=TITLE)), 10, "the next row")
            act.key("Menu")
            wait_for(tree.open_menus, 10)
            self.keep("context", self.frame())

    def columns(self):
        with self.window():
            act.click(next(n for n in tree.children(tree.grid(reminders.NEW, TITLE))
                           if tree.role(n) == "table column header" and tree.name(n) == "Due"),
                      button=3)
            wait_for(tree.open_menus, 10)
            act.key("s")
            menus = wait_for(lambda: (lambda m: m if len(m) > 1 else None)(tree.open_menus()), 10,
                             "the menu of sorting")
            self.keep("columns", self.together(self.frame(), *map(self.around, menus)))

    def cleanup(self):
        with self.window(lost=("Choir", "Water the plants")):
            self.open_menu()
            act.key("c")
            self.keep("cleanup", self.frame(self.titled("Clean up")))

    def delete_all(self):
        with self.window():
            self.open_menu()
            act.key("d")
            self.keep("delete-all", self.frame(self.titled("Reminders database")))

    def about(self):
        with self.scene(kind="T"):
            tray.click(reminders.PROGRAM, button=3)
            time.sleep(0.5)
            act.key("a")
            title = wait_for(lambda: next((t for t in desktop.titles() if "Events and" in t), None))
            self.keep("about", self.frame(title))

    def empty(self):
        with self.scene(events=(), kind="D"):
            tray.click(reminders.PROGRAM)
            self.shown()
            self.keep("empty", self.frame())

    def ten_thousand(self):
        with self.window(events=gallery_events.CALL_CENTRE,
                         doubled=gallery_events.TURNS_DOUBLED, period="D+30"):
            act.key("alt+a")
            wait_for(lambda: "All Reminders: 10000" in tree.tab_captions(TITLE), 20, "all rows")
            act.key("End")
            self.keep("ten-thousand", self.frame())

    def many(self):
        """A toast with more than the screen holds."""
        self.toast("many", events=gallery_events.MANY)

    def world(self):
        with self.window(events=gallery_events.WORLD):
            self.keep("world", self.frame())

    def world_toast(self):
        self.toast("world-toast", events=gallery_events.WORLD)

    def dark(self):
        with self.window(dark=True):
            self.keep("dark", self.frame())

    def dark_dismiss(self):
        with self.window(dark=True):
            act.key("shift+Delete")
            title = wait_for(lambda: next((t for t in desktop.titles() if "Dismiss" in t), None))
            self.keep("dark-dismiss", self.frame(title))

    def dark_menu(self):
        with self.window(dark=True):
            menu = self.open_menu()
            self.keep("dark-menu", self.around(menu))

    def dark_toast(self):
        self.toast("dark-toast", dark=True)

    def dark_snooze(self):
        with self.window(dark=True):
            act.key("alt+s")
            title = wait_for(lambda: next((t for t in desktop.titles() if "Snooze" in t), None))
            self.keep("dark-snooze", self.frame(title))

    def scaled_1_5(self):
        with self.window(scale=1.5):
            self.keep("scale-1.5", self.frame())

    def scaled_2(self):
        with self.scene(scale=2):
            reminders.wait_shown()
            self.keep("scale-2", self.frame())

    def scaled_2_snooze(self):
        with self.window(scale=2):
            act.key("alt+s")
            self.keep("scale-2-snooze", self.frame(self.titled("Snooze")))

    def scaled_2_dismiss(self):
        with self.window(scale=2):
            act.key("shift+Delete")
            self.keep("scale-2-dismiss", self.frame(self.titled("Dismiss")))

    def scaled_2_toast(self):
        self.toast("scale-2-toast", scale=2)

    def no_tray(self):
        """The last one: it ends the desktop's tray."""
        tray.end()
        with self.scene(kind="T"):
            desktop.wait_known(TITLE, 30)
            desktop.activate(TITLE)
            self.shown()
            wait_for(lambda: any("tray icons" in tree.name(n)
                                 for n in tree.find_all("label", within=TITLE)), 15, "the notice")
            self.keep("no-tray", self.frame())


PICTURES = {name: value for name, value in vars(Gallery).items()
            if callable(value) and not name.startswith("_")
            and name not in ("scene", "keep", "window", "frame", "around", "shown", "titled",
                             "choose_period", "together", "open_menu")}


def main():
    build = os.path.abspath(sys.argv[1])
    folder = os.path.abspath(sys.argv[2])
    os.makedirs(folder, exist_ok=True)
    gallery = Gallery(build, folder)
    for name in sys.argv[3:] or PICTURES:
        PICTURES[name](gallery)


if __name__ == "__main__":
    main()
