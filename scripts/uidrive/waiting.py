"""Bounded waits, and running the desktop's small tools."""
import subprocess
import time

from gi.repository import GLib

TIMEOUT = 10  # seconds
STEP = 0.05  # seconds between two looks; reading a window costs the program time, too


class NotThere(AssertionError):
    """Something that should be on the screen is not, or does not go away."""


def pump():
    """Lets the accessibility events that have arrived be heard."""
    context = GLib.MainContext.default()
    for _ in range(200):
        if not context.iteration(False):
            break


def wait_for(condition, timeout=TIMEOUT, what=None, step=STEP):
    """Calls `condition` until it gives something true; that is the answer.

    `what` tells in the failure's text what did not come; a function is asked at that moment.
    """
    end = time.monotonic() + timeout
    while True:
        problem = None
        try:
            pump()
            answer = condition()
            if answer:
                return answer
        except (NotThere, GLib.Error, RuntimeError, AttributeError) as error:
            problem = error  # a widget may vanish while it is read
        if time.monotonic() > end:
            text = what() if callable(what) else what or condition.__name__
            raise NotThere(f"waited {timeout:g} s in vain for {text}"
                           + (f" ({problem})" if problem else ""))
        time.sleep(step)


def wait_gone(condition, timeout=TIMEOUT, what=None):
    """Calls `condition` until it gives nothing, or the thing is not there."""
    def absent():
        try:
            return not condition()
        except NotThere:
            return True
    wait_for(absent, timeout, f"the end of {what or condition.__name__}")


def run(*arguments, check=True):
    """The standard output of a small tool."""
    done = subprocess.run([str(a) for a in arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=20, text=True)
    if check and done.returncode:
        raise RuntimeError(f"{' '.join(map(str, arguments))}: {done.stderr.strip()}")
    return done.stdout
