#!/usr/bin/env python3
"""Compares the recurrence engine with python3-dateutil over made-up rules.

Usage: compare_dateutil.py REMINDB [COUNT [SEED]]

Rules on which the two differ on purpose are not made; `decision` names each such kind and why.
Fails when any of the others differs, and when too few were compared.
"""
import json
import random
import signal
import subprocess
import sys
from collections import Counter
from datetime import datetime, timedelta

from dateutil.rrule import rrulestr

FREQS = ["YEARLY", "MONTHLY", "WEEKLY", "DAILY", "HOURLY", "MINUTELY", "SECONDLY"]
DAYS = ["MO", "TU", "WE", "TH", "FR", "SA", "SU"]
SPAN = {"YEARLY": 366 * 12, "MONTHLY": 31 * 40, "WEEKLY": 7 * 60, "DAILY": 200, "HOURLY": 20,
        "MINUTELY": 2, "SECONDLY": 0.1}


def some(rng, most, low, high, negative=False):
    values = {rng.randint(low, high) for _ in range(rng.randint(1, most))}
    return [-v if negative and rng.random() < 0.3 else v for v in sorted(values)]


def make_rule(rng):
    """A rule as a dictionary of its parts."""
    freq = rng.choices(FREQS, [28, 28, 18, 14, 6, 4, 2])[0]
    rule = {"FREQ": freq}
    if rng.random() < 0.5:
        rule["INTERVAL"] = rng.randint(2, 5)
    if rng.random() < 0.3:
        rule["WKST"] = rng.choice(DAYS)
    if rng.random() < 0.3:
        rule["COUNT"] = rng.randint(1, 30)
    if rng.random() < 0.25:
        rule["BYMONTH"] = some(rng, 4, 1, 12)
    if rng.random() < 0.25:
        rule["BYMONTHDAY"] = some(rng, 3, 1, 31, True)
    if rng.random() < 0.1:
        rule["BYYEARDAY"] = some(rng, 4, 1, 366, True)
    if rng.random() < (0.15 if freq == "YEARLY" else 0.02):
        rule["BYWEEKNO"] = some(rng, 3, 1, 53, True)
    if rng.random() < 0.45:
        numbers = rng.random() < 0.5
        days = []
        for _ in range(rng.randint(1, 3)):
            most = 52 if freq == "YEARLY" and rng.random() < 0.5 else 5
            n = rng.choice([1, -1]) * rng.randint(1, most) if numbers else ""
            days.append(f"{n}{rng.choice(DAYS)}")
        rule["BYDAY"] = days
    if rng.random() < 0.15:
        rule["BYSETPOS"] = some(rng, 2, 1, 4, True)
    if rng.random() < 0.15:
        rule["BYHOUR"] = some(rng, 3, 0, 23)
    if rng.random() < 0.12:
        rule["BYMINUTE"] = some(rng, 3, 0, 59)
    if rng.random() < 0.08:
        rule["BYSECOND"] = some(rng, 2, 0, 59)
    return rule


