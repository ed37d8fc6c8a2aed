#!/usr/bin/env python3
"""Compares the recurrence engine with libical and with python3-dateutil over made-up series.

Usage: compare.py REMINDB ICAL_PEER SETTLED [COUNT [SEED]]

SETTLED is the document with the tables of decisions and of the peers' faults (docs/recurrence.md).
Both peers are asked what a rule is decided to mean (rules.py). Where one of them gives something
else than the engine, a fault of it that is in the table must fit, and the engine must give what the
other one gives, or what trying every moment gives (plain.py). Everything else is a failure, and so
is a list that does not match the table.
"""
import random
import re
import signal
import sys
from collections import Counter
from datetime import datetime

import faults
import peers
import rules
from cases import Series
from plain import Plain

CHUNK = 1000


def iso(times):
    return [t.isoformat() for t in times]


class Expansions:
    """What dateutil makes of each rule; asked for once."""

    def __init__(self):
        self.known = {}

    def __call__(self, rule, start, end):
        found = self.full(rule, start, end)
        return found[0] if found else None

    def full(self, rule, start, end):
        key = (rules.text(rule), start, end)
        if key not in self.known:
            self.known[key] = peers.by_dateutil(rule, start, end)
        return self.known[key]


class Answer:
    """One implementation's: the window, what comes next, and the last; "?" where not known."""

    def __init__(self, series, instances, ended):
        self.window = iso(series.in_window(instances))
        self.next = [t and t.isoformat() for t in series.after(instances)]
        self.last = "?"
        if any("COUNT" not in r and "UNTIL" not in r for r in series.rules):
            self.last = None  # endless, whatever it yields
        elif ended:
            self.last = instances[-1].isoformat() if instances else None

    def agrees(self, engine):
        return (self.window == engine["occurrences"] and
                all(t is None or t == e["next"] for t, e in zip(self.next, engine["next"])) and
                self.last in ("?", engine["last"]))


def of_rules(series, expand):
    """What the rules' instances make, or None where `expand` fails on one."""
    walls, ended = set(), True
    for rule in series.rules:
        found = expand(rule, series.start, series.end)
        if found is None:
            return None
        walls |= set(found[0])
        ended = ended and found[1]
    return Answer(series, series.of_walls(walls), ended)


def of_libical(series, found):
    """libical has taken out what is excluded and added what is added."""
    if "error" in found:
        return None
    walls = map(datetime.fromisoformat, found["wall"])
    return Answer(series, sorted({series.clock.to_local(t) for t in walls}), found["ended"])


class Tally:
    def __init__(self):
        self.counts = Counter()
        self.faults = Counter()
        self.decisions = Counter()
        self.compared = 0
        self.failures = 0
        self.instances = 0

    def fail(self, why, series, engine, answers):
        self.failures += 1
        if self.failures > 8:
            return
        print(f"{why}: {series.question()}\n  decided {[rules.text(r) for r in series.rules]}")
        for name, answer in [("engine", engine)] + [
                (n, a and {"occurrences": a.window, "next": a.next, "last": a.last})
                for n, a in answers.items()]:
            shown = answer and dict(answer, occurrences=answer["occurrences"][:6])
            print(f"  {name:9}{shown}")

    def judge(self, series, engine, answers):
        self.compared += 1
        self.decisions.update(series.used)
        self.instances += len(engine["occurrences"])
        same = {name for name, a in answers.items() if a and a.agrees(engine)}
        self.counts["both agree" if len(same) == 2 else
                    f"{same.pop()} alone agrees" if len(same) == 1 else "neither agrees"] += 1
        settled = True
        for name, answer in answers.items():
            if answer and answer.agrees(engine):
                continue
            if answer is None:
                self.counts["dateutil: refused, failed or too slow"] += name == "dateutil"
                continue
            fault = next((f for f in faults.of(name) if f.fits(series)), None)
            if fault is None:
                settled = False
                self.fail(f"{name} differs", series, engine, answers)
            else:
                self.faults[fault.name] += 1
        agreeing = any(a and a.agrees(engine) for a in answers.values())
        if settled and not agreeing:
            plain = of_rules(series, lambda r, start, end: Plain(r, start).expand(end))
            self.counts["judged by trying every moment"] += 1
            if not plain.agrees(engine):
                self.fail("trying every moment differs", series, engine, {"plain": plain})

    def report(self):
        print(f"{self.compared} series compared, {self.instances} instances, {self.failures} failures")
        for title, counter in (("", self.counts), ("decision ", self.decisions),
                               ("fault ", self.faults)):
            for name, times in counter.most_common():
                print(f"  {times:7} {title}{name}")


def named_in(document):
    """The names in the first column of the document's tables."""
    with open(document, encoding="utf-8") as file:
        return set(re.findall(r"^\| `([a-z0-9-]+)` \|", file.read(), re.M))


def compare(rng, numbers, programs, tally):
    remindb, peer = programs
    expand = Expansions()
    made = [Series(rng, n, expand) for n in numbers]
    ours = peers.ask([remindb, "occurrences"], [s.question() for s in made])
    ical = peers.ask([peer], [s.ical_question() for s in made])
    for series, engine, found in zip(made, ours, ical, strict=True):
        if engine.get("id") != series.number or "error" in engine:
            raise RuntimeError(f"{series.question()}: {engine}")
        tally.judge(series, engine, {
            "dateutil": of_rules(series, expand.full),
            "libical": of_libical(series, found)})
        if "error" in found:
            tally.counts["libical: " + found["error"]] += 1


def main():
    remindb, peer, document = sys.argv[1:4]
    count = int(sys.argv[4]) if len(sys.argv) > 4 else 3000
    seed = int(sys.argv[5]) if len(sys.argv) > 5 else random.randrange(2**32)
    print(f"seed {seed}")
    rng = random.Random(seed)
    tally = Tally()
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        for n in range(0, count, CHUNK):
            compare(rng, range(n, min(n + CHUNK, count)), (remindb, peer), tally)
    except KeyboardInterrupt:
        print("interrupted")
    tally.report()
    unknown = (rules.DECISIONS | set(tally.decisions) |
               {f.name for f in faults.ALL}) ^ named_in(document)
    if unknown:
        print(f"in the lists or in {document}, not in both: {sorted(unknown)}")
    return 1 if tally.failures or unknown or tally.compared < count else 0


if __name__ == "__main__":
    sys.exit(main())
