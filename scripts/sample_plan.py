"""Where the sample's twelve events go so that they lie around a given time: a pure function.

The sample was written for 20 November 2026. Only its date columns (and DateID) can be moved in
place; the texts of the rules, the reminders' offsets and the JSON stay. So

  * one event of the day (DUE) starts so that its first reminder falls due `LEAD` after now;
  * one (EARLIER) had its last reminder earlier today, 75 minutes ago, or at midnight when that is
    nearer: then the event itself is still ahead or running, which no time of day can avoid;
  * one (LATER) starts today in about three hours, squeezed before midnight in the evening and
    tomorrow when even its reminder would not fit into today;
  * other single events keep their time of day and move by whole days;
  * the weekly series moves by whole weeks, since its rule names weekdays, with its exception and
    its snooze; rounded up, so that the moved meeting is always still ahead;
  * the monthly series starts on the fourth Thursday ten months ago, as its rule says;
  * the birthday comes two days after today.

A series runs on the wall clock of the zone that its JSON names, UTC, so series and exception are
moved there and brought to local time; everything else is on the local clock as it is.
"""
import calendar
import json
import math
from datetime import date, datetime, time, timedelta, timezone
from typing import NamedTuple

SAMPLE_DAY = date(2026, 11, 20)
LEAD = timedelta(seconds=60)

DUE, LATER, EARLIER = 1001, 1003, 1002  # EventID
WEEKLY, MONTHLY, BIRTHDAY, EXCEPTION = 1006, 1007, 1008, 1009

MOVED_COLUMNS = ("StartDateTime", "EndDateTime", "BeforeMoveStartDateTime",
                 "RExceptionStartTimeOrig", "RExceptionEndTimeOrig", "NextReminder", "Dismissed",
                 "Created", "Modified")
_PAST_COLUMNS = ("Dismissed", "Created", "Modified")  # never after now
_NO_DATE = datetime(1899, 12, 30)
_MINUTE = timedelta(minutes=1)


class Reminder(NamedTuple):
    """What the run waits for."""
    subject: str
    time: datetime  # local


class Plan(NamedTuple):
    changes: dict  # GUID -> {column: datetime, or int for DateID}
    due: Reminder


def reminder_minutes(event):
    """The offsets before the start, ascending."""
    return sorted(r["minutes"] for r in json.loads(event["reminders"]).get("overrides", []))


def fourth_thursday(year, month):
    first = date(year, month, 1)
    return first + timedelta(days=(calendar.THURSDAY - first.weekday()) % 7 + 21)


def _months_before(day, months):
    index = day.year * 12 + day.month - 1 - months
    return index // 12, index % 12 + 1


def _same_day_in(year, day):
    try:
        return day.replace(year=year)
    except ValueError:  # 29 February
        return date(year, 2, 28)


def _round_down(moment, minutes):
    return moment - timedelta(minutes=moment.minute % minutes, seconds=moment.second,
                              microseconds=moment.microsecond)


def _earlier_start(event, now):
    """`now` is local, as in the next function."""
    reminder = _round_down(now - 75 * _MINUTE, 5)
    return max(reminder, datetime.combine(now, time.min)) + reminder_minutes(event)[0] * _MINUTE


def _later_start(event, now):
    start = _round_down(now + 3 * 60 * _MINUTE, 15) + 15 * _MINUTE
    last_today = datetime.combine(now, time(23, 45))
    first_reminder = last_today - reminder_minutes(event)[-1] * _MINUTE
    if start > last_today and first_reminder >= now + 5 * _MINUTE:
        return last_today
    return start


def _shifts(event, now, to_local):
    """How the event's dates move: (those of the event itself, those of its history)."""
    local_now = to_local(now)
    by_days = timedelta(days=(local_now.date() - SAMPLE_DAY).days)
    start = event["StartDateTime"]
    number = event["EventID"]

    def ending_at(new_start):
        return lambda moment: moment + (new_start - start)

    def in_utc(shift):
        return lambda moment: to_local((moment + shift).replace(tzinfo=timezone.utc))

    def days(moment):
        return moment + by_days

    if number == DUE:
        return ending_at(to_local(now + LEAD + reminder_minutes(event)[-1] * _MINUTE)), days
    if number == EARLIER:
        return ending_at(_earlier_start(event, local_now)), days
    if number == LATER:
        return ending_at(_later_start(event, local_now)), days
    if number in (WEEKLY, EXCEPTION):
        return in_utc(timedelta(weeks=math.ceil(by_days.days / 7))), days
    if number == MONTHLY:
        day = fourth_thursday(*_months_before(local_now.date(), 10))
        return in_utc(datetime.combine(day, start.time()) - start), days
    if number == BIRTHDAY:
        comes = local_now.date() + timedelta(days=2)
        born = _same_day_in(comes.year - 6, comes)
        return ending_at(datetime.combine(born, time.min)), days
    return days, days


def plan(events, now, to_local):
    """`events`: the sample's rows, column to value, with `MOVED_COLUMNS`, EventID, GUID, Subject
    and reminders. `now`: an aware time. `to_local`: an aware time to the local wall clock's, naive.
    """
    changes, due = {}, None
    for event in events:
        own, history = _shifts(event, now, to_local)
        new = {}
        for column in MOVED_COLUMNS:
            old = event[column]
            if old is None or old == _NO_DATE:
                continue
            if column in _PAST_COLUMNS:
                new[column] = min(history(old), to_local(now))
            else:
                new[column] = own(old)
        new["DateID"] = int(new["StartDateTime"].strftime("%Y%m%d"))
        changes[event["GUID"]] = new
        if event["EventID"] == DUE:
            first = reminder_minutes(event)[-1] * _MINUTE
            due = Reminder(event["Subject"], new["StartDateTime"] - first)
    return Plan(changes, due)
