"""Known faults of the peers: on which series each shows. Their reasons are in docs/recurrence.md."""
from collections import namedtuple

from rules import DAYS, SUB_DAILY

Fault = namedtuple("Fault", "name peer fits")


def any_rule(predicate):
    return lambda series: any(predicate(rule, series) for rule in series.rules)


def times(rule):
    """How many times of day, or in an hour or minute, the rule may name."""
    n = 1
    for name in ("BYHOUR", "BYMINUTE", "BYSECOND"):
        n *= len(set(rule.get(name, [0])))
    return n


def weekno_in_dateutil(rule, _):
    return bool("BYWEEKNO" in rule and ({52, 53, -1, -52, -53, 1} & set(rule["BYWEEKNO"])
                                        or {"INTERVAL", "BYSETPOS"} & set(rule)))


def both_signs(values):
    return any(v > 0 for v in values) and any(v < 0 for v in values)


def setpos_in_libical(rule, _):
    return "BYSETPOS" in rule and (
        rule["FREQ"] not in ("MONTHLY", "YEARLY") or times(rule) > 1 or
        any(both_signs(rule.get(name, ())) for name in ("BYMONTHDAY", "BYYEARDAY", "BYWEEKNO")) or
        any(not d[0].isalpha() for d in rule.get("BYDAY", ())))


def negative_limit(rule, _):
    return (rule["FREQ"] in ("DAILY", "WEEKLY", *SUB_DAILY) and
            any(v < 0 for name in ("BYMONTHDAY", "BYYEARDAY") for v in rule.get(name, ())))


def week_of_start(rule, series):
    return (rule["FREQ"] == "WEEKLY" and rule.get("INTERVAL", 1) > 1 and
            (DAYS[series.start.weekday()] not in rule["BYDAY"] or rule.get("WKST", "MO") != "MO"))


def clocks_change(rule, series):
    hours = set(rule.get("BYHOUR", [])) | {series.start.hour}
    return bool(series.zone and hours & {0, 1, 2, 3})


def converted(series):
    dates = [line for line in series.lines if line.startswith(("EXDATE", "RDATE"))]
    elsewhere = any(";TZID=" in d and f";TZID={series.zone}" not in d for d in dates)
    return elsewhere or (series.zone and series.start.year <= 2014 <= series.end.year and
                         any(d.endswith("Z") for d in dates))


ALL = [
    Fault("dateutil-weekno", "dateutil", any_rule(weekno_in_dateutil)),
    Fault("dateutil-first-week", "dateutil", any_rule(
        lambda rule, _: rule["FREQ"] == "WEEKLY" and "BYSETPOS" in rule)),
    Fault("libical-setpos", "libical", any_rule(setpos_in_libical)),
    Fault("libical-yearly-monthday", "libical", any_rule(
        lambda rule, _: rule["FREQ"] == "YEARLY" and "BYMONTHDAY" in rule and
        "BYMONTH" not in rule)),
    Fault("libical-weekno", "libical", any_rule(lambda rule, _: "BYWEEKNO" in rule)),
    Fault("libical-negative-limit", "libical", any_rule(negative_limit)),
    Fault("libical-raster", "libical", any_rule(
        lambda rule, _: rule["FREQ"] in SUB_DAILY and
        {"BYHOUR", "BYMINUTE", "BYSECOND"} & set(rule))),
    Fault("libical-week-of-start", "libical", any_rule(week_of_start)),
    Fault("libical-gap", "libical", any_rule(clocks_change)),
    Fault("libical-elapsed-hours", "libical", any_rule(
        lambda rule, series: series.zone and rule["FREQ"] in SUB_DAILY)),
    Fault("libical-after-2037", "libical", lambda series: series.zone and series.end.year > 2037),
    Fault("libical-after-2582", "libical", lambda series: series.end.year > 2530),
    Fault("libical-conversion", "libical", converted),
    Fault("libical-excluded-day", "libical", lambda series: series.zone and series.excluded_days),
]


def of(peer):
    return [f for f in ALL if f.peer == peer]
