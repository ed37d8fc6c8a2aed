"""The program that is driven: started, watched, ended."""
import os
import subprocess
import time

from . import desktop, tree
from .waiting import TIMEOUT, wait_for


class Program:
    """Runs a program while the block runs; its output goes to `log`.

    When the block fails, a picture of the screen and the tree of widgets are left in
    DESKTOP_LOGS.
    """

    def __init__(self, command, environment, log):
        self.command, self.environment, self.log = command, environment, log
        self.name = os.path.basename(command[0])

    def __enter__(self):
        with open(self.log, "w") as out:
            self.process = subprocess.Popen(self.command, stdout=out, stderr=subprocess.STDOUT,
                                            env={**os.environ, **self.environment},
                                            stdin=subprocess.DEVNULL)
        return self

    def ended(self):
        return self.process.poll() is not None

    def output(self):
        with open(self.log, errors="replace") as file:
            return file.read()

    def wait_end(self, timeout=TIMEOUT):
        """The exit status; negative is the signal that ended it."""
        wait_for(self.ended, timeout, f"{self.name} to end")
        return self.process.returncode

    def _report(self):
        base = os.path.join(os.environ["DESKTOP_LOGS"], f"failed-{self.name}-{time.time():.0f}")
        desktop.picture(base + ".png")
        with open(base + ".txt", "w") as file:
            file.write(tree.dump() + "\n\n" + self.output())

    def __exit__(self, failure, *_):
        try:
            if failure is not None:
                self._report()
        finally:
            if not self.ended():
                self.process.terminate()
                try:
                    self.process.wait(5)
                except subprocess.TimeoutExpired:
                    self.process.kill()
                    self.process.wait()
