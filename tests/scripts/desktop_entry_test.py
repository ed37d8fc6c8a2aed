#!/usr/bin/python3
"""The entry in the desktop's menu: as the freedesktop.org format wants it, with a picture that is
installed, and a command that starts the program on a folder of the user's.

    desktop_entry_test.py BUILD-FOLDER SCRATCH-FOLDER
"""
import os
import shutil
import subprocess
import sys

from gi.repository import Gio, GLib

ICON_SIZES = (16, 20, 22, 24, 32, 48, 64)


def check(condition, text):
    if not condition:
        raise AssertionError(text)
    print("ok:", text, flush=True)


def install(build, prefix):
    """What is installed of the program's folder alone."""
    shutil.rmtree(prefix, ignore_errors=True)
    subprocess.run(["cmake", "--install", os.path.join(build, "app"), "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)


def started(entry, home, data_home):
    """The arguments that the entry's command gives to the program, which only notes them."""
    folder = os.path.join(home, "bin")
    os.makedirs(folder)
    stand_in = os.path.join(folder, "vlreminders")
    with open(stand_in, "w") as file:
        file.write('#!/bin/sh\nprintf "%s\\n" "$@"\n')
    os.chmod(stand_in, 0o755)
    _, command = GLib.shell_parse_argv(entry.get_commandline())
    environment = {"HOME": home, "PATH": f"{folder}:{os.environ['PATH']}"}
    if data_home:
        environment["XDG_DATA_HOME"] = data_home
    done = subprocess.run(command, env=environment, check=True, stdout=subprocess.PIPE, text=True)
    return done.stdout.splitlines()


def main():
    build, scratch = map(os.path.abspath, sys.argv[1:])
    prefix = os.path.join(scratch, "installed")
    install(build, prefix)
    path = os.path.join(prefix, "share", "applications", "vlreminders.desktop")
    done = subprocess.run(["desktop-file-validate", path], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True)
    check(done.returncode == 0 and not done.stdout, f"the entry is valid: {done.stdout!r}")

    # Gio gives no entry whose program cannot be started.
    os.environ["PATH"] = os.path.join(prefix, "bin") + ":" + os.environ["PATH"]
    entry = Gio.DesktopAppInfo.new_from_filename(path)
    check(entry is not None and entry.should_show(), "a desktop shows it")
    icon = entry.get_icon().get_names()[0]
    icons = os.path.join(prefix, "share", "icons", "hicolor")
    found = [os.path.isfile(os.path.join(icons, f"{size}x{size}", "apps", icon + ".png"))
             for size in ICON_SIZES]
    check(all(found), f"its picture {icon!r} is installed in {len(found)} sizes")
    check(os.path.isfile(os.path.join(icons, "scalable", "apps", icon + ".svg")), "and as a drawing")

    for name, data_home in (("home of Anna", None), ("another", os.path.join(scratch, "da ta"))):
        home = os.path.join(scratch, name)
        for folder in filter(None, (home, data_home)):
            shutil.rmtree(folder, ignore_errors=True)
            os.makedirs(folder)
        wanted = os.path.join(data_home or os.path.join(home, ".local", "share"), "Velmora",
                              "Reminders")
        arguments = started(entry, home, data_home)
        check(arguments == ["--db-folder", wanted], f"it starts the program with {arguments}")
        check(os.path.isdir(wanted), "and the folder is there")


if __name__ == "__main__":
    main()
