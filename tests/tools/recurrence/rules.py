"""Rules as dictionaries: made up, written down, and as the program is decided to mean them.

A rule has its parts by name: FREQ and WKST texts, INTERVAL and COUNT numbers, UNTIL a text, all
others lists (BYDAY of texts, the rest of numbers). In a decided rule UNTIL is a time on the wall clock.
"""
from datetime import datetime

FREQS = ["YEARLY", "MONTHLY", "WEEKLY", "DAILY", "HOURLY", "MINUTELY", "SECONDLY"]
SUB_DAILY = FREQS[4:]
DAYS = ["MO", "TU", "WE", "TH", "FR", "SA", "SU"]
# What `decided` and the series' dates rest on; the reasons are in docs/recurrence.md.
DECISIONS = {"all-day-hours", "all-day-times", "all-day-date", "weekno-only-yearly",
             "yearday-dropped", "number-dropped", "weekno-weekday", "birthday", "weekly-monthday",
             "setpos-alone", "until-date", "rdate-date"}
DAY_PARTS = ["BYMONTH", "BYWEEKNO", "BYYEARDAY", "BYMONTHDAY", "BYDAY"]
TIME_PARTS = ["BYHOUR", "BYMINUTE", "BYSECOND"]


def text(rule):
    def value(v):
        if isinstance(v, datetime):
            return v.strftime("%Y%m%dT%H%M%S")
        return ",".join(map(str, v)) if isinstance(v, list) else str(v)
    return ";".join(f"{name}={value(v)}" for name, v in rule.items())


def noisy(rng, rule):
    """The same rule as others may write it: parts and values in any order, doubled, with blanks and
    in small letters."""
    parts = []
    for name, v in rule.items():
        values = list(map(str, v)) if isinstance(v, list) else [str(v)]
        if isinstance(v, list):
            values += rng.choices(values, k=rng.randint(0, 1))
            rng.shuffle(values)
        blank = rng.choice(["", "", "", " "])
        parts.append(f"{name}={blank}" + f"{blank},".join(values) + blank)
    rng.shuffle(parts)
    line = rng.choice([";", ";", ";;", " ; "]).join(parts)
    return line.lower() if rng.random() < 0.3 else line


def some(rng, most, low, high, negative=False):
    values = {rng.randint(low, high) for _ in range(rng.randint(1, most))}
    return [-v if negative and rng.random() < 0.3 else v for v in sorted(values)]


def make_weekdays(rng, freq):
    numbers = rng.random() < 0.5
    days = []
    for _ in range(rng.randint(1, 3)):
        most = 53 if freq == "YEARLY" and rng.random() < 0.5 else 5
        n = rng.choice([1, -1]) * rng.randint(1, most) if numbers else ""
        days.append(f"{n}{rng.choice(DAYS)}")
    return sorted(set(days))


def make(rng, all_day=False):
    freq = rng.choices(FREQS, [28, 28, 18, 14, 6, 4, 2])[0]
    if all_day and freq in SUB_DAILY and rng.random() < 0.9:
        freq = "DAILY"
    rule = {"FREQ": freq}
    if rng.random() < 0.5:
        rule["INTERVAL"] = rng.randint(2, 5) if rng.random() < 0.8 else rng.randint(6, 50)
    if rng.random() < 0.3:
        rule["WKST"] = rng.choice(DAYS)
    if rng.random() < 0.3:
        rule["COUNT"] = rng.randint(1, 30) if rng.random() < 0.9 else rng.randint(31, 400)
    chances = [("BYMONTH", 0.25, (4, 1, 12)), ("BYMONTHDAY", 0.25, (3, 1, 31, True)),
               ("BYYEARDAY", 0.1, (4, 1, 366, True)),
               ("BYWEEKNO", 0.15 if freq == "YEARLY" else 0.02, (3, 1, 53, True)),
               ("BYSETPOS", 0.15, (2, 1, 4, True)), ("BYHOUR", 0.15, (3, 0, 23)),
               ("BYMINUTE", 0.12, (3, 0, 59)), ("BYSECOND", 0.08, (2, 0, 59))]
    for name, chance, limits in chances:
        if rng.random() < chance:
            rule[name] = some(rng, *limits)
    if rng.random() < 0.45:
        rule["BYDAY"] = make_weekdays(rng, freq)
    return rule


def decided(rule, start, all_day, used=None):
    """The rule in parts on whose meaning nobody differs, or None where it is rejected. Notes in
    `used` which decisions (docs/recurrence.md) that took."""
    used = set() if used is None else used
    out = {name: list(v) if isinstance(v, list) else v for name, v in rule.items()}
    freq = out["FREQ"]

    def drop(name, decision):
        if out.pop(name, None) is not None:
            used.add(decision)

    if all_day:
        if freq in SUB_DAILY:
            used.add("all-day-hours")
            return None
        for name in TIME_PARTS:
            drop(name, "all-day-times")
    if freq != "YEARLY":
        drop("BYWEEKNO", "weekno-only-yearly")
    if freq in ("MONTHLY", "WEEKLY", "DAILY"):
        drop("BYYEARDAY", "yearday-dropped")
    numbered = any(not d[0].isalpha() for d in out.get("BYDAY", []))
    if numbered and (freq not in ("MONTHLY", "YEARLY") or "BYWEEKNO" in out):
        out["BYDAY"] = sorted({d[-2:] for d in out["BYDAY"]})
        used.add("number-dropped")
    days = {"BYMONTHDAY", "BYYEARDAY", "BYDAY"} & set(out)
    if "BYWEEKNO" in out and not days:
        out["BYDAY"] = [DAYS[start.weekday()]]
        used.add("weekno-weekday")
    if freq == "YEARLY" and "BYMONTHDAY" in out and not (
            set(out) & {"BYMONTH", "BYWEEKNO", "BYYEARDAY", "BYDAY", "BYSETPOS"}):
        out["BYMONTH"] = [start.month]
        used.add("birthday")
    if freq == "WEEKLY" and "BYDAY" not in out:
        out["BYDAY"] = [DAYS[start.weekday()]]
        if "BYMONTHDAY" in out:
            used.add("weekly-monthday")
    if "BYSETPOS" in out and not set(out) & set(DAY_PARTS + TIME_PARTS):
        # Positions in what the start fills in.
        if freq == "YEARLY":
            out["BYMONTH"] = [start.month]
        if freq in ("YEARLY", "MONTHLY"):
            out["BYMONTHDAY"] = [start.day]
        elif freq == "DAILY":
            out["BYHOUR"] = [start.hour]
        elif freq == "HOURLY":
            out["BYMINUTE"] = [start.minute]
        else:
            out["BYSECOND"] = [start.second] if freq == "MINUTELY" else list(range(60))
        used.add("setpos-alone")
    return out
