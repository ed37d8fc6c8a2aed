"""The sample's events around any time: every minute of a day, several zones, odd days.

    sample_plan_test.py SAMPLE-FILE        (read with mdb-json, which is not ours)
"""
import sys
import unittest
from datetime import date, datetime, time, timedelta, timezone
from zoneinfo import ZoneInfo

import sample  # first: it names the folder of the scripts
import sample_plan as sp

MINUTE = timedelta(minutes=1)
DAY = timedelta(days=1)


def local_in(zone):
    return lambda moment: moment.astimezone(zone).replace(tzinfo=None)


UTC = local_in(timezone.utc)


class Moved:
    """The events after a plan, by EventID."""

    def __init__(self, events, now, to_local):
        self.plan = sp.plan(events, now, to_local)
        self.events = {e["EventID"]: {**e, **self.plan.changes[e["GUID"]]} for e in events}
        self.now = to_local(now)

    def reminders(self, number):
        event = self.events[number]
        return [event["StartDateTime"] - m * MINUTE for m in sp.reminder_minutes(event)]


class PlanTest(unittest.TestCase):
    def test_the_sample_has_the_events_the_plan_speaks_of(self):
        self.assertEqual([e["EventID"] for e in EVENTS], list(range(1001, 1013)))
        by_number = {e["EventID"]: e for e in EVENTS}
        self.assertIn("FREQ=WEEKLY;BYDAY=MO,WE", by_number[sp.WEEKLY]["recurrence"])
        self.assertIn("FREQ=MONTHLY;BYDAY=4TH", by_number[sp.MONTHLY]["recurrence"])
        self.assertIn("FREQ=YEARLY", by_number[sp.BIRTHDAY]["recurrence"])
        for number in (sp.DUE, sp.EARLIER, sp.LATER):
            self.assertEqual(by_number[number]["StartDateTime"].date(), sp.SAMPLE_DAY)

    def check_day_events(self, moved):
        now, midnight = moved.now, datetime.combine(moved.now, time.min)
        # Due: nothing of it is past, the first in a minute.
        self.assertEqual(min(moved.reminders(sp.DUE)), now + sp.LEAD)
        self.assertEqual(moved.plan.due, ("Stand-up meeting", now + sp.LEAD))
        # Earlier: all of it past, one of it today.
        past = moved.reminders(sp.EARLIER)
        self.assertLessEqual(max(past), now)
        self.assertGreaterEqual(max(past), midnight)
        if now - midnight >= 75 * MINUTE:
            self.assertLess(moved.events[sp.EARLIER]["EndDateTime"], now)
        # Later: not before the one that is due, and today whenever that is possible.
        self.assertGreaterEqual(min(moved.reminders(sp.LATER)), now + 5 * MINUTE)
        if now.time() <= time(23, 10):
            self.assertEqual(moved.events[sp.LATER]["StartDateTime"].date(), now.date())

    def test_every_minute_of_a_day(self):
        for second in range(30, 86400, 60):
            now = datetime(2027, 3, 4, tzinfo=timezone.utc) + timedelta(seconds=second)
            with self.subTest(now=now):
                self.check_day_events(Moved(EVENTS, now, UTC))

    def test_the_first_and_the_last_second_of_a_day(self):
        for clock in ("00:00:00", "00:00:01", "00:59:59", "01:15:00", "23:58:59", "23:59:59"):
            with self.subTest(clock=clock):
                now = datetime.fromisoformat(f"2026-12-31 {clock}+00:00")
                self.check_day_events(Moved(EVENTS, now, UTC))

    def test_zones_far_from_each_other(self):
        for name in ("Pacific/Auckland", "America/Los_Angeles", "Asia/Kathmandu", "Europe/Berlin"):
            for hour in range(24):
                now = datetime(2027, 1, 19, hour, 7, 11, tzinfo=timezone.utc)
                with self.subTest(zone=name, now=now):
                    self.check_day_events(Moved(EVENTS, now, local_in(ZoneInfo(name))))

    def test_a_reminder_is_a_true_minute_ahead_when_the_clock_jumps(self):
        # 01:58 in Berlin, two minutes before the clock goes to 03:00.
        now = datetime(2027, 3, 28, 0, 58, tzinfo=timezone.utc)
        berlin = local_in(ZoneInfo("Europe/Berlin"))
        start = Moved(EVENTS, now, berlin).events[sp.DUE]["StartDateTime"]
        self.assertEqual(start, datetime(2027, 3, 28, 3, 4))

    def test_series_and_exception_stay_together_in_any_zone(self):
        for name in ("UTC", "Europe/Berlin", "Pacific/Auckland", "America/New_York"):
            zone = ZoneInfo(name)
            for days in range(-800, 800, 3):
                now = datetime(2026, 11, 20, 9, 30, tzinfo=timezone.utc) + days * DAY
                with self.subTest(zone=name, now=now):
                    self.check_series(Moved(EVENTS, now, local_in(zone)), zone)

    def check_series(self, moved, zone):
        def utc(local):
            return local.replace(tzinfo=zone).astimezone(timezone.utc).replace(tzinfo=None)
        ten = time(10, 0)
        series, exception = moved.events[sp.WEEKLY], moved.events[sp.EXCEPTION]
        start, replaced = utc(series["StartDateTime"]), utc(exception["RExceptionStartTimeOrig"])
        self.assertEqual((start.weekday(), start.time()), (0, ten))
        self.assertEqual((replaced.weekday(), replaced.time()), (0, ten))
        self.assertEqual((replaced - start).days, 77)
        self.assertEqual(exception["BeforeMoveStartDateTime"], exception["RExceptionStartTimeOrig"])
        ahead = exception["StartDateTime"].date() - moved.now.date()
        self.assertTrue(3 * DAY <= ahead <= 11 * DAY, ahead)
        snooze = utc(series["NextReminder"])
        self.assertEqual((snooze.weekday(), snooze.time()), (0, time(9, 45)))
        monthly = utc(moved.events[sp.MONTHLY]["StartDateTime"])
        self.assertEqual((monthly.weekday(), monthly.time()), (3, time(19, 0)))
        self.assertTrue(22 <= monthly.day <= 28, monthly)
        self.assertTrue(240 * DAY < utc(moved.now) - monthly < 350 * DAY, monthly)

    def test_birthdays_on_any_day_of_a_leap_year(self):
        for day in range(366):
            now = datetime(2028, 1, 1, 12, tzinfo=timezone.utc) + day * DAY
            with self.subTest(now=now):
                born = Moved(EVENTS, now, UTC).events[sp.BIRTHDAY]["StartDateTime"]
                comes = now.date() + 2 * DAY
                wanted = (2, 28) if comes == date(2028, 2, 29) else (comes.month, comes.day)
                self.assertEqual((born.month, born.day, born.year), (*wanted, comes.year - 6))
                self.assertEqual(born.time(), time.min)

    def test_lengths_and_history(self):
        old = {e["EventID"]: e for e in EVENTS}
        for now in (datetime(2025, 2, 3, 0, 0, 30, tzinfo=timezone.utc),
                    datetime(2031, 7, 5, 17, 45, tzinfo=timezone.utc)):
            moved = Moved(EVENTS, now, UTC)
            for number, event in moved.events.items():
                with self.subTest(now=now, number=number):
                    self.assertEqual(event["EndDateTime"] - event["StartDateTime"],
                                     old[number]["EndDateTime"] - old[number]["StartDateTime"])
                    self.assertEqual(str(event["DateID"]), f"{event['StartDateTime']:%Y%m%d}")
                    self.assertLessEqual(event["Created"], moved.now)
                    self.assertLessEqual(event["Modified"], moved.now)

    def test_unset_dates_are_left_alone(self):
        changes = sp.plan(EVENTS, datetime(2027, 3, 4, tzinfo=timezone.utc), UTC).changes
        for event in EVENTS:
            for column in changes[event["GUID"]]:
                self.assertIsNotNone(event[column])
                self.assertNotEqual(event[column], datetime(1899, 12, 30))

    def test_on_the_sample_s_own_day_the_rest_stays_where_it_is(self):
        moved = Moved(EVENTS, datetime(2026, 11, 20, 12, tzinfo=timezone.utc), UTC).events
        for event in EVENTS:
            if event["EventID"] not in (sp.DUE, sp.EARLIER, sp.LATER):
                self.assertEqual(moved[event["EventID"]], event)


if __name__ == "__main__":
    EVENTS = sample.read(sys.argv.pop())
    unittest.main()
