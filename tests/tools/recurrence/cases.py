"""Made-up series: rules, a start, a zone, dates added and taken out, a window."""
from datetime import date, datetime, time, timedelta, timezone
from zoneinfo import ZoneInfo

import rules

ZONES = ["Europe/Berlin", "America/New_York", "Australia/Lord_Howe", "Asia/Kolkata",
         "America/Sao_Paulo", "Pacific/Auckland", "Europe/London", "America/St_Johns"]
# Days that are worth expanding.
SPAN = {"YEARLY": 366 * 8, "MONTHLY": 31 * 24, "WEEKLY": 7 * 40, "DAILY": 90, "HOURLY": 8,
        "MINUTELY": 0.25, "SECONDLY": 0.01}
LAST = datetime(9999, 12, 20)


def stamp(t):
    return t.strftime("%Y%m%dT%H%M%S").rjust(15, "0")


class Clock:
    """From the wall clock of a series to UTC and to local time. A time that clocks skip is moved by
    the gap, of one that comes twice the first is meant (RFC 5545, 3.3.5)."""

    def __init__(self, zone, local):
        self.zone, self.local = (ZoneInfo(name) if name else None for name in (zone, local))
        self.known = {}

    def to_utc(self, wall, zone=None):
        zone = ZoneInfo(zone) if zone else self.zone
        if zone is None:
            return wall
        return wall.replace(tzinfo=zone).astimezone(timezone.utc).replace(tzinfo=None)

    def from_utc(self, utc, zone=None):
        zone = zone or self.zone
        if zone is None:
            return utc
        return utc.replace(tzinfo=timezone.utc).astimezone(zone).replace(tzinfo=None)

    def to_local(self, wall):
        return self.from_utc(self.to_utc(wall), self.local) if self.zone else wall

    def is_skipped(self, wall):
        return self.zone is not None and self.from_utc(self.to_utc(wall)) != wall


def make_start(rng, zoned):
    if zoned:
        year = rng.randint(1990, 2036)
    else:
        low, high = rng.choices([(1990, 2040), (1900, 1989), (2041, 2400), (2401, 9980)],
                                [70, 15, 10, 5])[0]
        year = rng.randint(low, high)
    day = date(year, 1, 1) + timedelta(days=rng.randrange(365))
    if rng.random() < 0.15:
        month, n = rng.choice([(1, 1), (1, 31), (2, 28), (2, 29), (3, 31), (12, 29), (12, 31)])
        leap = max(year - year % 4, 1904)
        leap += 4 if leap % 100 == 0 and leap % 400 else 0
        day = date(leap if n == 29 and month == 2 else year, month, n)
    at = time(rng.randrange(24), rng.randrange(60), rng.choice([0, 0, 0, rng.randrange(60)]))
    if zoned and rng.random() < 0.3:
        at = time(rng.choice([1, 2, 2, 3]), rng.choice([0, 15, 30]))  # where clocks change
    return datetime.combine(day, at)


