"""The profile that `make run` starts with, made with the real remindb.

    make_profile_test.py FOLDER REMINDB
"""
import os
import sys
import unittest
from datetime import datetime, timedelta

import sample  # first: it names the folder of the scripts
import make_profile
import sample_plan


class ProfileTest(unittest.TestCase):
    def test_the_events_lie_around_now_and_nothing_else_changed(self):
        before = datetime.now().replace(microsecond=0)
        due = make_profile.make(FOLDER, REMINDB)
        after = datetime.now()
        self.assertTrue(before <= due.time - sample_plan.LEAD <= after, due)

        old = sample.read(make_profile.SAMPLE)
        new = sample.read(os.path.join(FOLDER, "db", make_profile.DATABASE))
        self.assertEqual(len(new), 12)
        moved = set(sample_plan.MOVED_COLUMNS) | {"DateID"}
        for was, event in zip(old, new):
            with self.subTest(event=event["EventID"]):
                self.assertEqual({c: v for c, v in event.items() if c not in moved},
                                 {c: v for c, v in was.items() if c not in moved})
        stand_up = next(e for e in new if e["EventID"] == sample_plan.DUE)
        self.assertEqual(stand_up["StartDateTime"], due.time + timedelta(minutes=5))
        self.assertEqual(stand_up["DateID"], int(f"{stand_up['StartDateTime']:%Y%m%d}"))

    def test_the_program_s_own_reader_and_another_agree(self):
        ours = make_profile.read_events(REMINDB, make_profile.SAMPLE)
        theirs = sample.read(make_profile.SAMPLE)
        self.assertEqual(len(ours), 12)
        for a, b in zip(ours, theirs):
            del a["Subject"]  # mdb-json cannot show what lies beyond U+FFFF
            self.assertEqual(a, {column: b[column] for column in a})

    def test_a_second_run_starts_from_the_sample_again(self):
        make_profile.make(FOLDER, REMINDB)
        litter = os.path.join(FOLDER, "data", "Velmora")
        os.makedirs(litter)
        make_profile.make(FOLDER, REMINDB)
        self.assertFalse(os.path.exists(litter))


if __name__ == "__main__":
    FOLDER, REMINDB = map(os.path.abspath, sys.argv[1:])
    del sys.argv[1:]
    unittest.main()
