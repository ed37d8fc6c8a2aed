#!/usr/bin/env python3
"""Writes recurrence case lines from a list of starts and rules.

Usage: make_cases.py LIST ICAL_PEER > cases.jsonl

LIST has "START TAB RRULE [TAB TITLE]" lines. The instances come from python3-dateutil and from
libical (ical_peer), both used as they come; a line on which they do
not agree is reported and left out. The start is put in front where the rule does not match it.
"""
import json
import subprocess
import sys
from datetime import datetime, timedelta

from dateutil.rrule import rrulestr

MOST = 14
FAR = datetime(2098, 12, 31)


def iso(t):
    return t.strftime("%Y-%m-%dT%H:%M:%S")


def main():
    wanted, helper = sys.argv[1:3]
    number = 0
    for line in open(wanted, encoding="utf-8"):
        line = line.rstrip("\n")
        if not line or line.startswith("#"):
            continue
        start_text, rule, *title = line.split("\t")
        start = datetime.strptime(start_text, "%Y%m%dT%H%M%S")
        first = []
        for t in rrulestr(rule, dtstart=start):
            if t > FAR or len(first) > MOST:
                break
            first.append(t)
        instances = first[:MOST]
        if not instances or instances[0] != start:
            instances = [start] + instances[:MOST - 1]
        far = instances[-1] if len(first) > MOST else FAR
        request = json.dumps({"lines": ["RRULE:" + rule], "dtstart": iso(start), "to": iso(far)})
        answer = subprocess.run([helper], input=request, capture_output=True, text=True, timeout=20)
        second = json.loads(answer.stdout).get("wall", [])
        if [iso(t) for t in instances] != second:
            print(f"left out: {start_text} {rule}\n  {[iso(t) for t in instances][:5]}\n  {second[:5]}",
                  file=sys.stderr)
            continue
        number += 1
        ended = len(first) <= MOST
        expected = [iso(t) for t in instances]
        until = instances[-1] if not ended else FAR
        case = {
            "id": f"o{number:03d}",
            "title": title[0] if title else rule,
            "lines": ["RRULE:" + rule],
            "dtstart": iso(start),
            "allday": False,
            "tz": None,
            "local_tz": None,
            "from": iso(start - timedelta(seconds=1)),
            "to": iso(until),
            "max": MOST,
            "expected": expected,
            "next": [{"after": iso(start - timedelta(seconds=1)), "next": expected[0]}] + [
                {"after": a, "next": b} for a, b in list(zip(expected, expected[1:]))[-3:]],
        }
        if ended and ("COUNT=" in rule or "UNTIL=" in rule):
            case["last"] = expected[-1]
            case["next"].append({"after": expected[-1], "next": None})
        elif "COUNT=" not in rule and "UNTIL=" not in rule:
            case["last"] = None
        print(json.dumps(case))
    print(f"{number} cases", file=sys.stderr)


main()