class Series:
    """What is asked of the engine (`question`), and what it is decided to mean."""

    def __init__(self, rng, number, expand):
        """`expand(rule, start, end)` gives instances to choose from."""
        self.all_day = rng.random() < 0.15
        zoned = not self.all_day and rng.random() < 0.35
        self.zone = rng.choice(ZONES) if zoned else None
        self.local = rng.choice(ZONES) if zoned and rng.random() < 0.5 else self.zone
        self.clock = Clock(self.zone, self.local)
        self.start = make_start(rng, zoned)
        if self.all_day:
            self.start = datetime.combine(self.start.date(), time())
        if self.clock.is_skipped(self.start):
            self.start += timedelta(hours=5)
        self.used = set()
        count = rng.choices([1, 2, 0], [92, 5, 3])[0]
        made = [rules.make(rng, self.all_day) for _ in range(count)]
        self.end = self.horizon(rng, made, zoned)
        self.lines, self.rules = [], []
        for rule in made:
            self.add_rule(rng, rule)
        self.excluded, self.excluded_days, self.added = set(), set(), set()
        self.ical_dates = []
        known = [self.start]
        for rule in self.rules:
            known += expand(rule, self.start, self.end) or []
        for kind, chance in (("EXDATE", 0.3), ("RDATE", 0.2 if made else 1)):
            if rng.random() < chance:
                for _ in range(rng.randint(1, 3)):
                    self.add_date(rng, kind, known)
        rng.shuffle(self.lines)
        self.number = number
        self.choose_window(rng, known)

    def horizon(self, rng, made, zoned):
        days = min([SPAN[r["FREQ"]] * min(r.get("INTERVAL", 1), 12) for r in made], default=300)
        if rng.random() < 0.1 and not zoned:
            days *= 6
        length = min(timedelta(days=days), LAST - self.start)
        return (self.start + length).replace(microsecond=0)

    def add_rule(self, rng, rule):
        rule = dict(rule)
        clean = rules.decided(rule, self.start, self.all_day, self.used)
        if rng.random() < 0.25 and ("COUNT" not in rule or rng.random() < 0.1):
            wall = self.start + (self.end - self.start) * rng.random()
            wall = wall.replace(microsecond=0)
            if rng.random() < 0.03:
                wall = self.start - timedelta(days=rng.randint(1, 40))
            rule["UNTIL"], decided = self.until(rng, wall)
            if clean:
                clean["UNTIL"] = decided
        self.lines.append("RRULE:" + (rules.noisy(rng, rule) if rng.random() < 0.3
                                      else rules.text(rule)))
        if clean:
            self.rules.append(clean)

    def until(self, rng, wall):
        """A text, and the moment on the wall clock that it means."""
        kind = rng.choice(["wall", "date", "utc"])
        if kind == "date":
            self.used.add("until-date")
            day = datetime.combine(wall.date(), time())
            return f"{wall:%Y%m%d}", day if self.all_day else day + timedelta(seconds=86399)
        if self.all_day:
            self.used.add("all-day-date")
            day = datetime.combine(wall.date(), time())
            return (stamp(day) + "Z" if kind == "utc" else stamp(wall.replace(hour=13))), day
        if kind == "wall":
            return stamp(wall), wall
        utc = self.clock.to_utc(wall)
        return stamp(utc) + "Z", self.clock.from_utc(utc)

    def add_date(self, rng, name, known):
        wall = rng.choice(known)
        if name == "RDATE" or rng.random() < 0.2:
            wall += timedelta(seconds=rng.randrange(-5 * 86400, 90 * 86400))
            wall = min(max(wall.replace(microsecond=0), self.start - timedelta(days=5)), self.end)
            wall = datetime.combine(wall.date(), time()) if self.all_day else wall
        kind = rng.choice(["wall", "wall", "date", "utc", "other", "period"])
        if self.all_day:
            kind = rng.choice(["date", "date", "utc"])
        if kind == "period" and name == "EXDATE" or self.zone is None and kind == "other":
            kind = "wall"
        own = f";TZID={self.zone}" if self.zone and rng.random() < 0.7 else ""
        plain = own if own or not self.zone else f";TZID={self.zone}"
        if kind == "date":
            day = datetime.combine(wall.date(), time())
            self.lines.append(f"{name};VALUE=DATE:{day:%Y%m%d}")
            if name == "EXDATE":
                self.excluded_days.add(day.date())
                self.ical_dates.append(f"EXDATE;VALUE=DATE:{day:%Y%m%d}")
            else:
                self.used.add("rdate-date")
                self.add(datetime.combine(day, self.start.time()), plain)
        elif kind == "utc" and self.all_day:
            self.used.add("all-day-date")
            self.lines.append(f"{name}:{stamp(wall)}Z")
            self.ical_dates.append(f"{name};VALUE=DATE:{wall:%Y%m%d}")
            (self.excluded_days if name == "EXDATE" else self.added).add(
                wall.date() if name == "EXDATE" else wall)
        elif kind in ("utc", "other"):
            utc = self.clock.to_utc(wall)
            other = rng.choice(ZONES)
            there = self.clock.from_utc(utc, ZoneInfo(other))
            value = f":{stamp(utc)}Z"
            if kind == "other" and self.clock.to_utc(there, other) == utc:
                value = f";TZID={other}:{stamp(there)}"
            self.lines.append(name + value)
            self.ical_dates.append(name + value)
            self.note(name, self.clock.from_utc(utc))
        else:
            self.lines.append(f"{name}{own}" + (
                f";VALUE=PERIOD:{stamp(wall)}/PT1H" if kind == "period" else f":{stamp(wall)}"))
            if name == "EXDATE":
                self.ical_dates.append(f"EXDATE{plain}:{stamp(wall)}")
                self.note(name, wall)
            else:
                self.add(wall, plain)

    def add(self, wall, plain):
        self.added.add(wall)
        value = ";VALUE=DATE:" + f"{wall:%Y%m%d}" if self.all_day else f"{plain}:{stamp(wall)}"
        self.ical_dates.append("RDATE" + value)

    def note(self, name, wall):
        if name == "EXDATE":
            self.excluded.add(self.clock.to_utc(wall))
        else:
            self.added.add(wall)

    def choose_window(self, rng, known):
        day = timedelta(days=1)
        first, last = self.start - 7 * day, self.end
        if rng.random() < 0.4:
            first, last = sorted(self.start + (self.end - self.start) * rng.random()
                                 for _ in range(2))
            if rng.random() < 0.3:
                last = min(first + day, last)
        if rng.random() < 0.1:
            first = self.clock.to_local(rng.choice(known))
        if rng.random() < 0.1:
            last = self.clock.to_local(rng.choice(known))
        # What is known ends on the wall clock.
        self.first = first.replace(microsecond=0)
        self.last = min(last.replace(microsecond=0), self.end - 3 * day if self.zone else self.end)
        self.most = rng.choice([0, 1, 2, 5]) if rng.random() < 0.15 else 100000
        self.asked = [self.start - day] + [rng.choice(known) for _ in range(2)]

    def of_walls(self, walls):
        """The instances in local time, all up to `end`, of all that the rules give."""
        found = set()
        for wall in set(walls) | self.added | {self.start}:
            if self.clock.to_utc(wall) not in self.excluded and \
                    wall.date() not in self.excluded_days:
                found.add(self.clock.to_local(wall))
        return sorted(found)

    def in_window(self, instances):
        return [t for t in instances if self.first <= t <= self.last][:self.most]

    def after(self, instances):
        """What comes next after each moment asked for, as far as it is known."""
        known = self.end - timedelta(days=3)
        answers = []
        for moment in self.asked:
            following = next((t for t in instances if t > moment), None)
            answers.append(following if following and following < known else None)
        return answers

    def question(self):
        case = {"id": self.number, "lines": self.lines, "dtstart": self.start.isoformat(),
                "allday": self.all_day, "from": self.first.isoformat(),
                "to": self.last.isoformat(), "max": self.most,
                "next": [{"after": t.isoformat()} for t in self.asked]}
        if self.zone:
            case |= {"tz": self.zone, "local_tz": self.local}
        return case

    def ical_question(self):
        """The same in decided form."""
        lines = ["RRULE:" + rules.text(self.ical_rule(r)) for r in self.rules] + self.ical_dates
        return {"lines": lines, "dtstart": self.start.isoformat(), "allday": self.all_day,
                "tz": self.zone, "to": self.end.isoformat()}

    def ical_rule(self, rule):
        if self.all_day and "UNTIL" in rule:
            return dict(rule, UNTIL=f"{rule['UNTIL']:%Y%m%d}")
        return rule
