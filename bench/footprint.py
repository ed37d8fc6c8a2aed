#!/usr/bin/python3
"""What the program costs while it waits, hidden in the tray, beside a bare program with a tray icon.

    scripts/desktop.sh -- bench/footprint.py BUILD-FOLDER [--events N] [--starts N] [--idle SECONDS]

Measured on a profile that was started before, as on every day but the first:

* from the start of the process until the tray shows the icon, and until all is done that is done at
  the start: the last moment after which the process takes less than QUIET of the processor until
  the look ends;
* with DejaVu as the only font;
* memory that no other process shares, above that of the bare program running beside it. Both use
  copies of the libraries and the font, so that it does not matter which other programs run;
* wake-ups (voluntary context switches of all threads) and processor time while nothing happens.

Times of a start are the least and the median of the starts: other programs on the machine only add.
The exit status is 1 when a bound is missed.
"""
import argparse
import mmap
import os
import shutil
import signal
import statistics
import struct
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "scripts"))
from make_profile import DATABASE, environment  # noqa: E402

LOOK = 2.0  # seconds of a start that are watched
FIRST_LOOK = 15.0  # the first one on a file writes to it
QUIET = 2.0  # milliseconds of processor
TRAY_LINES = 24  # at the screen's lower edge


class TrayBar:
    """The pixels of the tray, as the X server has them in memory."""

    def __init__(self):
        with open(os.environ["DESKTOP_SCREEN"], "rb") as file:
            self.screen = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        head = struct.unpack(">25I", self.screen[:100])
        size, height, self.line, colours = head[0], head[5], head[12], head[19]
        self.top = size + colours * 12
        self.begin = self.top + (height - TRAY_LINES) * self.line
        self.end = self.begin + TRAY_LINES * self.line

    def pixels(self):
        return self.screen[self.begin:self.end]


FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
<dir>FOLDER</dir>
<include ignore_missing="yes">/etc/fonts/conf.d</include>
<cachedir prefix="xdg">fontconfig</cachedir>
</fontconfig>
"""


def with_fonts(variables, folder):
    """The same font on every machine: some have one that is kept in memory whole."""
    fonts = os.path.join(folder, "fonts")
    shutil.copytree("/usr/share/fonts/truetype/dejavu", fonts)
    file = os.path.join(folder, "fonts.conf")
    with open(file, "w") as out:
        out.write(FONTS.replace("FOLDER", fonts))
    return {**variables, "FONTCONFIG_FILE": file}


def with_libraries(variables, folder, pid):
    """Copies of the libraries that the process has mapped: pages of them are shared by those
    programs only that are started for the measurement."""
    libraries = os.path.join(folder, "libraries")
    plugins = os.path.join(folder, "plugins")
    os.makedirs(libraries)
    with open(f"/proc/{pid}/maps") as file:
        mapped = {line.split(maxsplit=5)[5].strip() for line in file if ".so" in line}
    for path in mapped:
        kind, name = path.split(os.sep)[-2:]
        # The loader itself is named in the programs, and the C library has to fit to it.
        if name.startswith(("ld-", "libc.so")):
            continue
        is_plugin = "/plugins/" in path
        target = os.path.join(plugins, kind) if is_plugin else libraries
        os.makedirs(target, exist_ok=True)
        shutil.copy(path, os.path.join(target, name))
        if not is_plugin:  # programs ask for it by the short name: libX.so.6, not libX.so.6.4.2
            parts = name.split(".")
            for end in range(parts.index("so") + 2, len(parts)):
                os.symlink(name, os.path.join(libraries, ".".join(parts[:end])))
    return {**variables, "LD_LIBRARY_PATH": libraries, "QT_PLUGIN_PATH": plugins}


def tasks(pid):
    return [f"/proc/{pid}/task/{task}" for task in os.listdir(f"/proc/{pid}/task")]


def processor(pid):
    """Milliseconds that all threads have had so far."""
    total = 0
    for task in tasks(pid):
        with open(task + "/schedstat") as file:
            total += int(file.read().split()[0])
    return total / 1e6


def wake_ups(pid):
    """Of each living thread by name; a thread that ends takes its count with it."""
    counts = {}
    for task in tasks(pid):
        with open(task + "/status") as file:
            fields = dict(line.split(":", 1) for line in file)
        name = f"{fields['Name'].strip()} {os.path.basename(task)}"
        counts[name] = int(fields["voluntary_ctxt_switches"])
    return counts


def private_kib(pid):
    with open(f"/proc/{pid}/smaps_rollup") as file:
        return sum(int(line.split()[1]) for line in file if line.startswith("Private_"))


class Running:
    def __init__(self, command, variables):
        self.bar = TrayBar()
        self.before = self.bar.pixels()
        self.begin = time.monotonic()
        self.process = subprocess.Popen(command, env={**os.environ, **variables},
                                        stdin=subprocess.DEVNULL)
        self.pid = self.process.pid

    def watch_start(self, look=LOOK):
        """(tray shows it, all is done, processor in all): seconds, seconds, milliseconds."""
        shown, last = 0.0, self.before
        steps = []
        while (now := time.monotonic() - self.begin) < look:
            pixels = self.bar.pixels()
            if pixels != last:
                shown, last = now, pixels
            steps.append((now, processor(self.pid)))
            time.sleep(0.0005)
        if last == self.before:
            raise RuntimeError(f"{self.process.args[0]}: no icon in the tray")
        total = steps[-1][1]
        done = next(now for now, used in steps if total - used < QUIET)
        return shown, done, total

    def watch_idle(self, seconds):
        """(wake-ups by thread, milliseconds of processor), of a minute."""
        before, used = wake_ups(self.pid), processor(self.pid)
        time.sleep(seconds)
        after = wake_ups(self.pid)
        minute = 60 / seconds
        woken = {name: (count - before.get(name, 0)) * minute for name, count in after.items()}
        return woken, (processor(self.pid) - used) * minute

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        deadline = time.monotonic() + 5
        while self.bar.pixels() != self.before and time.monotonic() < deadline:
            time.sleep(0.02)  # the tray forgets the icon
        time.sleep(0.2)


class Figures:
    def __init__(self):
        self.missed = 0

    def bound(self, what, value, most, unit):
        verdict = "" if value <= most else "   MISSED"
        self.missed += value > most
        print(f"{what:<44}{value:10.3g} {unit:<4} at most {most:g}{verdict}", flush=True)


def told(name, starts):
    shown, done, used = zip(*starts)
    print(f"{name:<14} in the tray {min(shown):.3f} s (median {statistics.median(shown):.3f}), "
          f"done {min(done):.3f} s (median {statistics.median(done):.3f}), "
          f"processor {min(used):.0f} ms", flush=True)


def measure(asked):
    build = os.path.abspath(asked.build)
    program = os.path.join(build, "app", "vlreminders")
    bare = [os.path.join(build, "bench", "bare_tray")]
    profile = os.path.join(os.environ["DESKTOP_TMP"], "footprint")
    variables = environment(profile)
    for path in (*variables.values(), os.path.join(profile, "db")):
        os.makedirs(path)
    variables = with_fonts(variables, profile)
    file = os.path.join(profile, "db", DATABASE)
    subprocess.run([os.path.join(build, "bench", "many_file"), file, str(asked.events)], check=True)
    command = [program, "--db-folder", os.path.dirname(file)]
    print(f"{asked.events} events, a file of {os.path.getsize(file) / 1e6:.1f} MB", flush=True)

    def start(what):
        running = Running(what, variables)
        try:
            return running.watch_start()
        finally:
            running.end()

    first = Running(command, variables)
    told("first start", [first.watch_start(FIRST_LOOK)])
    variables = with_libraries(variables, profile, first.pid)
    first.end()
    told("bare", [start(bare) for _ in range(asked.starts)])
    starts = [start(command) for _ in range(asked.starts)]
    told("program", starts)

    beside = [Running(bare, variables), Running(bare, variables)]  # so that Qt's pages are shared
    running = Running(command, variables)
    figures = Figures()
    try:
        time.sleep(8)
        woken, used = running.watch_idle(asked.idle)
        memory = private_kib(running.pid) / 1024
        least = private_kib(beside[0].pid) / 1024
        print(f"private memory {memory:.1f} MB, bare {least:.1f} MB", flush=True)
        print("wake-ups by thread:", {n: round(c, 1) for n, c in woken.items()}, flush=True)
        figures.bound("until the tray shows it, least", min(s[0] for s in starts), 0.15, "s")
        figures.bound("until all is done, least", min(s[1] for s in starts), 0.3, "s")
        figures.bound("private memory above the bare program's", memory - least, 12, "MB")
        figures.bound("wake-ups a minute", sum(woken.values()), 10, "")
        figures.bound("processor a minute", used, 5, "ms")
        if asked.maps:
            shutil.copy(f"/proc/{running.pid}/smaps", asked.maps)
            shutil.copy(f"/proc/{beside[0].pid}/smaps", asked.maps + ".bare")
    finally:
        for one in (running, *beside):
            one.end()
    return figures.missed


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("build")
    parser.add_argument("--events", type=int, default=10000)
    parser.add_argument("--starts", type=int, default=9)
    parser.add_argument("--idle", type=int, default=60)
    parser.add_argument("--maps", help="keep the processes' smaps in this file and FILE.bare")
    sys.exit(1 if measure(parser.parse_args()) else 0)
