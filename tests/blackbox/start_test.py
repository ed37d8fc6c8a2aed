#!/usr/bin/python3
"""Starts without a screen: data folders, the template, a second copy. start_test.py VLREMINDERS"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

VLREMINDERS = os.path.abspath(sys.argv.pop(1))
DATABASE = "Velmora.RemindDB"
TRACE = "trace"  # the file that says what was passed over


class Start(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        os.makedirs(self.path("db"))

    def path(self, *parts):
        return os.path.join(self.root, *parts)

    def write(self, text, *parts):
        os.makedirs(os.path.dirname(self.path(*parts)), exist_ok=True)
        with open(self.path(*parts), "w") as file:
            file.write(text)

    def read(self, *parts):
        with open(self.path(*parts), errors="replace") as file:
            return file.read()

    def copy_of_the_program(self):
        """Beside which a test may put files."""
        os.makedirs(self.path("bin"), exist_ok=True)
        return shutil.copy2(VLREMINDERS, self.path("bin", "vlreminders"))

    def start(self, *arguments, program=VLREMINDERS):
        """Runs until the test is over."""
        environment = {"PATH": os.environ["PATH"], "HOME": self.root,
                       "XDG_DATA_HOME": self.path("share"), "XDG_RUNTIME_DIR": self.root,
                       "QT_QPA_PLATFORM": "offscreen", "VL_TRACE": self.path(TRACE)}
        if "LD_LIBRARY_PATH" in os.environ:
            environment["LD_LIBRARY_PATH"] = os.environ["LD_LIBRARY_PATH"]
        process = subprocess.Popen([program, *arguments], env=environment, cwd=self.root,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait, 10)
        self.addCleanup(process.kill)
        return process

    def wait_for(self, condition, what):
        end = time.monotonic() + 20
        while not condition():
            self.assertLess(time.monotonic(), end, f"waited in vain for {what}")
            time.sleep(0.02)

    def wait_copied(self, text, *parts):
        self.wait_for(lambda: os.path.exists(self.path(*parts)), os.path.join(*parts))
        self.assertEqual(self.read(*parts), text)

    def wait_read(self, lines=1):
        """Until the program has tried to read what is no database, so its window is loaded."""
        self.wait_for(lambda: os.path.exists(self.path(TRACE))
                      and self.read(TRACE).count("no Jet 4 database") >= lines, "the first read")

    def test_the_database_is_copied_from_the_template_in_the_data_folder(self):
        self.write("template", "share", "Velmora", DATABASE)
        process = self.start("--db-folder", self.path("db"))
        self.wait_copied("template", "db", DATABASE)
        self.wait_read()
        self.assertIsNone(process.poll())

    def test_a_first_start_makes_a_database_of_what_was_built_with_the_program(self):
        self.start("--db-folder", self.path("db"))
        self.wait_for(lambda: os.path.exists(self.path("db", DATABASE)), "the database")
        with open(self.path("db", DATABASE), "rb") as file:
            self.assertEqual(file.read(20)[4:19], b"Standard Jet DB")

    def test_a_database_that_is_there_stays(self):
        self.write("template", "share", "Velmora", DATABASE)
        self.write("in use", "db", DATABASE)
        self.start("--db-folder", self.path("db"))
        self.wait_read()
        self.assertEqual(self.read("db", DATABASE), "in use")

    def test_the_installed_template_goes_to_the_data_folder_and_on(self):
        program = self.copy_of_the_program()
        self.write("installed", "share", "vlreminders", DATABASE)
        self.start("--db-folder", self.path("db"), program=program)
        self.wait_copied("installed", "share", "Velmora", DATABASE)
        self.wait_copied("installed", "db", DATABASE)

    def test_the_portable_layout_keeps_its_data_beside_the_program(self):
        program = self.copy_of_the_program()
        self.write("", "bin", "any.exe.Manifest")
        self.write("portable", "bin", "AppData", DATABASE)
        self.write("not this one", "share", "Velmora", DATABASE)
        self.start("--db-folder", self.path("db"), program=program)
        self.wait_copied("portable", "db", DATABASE)

    def test_the_portable_layout_makes_no_folder(self):
        program = self.copy_of_the_program()
        self.write("", "bin", "any.exe.Manifest")
        self.write("x", "db", DATABASE)
        self.start("--db-folder", self.path("db"), program=program)
        self.wait_read()
        self.assertEqual(sorted(os.listdir(self.path("bin"))), ["any.exe.Manifest", "vlreminders"])
        self.assertFalse(os.path.exists(self.path("share", "Velmora")))

    def test_the_hosts_form_names_the_folder(self):
        self.write("template", "share", "Velmora", DATABASE)
        self.start("/anything=db=nothing/DB=share")
        self.wait_copied("template", "db", DATABASE)

    def test_a_second_start_runs_a_second_copy(self):
        self.write("x", "db", DATABASE)
        first = self.start("--db-folder", self.path("db"))
        self.wait_read()
        lines = self.read(TRACE).count("no Jet 4 database")
        second = self.start("--db-folder", self.path("db"))
        self.wait_read(lines + 1)
        self.assertIsNone(first.poll())
        self.assertIsNone(second.poll())

    def test_a_signal_ends_it_in_order_and_its_settings_are_saved(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                self.write("x", "db", DATABASE)
                if os.path.exists(self.path(TRACE)):
                    os.remove(self.path(TRACE))
                self.write("[Reminders]\nNotifType=T\nPopup=1\n", "share", "Velmora",
                           "VLReminders.ini")
                process = self.start("--db-folder", self.path("db"))
                self.wait_read()
                self.assertNotIn("DBVersion", self.read("share", "Velmora", "VLReminders.ini"))
                process.send_signal(number)
                self.assertEqual(process.wait(20), 0)
                saved = self.read("share", "Velmora", "VLReminders.ini")
                for line in ("NotifType=P", "Popup=0", "Period=T", "DBVersion=", "[Window]"):
                    self.assertEqual(saved.count(line), 1, saved)
                self.assertEqual(os.listdir(self.path("share", "Velmora")).count(
                    "VLReminders.ini"), 1)

    def test_it_starts_whatever_the_database_is(self):
        os.makedirs(self.path("folder", DATABASE))
        self.write("", "empty", DATABASE)
        for arguments in ((), ("",), ("/DB=",), ("--db-folder", self.path("nowhere")),
                          ("--db-folder", self.path("folder")), ("--db-folder", self.path("empty"))):
            with self.subTest(arguments=arguments):
                if os.path.exists(self.path(TRACE)):
                    os.remove(self.path(TRACE))
                process = self.start(*arguments)
                self.wait_for(lambda: os.path.exists(self.path(TRACE)) and self.read(TRACE),
                              "the first read")
                time.sleep(0.2)
                self.assertIsNone(process.poll())

    def test_it_starts_where_no_data_folder_can_be_made(self):
        self.write("in the way", "share")
        self.write("x", "db", DATABASE)
        process = self.start("--db-folder", self.path("db"))
        self.wait_read()
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    unittest.main()
