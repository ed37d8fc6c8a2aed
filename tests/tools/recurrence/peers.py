"""The other implementations, as they come: python3-dateutil and libical."""
import json
import signal
import subprocess

from dateutil.rrule import rrulestr

import rules


class TooSlow(Exception):
    pass


def on_alarm(_signal, _frame):
    raise TooSlow


def by_dateutil(rule, start, end):
    """The rule's instances up to `end` and whether it has ended with them; None when dateutil
    refuses the rule, fails on it or takes too long."""
    try:
        # Processor time, so that a busy machine changes nothing. It may run out at any moment up
        # to its being stopped, so that is inside the outer try.
        signal.setitimer(signal.ITIMER_VIRTUAL, 0.01)
        try:
            found = []
            for t in rrulestr(rules.text(rule), dtstart=start):
                if t > end:
                    return found, False
                found.append(t)
            return found, True
        finally:
            signal.setitimer(signal.ITIMER_VIRTUAL, 0)
    except (ValueError, IndexError, OverflowError, TooSlow):
        return None


def ask(command, questions):
    """The answers of a program that reads and writes JSON lines. Where it ends early, that line is
    its last answer, and it is started again behind it."""
    answers = []
    while len(answers) < len(questions):
        lines = "".join(json.dumps(q) + "\n" for q in questions[len(answers):])
        run = subprocess.run(command, input=lines, capture_output=True, text=True, check=False)
        new = [json.loads(line) for line in run.stdout.splitlines()]
        answers += new
        if not new or (run.returncode == 0 and len(answers) < len(questions)):
            raise RuntimeError(f"{command[0]} has no answer (status {run.returncode}): "
                               f"{run.stderr[:300]}")
    return answers


signal.signal(signal.SIGVTALRM, on_alarm)
