"""A plain reading of a decided rule: a day belongs to a period's set when it satisfies every day
part, and every moment is tried. Slow, and sharing nothing with the engine; asked where two
implementations differ."""
import bisect
from datetime import date, datetime, time, timedelta

from rules import DAYS, SUB_DAILY

UNIT = {"HOURLY": 3600, "MINUTELY": 60, "SECONDLY": 1}
FAR = datetime.max
DAY = timedelta(days=1)


def days_of_month(d):
    return 28 + (0x3BBEECC >> d.month * 2 & 3) if d.month != 2 else 28 + is_leap(d.year)


def is_leap(year):
    return year % 4 == 0 and (year % 100 != 0 or year % 400 == 0)


class Plain:
    def __init__(self, rule, start):
        self.rule, self.start, self.freq = rule, start, rule["FREQ"]
        self.first_weekday = DAYS.index(rule.get("WKST", "MO"))
        self.interval = rule.get("INTERVAL", 1)
        if self.freq in ("YEARLY", "MONTHLY") and not {
                "BYWEEKNO", "BYYEARDAY", "BYMONTHDAY", "BYDAY"} & set(rule):
            self.rule = dict(rule, BYMONTHDAY=[start.day])
            if self.freq == "YEARLY" and "BYMONTH" not in rule:
                self.rule["BYMONTH"] = [start.month]

    def week_begin(self, d):
        return d.toordinal() - (d.weekday() - self.first_weekday) % 7

    def first_week(self, year):
        """The ordinal of the first day of the week that holds the 4th of January."""
        fourth = date(min(year, 9999), 1, 4).toordinal() + (365 if year > 9999 else 0)
        return fourth - ((fourth + 6) % 7 - self.first_weekday) % 7

    def week_year(self, d):
        n = d.toordinal()
        if n < self.first_week(d.year):
            return d.year - 1
        return d.year + 1 if n >= self.first_week(d.year + 1) else d.year

    def in_list(self, name, value, length):
        values = self.rule.get(name)
        return values is None or value in values or value - length - 1 in values

    def weekday_allowed(self, d):
        days = self.rule.get("BYDAY")
        if days is None:
            return True
        in_month = self.freq == "MONTHLY" or "BYMONTH" in self.rule
        place = d.day if in_month else d.timetuple().tm_yday
        length = days_of_month(d) if in_month else 365 + is_leap(d.year)
        front, back = (place - 1) // 7 + 1, -((length - place) // 7 + 1)
        return any(day[-2:] == DAYS[d.weekday()] and
                   (len(day) == 2 or int(day[:-2]) in (front, back)) for day in days)

    def day_allowed(self, d):
        if "BYWEEKNO" in self.rule:
            year = self.week_year(d)
            weeks = (self.first_week(year + 1) - self.first_week(year)) // 7
            week = (d.toordinal() - self.first_week(year)) // 7 + 1
            if not self.in_list("BYWEEKNO", week, weeks):
                return False
        return (d.month in self.rule.get("BYMONTH", range(1, 13)) and
                self.in_list("BYMONTHDAY", d.day, days_of_month(d)) and
                self.in_list("BYYEARDAY", d.timetuple().tm_yday, 365 + is_leap(d.year)) and
                self.weekday_allowed(d))

    def period_of(self, d):
        if self.freq == "YEARLY":
            return self.week_year(d) if "BYWEEKNO" in self.rule else d.year
        if self.freq == "MONTHLY":
            return 12 * d.year + d.month
        return self.week_begin(d) // 7 if self.freq == "WEEKLY" else d.toordinal()

    def parts_of_time(self):
        start = self.start
        own = {"BYHOUR": start.hour, "BYMINUTE": start.minute, "BYSECOND": start.second}
        return [sorted(set(self.rule.get(name, [own[name]]))) for name in own]

    def chosen(self, moments):
        positions = self.rule.get("BYSETPOS")
        if positions is None:
            return moments
        n = len(moments)
        places = {p - 1 if p > 0 else n + p for p in positions}
        return [moments[i] for i in sorted(places) if 0 <= i < n]

    def days_of(self, number):
        """The days of a period, as ordinals."""
        if self.freq == "YEARLY":
            if "BYWEEKNO" in self.rule:
                return range(self.first_week(number), self.first_week(number + 1))
            first = date(number, 1, 1).toordinal()
            return range(first, first + 365 + is_leap(number))
        if self.freq == "MONTHLY":
            first = date((number - 1) // 12, (number - 1) % 12 + 1, 1)
            return range(first.toordinal(), first.toordinal() + days_of_month(first))
        if self.freq == "WEEKLY":
            begin = self.week_begin(self.start.date()) + 7 * (number - self.origin)
            return range(begin, begin + 7)
        return range(number, number + 1)

    def by_days(self, end):
        hours, minutes, seconds = self.parts_of_time()
        times = [time(h, m, s) for h in hours for m in minutes for s in seconds]
        self.origin = number = self.period_of(self.start.date())
        last = end.toordinal()
        while (days := self.days_of(number)).start <= last:
            allowed = [d for d in map(date.fromordinal, days) if self.day_allowed(d)]
            yield from self.chosen([datetime.combine(d, t) for d in allowed for t in times])
            number += self.interval

    def by_moments(self, end):
        unit = UNIT[self.freq]
        _, minutes, seconds = self.parts_of_time()
        step = unit * self.interval
        at = self.start.replace(second=0 if unit > 1 else self.start.second)
        at = at.replace(minute=0) if unit == 3600 else at
        allowed = {}
        while at <= end:
            d = at.date()
            if d not in allowed:
                allowed = {d: self.day_allowed(d)}
            if (allowed[d] and at.hour in self.rule.get("BYHOUR", range(24)) and
                    (unit == 3600 or at.minute in self.rule.get("BYMINUTE", range(60))) and
                    (unit > 1 or at.second in self.rule.get("BYSECOND", range(60)))):
                inner = [at]
                if unit == 3600:
                    inner = [at.replace(minute=m, second=s) for m in minutes for s in seconds]
                elif unit == 60:
                    inner = [at.replace(second=s) for s in seconds]
                yield from self.chosen(inner)
            at += timedelta(seconds=step)
            if not allowed[d]:  # nothing more today
                steps = (datetime.combine(d + DAY, time()) - at) // timedelta(seconds=step)
                at += max(steps, 0) * timedelta(seconds=step)

    def expand(self, end):
        """The instances up to `end`, and whether the rule has ended with them."""
        until = self.rule.get("UNTIL", FAR)
        found = []
        moments = self.by_moments(end) if self.freq in SUB_DAILY else self.by_days(end)
        for t in moments:
            if t < self.start:
                continue
            if t > until:
                return found, True
            if t > end:
                return found, False
            bisect.insort(found, t)
            if len(found) == self.rule.get("COUNT"):
                return found, True
        return found, until <= end
