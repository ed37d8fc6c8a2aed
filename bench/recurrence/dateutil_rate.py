#!/usr/bin/env python3
"""What python3-dateutil needs of processor time for the rules of the mix.

Usage: dateutil_rate.py RULES

Prints "NAME RATE FOUND" lines: Window/10, a day ten years after the start, rules a second; Expand, all
instances of the first ten years, instances a second; Parse, rules a second.
"""
import re
import sys
import time
from datetime import datetime, timedelta

from dateutil.rrule import rrulestr


def years_on(start, years):
    day = start.replace(hour=0, minute=0, second=0)
    return datetime(day.year + years, day.month, 1) + timedelta(days=day.day - 1)


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        lines = [line.rstrip("\n").split("\t") for line in file]
    starts = [datetime.strptime(start, "%Y%m%dT%H%M%S") for start, _ in lines]
    # It wants an end without a zone beside a start without one.
    texts = [re.sub(r"(UNTIL=\w+)Z", r"\1", rule) for _, rule in lines]
    begin = time.process_time()
    rules = [rrulestr(text, dtstart=start) for text, start in zip(texts, starts)]
    print("Parse", len(rules) / (time.process_time() - begin), len(rules))

    begin = time.process_time()
    found = 0
    for rule, start in zip(rules, starts):
        first = years_on(start, 10)
        found += bool(rule.between(first, first + timedelta(seconds=86399), inc=True))
    print("Window/10", len(rules) / (time.process_time() - begin), found)

    begin = time.process_time()
    found = 0
    for rule, start in zip(rules, starts):
        found += len(rule.between(start, years_on(start, 10), inc=True))
    print("Expand", found / (time.process_time() - begin), found)


main()