def decision(rule):
    """Why the engine means to differ on this rule, or None."""
    freq = rule["FREQ"]
    days = {"BYMONTHDAY", "BYYEARDAY", "BYDAY"}
    present = set(rule)
    numbered = any(not d[0].isalpha() for d in rule.get("BYDAY", []))
    if freq != "YEARLY" and "BYWEEKNO" in rule:
        return "BYWEEKNO without YEARLY is dropped, dateutil limits by it"
    if freq in ("MONTHLY", "WEEKLY", "DAILY") and "BYYEARDAY" in rule:
        return "BYYEARDAY with MONTHLY to DAILY is dropped, dateutil limits by it"
    if "BYWEEKNO" in rule and not days & present:
        return "BYWEEKNO without a day takes the start's weekday, dateutil all seven"
    if "BYWEEKNO" in rule and numbered:
        return "a number in BYDAY beside BYWEEKNO is dropped, dateutil limits by it"
    if {52, 53, -52, -53} & set(rule.get("BYWEEKNO", ())):
        # Of week 52 of 2010 it has Monday 27 December, and 1 January 2011 as Saturday of week 53.
        return "dateutil numbers a last week wrongly where it runs into January"
    if "BYWEEKNO" in rule and ("INTERVAL" in rule or "BYSETPOS" in rule):
        return "with BYWEEKNO the period is the year of weeks, for dateutil the calendar year"
    if freq == "YEARLY" and "BYMONTHDAY" in rule and not (
            present & {"BYMONTH", "BYWEEKNO", "BYYEARDAY", "BYDAY", "BYSETPOS"}):
        return "YEARLY with BYMONTHDAY alone means the start's month, for dateutil every month"
    if freq == "WEEKLY" and "BYMONTHDAY" in rule and "BYDAY" not in rule:
        return "WEEKLY without BYDAY is on the start's weekday, also beside BYMONTHDAY"
    if freq == "WEEKLY" and "BYSETPOS" in rule:
        return "BYSETPOS counts over all of the first week, dateutil from the start on"
    return None


def text(rule):
    def value(v):
        return ",".join(map(str, v)) if isinstance(v, list) else str(v)
    return ";".join(f"{name}={value(v)}" for name, v in rule.items())


class TooSlow(Exception):
    pass


def on_alarm(_signal, _frame):
    raise TooSlow


def by_dateutil(rule, start, end):
    """Instances up to `end`, or None when dateutil refuses the rule or does not end."""
    try:
        # Processor time, so that a busy machine changes nothing. It may run out at any moment up
        # to its being stopped, so that is inside the outer try.
        signal.setitimer(signal.ITIMER_VIRTUAL, 0.5)
        try:
            found = []
            for t in rrulestr(rule, dtstart=start):
                if t > end:
                    break
                found.append(t)
            return found
        finally:
            signal.setitimer(signal.ITIMER_VIRTUAL, 0)
    except (ValueError, IndexError, TooSlow):
        return None


def main():
    remindb = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 3000
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else random.randrange(2**32)
    print(f"seed {seed}")
    rng = random.Random(seed)
    signal.signal(signal.SIGVTALRM, on_alarm)
    cases, left_out = [], Counter()
    while len(cases) < count:
        rule = make_rule(rng)
        reason = decision(rule)
        if reason:
            left_out[reason] += 1
            continue
        start = datetime(1990, 1, 1) + timedelta(seconds=rng.randrange(40 * 365 * 86400))
        end = start + timedelta(days=SPAN[rule["FREQ"]] * rule.get("INTERVAL", 1))
        instances = by_dateutil(text(rule), start, end)
        if instances is None:
            left_out["dateutil refuses the rule, fails on it or takes too long"] += 1
            continue
        if not instances or instances[0] != start:
            instances.insert(0, start)  # the start is always an instance
        case = {"id": str(len(cases)), "lines": ["RRULE:" + text(rule)],
                "dtstart": start.isoformat(), "from": start.isoformat(), "to": end.isoformat(),
                "max": 100000}
        cases.append((case, [t.isoformat() for t in instances]))
    answer = subprocess.run([remindb, "occurrences"], input="\n".join(json.dumps(c) for c, _ in cases) + "\n",
                            capture_output=True, text=True, check=True)
    answers = [json.loads(line) for line in answer.stdout.splitlines()]
    wrong = 0
    for (case, expected), found in zip(cases, answers, strict=True):
        if found["occurrences"] != expected:
            wrong += 1
            if wrong <= 5:
                print(f"{case['dtstart']} {case['lines'][0]}\n  dateutil {expected[:6]}\n"
                      f"  engine   {found['occurrences'][:6]}")
    print(f"{len(cases)} rules compared, {sum(len(e) for _, e in cases)} instances, {wrong} differ")
    for reason, times in left_out.most_common():
        print(f"  left out {times}: {reason}")
    return 1 if wrong or len(answers) != count else 0


sys.exit(main())
