// When events count as finished.
#include <gtest/gtest.h>

#include "base/ErrorState.h"
#include "events/ActRules.h"
#include "events/CalEvents.h"
#include "events/EventHistory.h"
#include "events/Ledger.h"
#include "events/LedgerHistory.h"
#include "support/EventFile.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::ManualClock;

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

/// Two days before it the noon of the 18th, a day before it the noon of the 19th.
const DateTime kNow = at(12, 0);

class AllDone : public testing::Test {
protected:
    calEvent& put(DateTime start, const std::string& minutes = "15",
                  const std::string& recurrence = "") {
        const auto e = std::make_shared<calEvent>();
        e->GUID = "{" + std::to_string(set.mCol ? set.mCol->Count() : 0) + "}";
        e->StartDateTime = start;
        e->reminders = R"({"overrides":[{"minutes":)" + minutes + "}]}";
        e->SetRemindersCol();
        if (!recurrence.empty()) {
            e->recurrence = recurrence;
            e->LoadRecurrence();
            e->RecurrenceState = 1;
        }
        set.Add(e, e->GUID);
        return *e;
    }

    ManualClock clock{kNow};
    DBRemindUtils db;
    CalEvents set{db, clock};
};

TEST_F(AllDone, ComesADayAfterTheLastReminder) {
    struct Case {
        const char* what;
        DateTime start;
        const char* minutes;
        const char* recurrence;
        bool done;
    };
    const Case cases[] = {
        {"23 hours ago", at(13, 15, 0, 19), "15", "", false},
        {"25 hours ago", at(11, 15, 0, 19), "15", "", true},
        {"a day ago to the second", at(12, 15, 0, 19), "15", "", false},
        {"and one second more", at(12, 14, 59, 19), "15", "", true},
        {"a reminder after the start", at(10, 0, 0, 19), "-180", "", false},
        {"long past, but reminded of later", at(10, 0, 0, 10), "-14400", "", false},
        {"no reminder is one at the start", at(11, 0, 0, 19), "", "", true},
        {"no start", DateTime(), "15", "", false},
        {"endless", at(9, 0, 0, 1), "15", R"(["RRULE:FREQ=DAILY"])", false},
        {"ended", at(9, 0, 0, 1), "15", R"(["RRULE:FREQ=DAILY;COUNT=3"])", true},
        {"not yet ended", at(9, 0, 0, 1), "15", R"(["RRULE:FREQ=DAILY;COUNT=19"])", true},
        {"ended today", at(9, 0, 0, 1), "15", R"(["RRULE:FREQ=DAILY;COUNT=20"])", false},
        {"a date added later", at(9, 0, 0, 1), "15", R"(["RDATE:20261125T090000"])", false},
        {"all added dates past", at(9, 0, 0, 1), "15", R"(["RDATE:20261105T090000"])", true},
        {"no rule to be used", at(9, 0, 0, 1), "15", R"(["RRULE:FREQ=NEVER"])", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        set.mCol.reset();
        const calEvent& e = put(c.start, c.minutes, c.recurrence);
        set.UpdateAllDone();
        EXPECT_EQ(e.status, c.done ? "AllDone" : "");
        set.RemoveAllDone();
        EXPECT_EQ(set.mCol->Count(), c.done ? 0U : 1U);
    }
}

TEST_F(AllDone, WaitsForASnooze) {
    calEvent& e = put(at(10, 0, 0, 1));
    e.Dismissed = at(9, 50, 0, 1);
    e.NextReminder = at(10, 0, 0, 28);
    set.UpdateAllDone();
    EXPECT_EQ(e.status, "");
    e.Dismissed = at(10, 5, 0, 28);
    set.UpdateAllDone();
    EXPECT_EQ(e.status, "AllDone");
}

TEST_F(AllDone, WaitsForTheStartThatAnExceptionReplaces) {
    calEvent& moved = put(at(10, 0, 0, 1));
    moved.RecurrenceState = 3;
    moved.RExceptionStartTimeOrig = at(10, 0, 0, 27);
    set.UpdateAllDone();
    EXPECT_EQ(moved.status, "");
    clock.time = at(10, 0, 0, 27);
    set.UpdateAllDone();
    EXPECT_EQ(moved.status, "AllDone");
}

TEST_F(AllDone, AsksTheHistoryWhatIsOpen) {
    class Open : public EventHistory {
    public:
        bool isOpen(const calEvent& event, DateTime lastReminder, DateTime) const override {
            asked += event.GUID + formatDateTime(lastReminder) + " ";
            return event.GUID == "{0}";
        }
        void keepReplaced(const std::vector<Replaced>&) override {}
        mutable std::string asked;
    } history;
    const calEvent& open = put(at(10, 0, 0, 1));
    calEvent& closed = put(at(10, 0, 0, 2));
    closed.NextReminder = at(10, 0, 0, 28);
    put(at(10, 0, 0, 28));
    set.UpdateAllDone(&history);
    EXPECT_EQ(open.status, "");
    EXPECT_EQ(closed.status, "AllDone") << "the history knows better than the row";
    EXPECT_EQ(history.asked, "{0}2026-11-01 09:45:00 {1}2026-11-02 09:45:00 ")
        << "of what is past only";
}

TEST_F(AllDone, IsWrittenHoweverManyThereAre) {
    const test::TempFolder folder;
    test::EventFile file((folder / "many.RemindDB").string());
    db.DBFullName = file.path();
    std::vector<std::shared_ptr<calEvent>> events;
    for (int i = 0; i < 1300; ++i) {
        put(at(10, 0, 0, i % 10 == 0 ? 25 : 1));
        events.push_back(objectAt<calEvent>(*set.mCol, set.mCol->Count()));
    }
    events[7]->GUID = "a \"quoted\" one";
    events[8]->GUID.clear();
    file.put(events);
    set.UpdateAllDone();
    const auto written = db.OpenRS("SELECT GUID FROM Reminders WHERE status=\"AllDone\"");
    std::size_t rows = 0;
    bool quoted = false;
    for (; !written->EOF_(); written->MoveNext(), ++rows) {
        quoted = quoted || written->value("GUID").toText() == events[7]->GUID;
    }
    EXPECT_EQ(rows, 1300U - 130U - 1U) << "all but those ahead, and the one without a GUID";
    EXPECT_TRUE(quoted);
    EXPECT_EQ(events[8]->status, "AllDone");
}

TEST_F(AllDone, LeavesTheSetWhateverItsCase) {
    put(at(10, 0)).status = "aLLdONE";
    put(at(10, 0)).status = "confirmed";
    put(at(10, 0)).status = "AllDone";
    set.RemoveAllDone();
    ASSERT_EQ(set.mCol->Count(), 1U);
    EXPECT_EQ(set.mCol->Key(1), "{1}");
}

TEST_F(AllDone, IsTakenFromAllRowsAndNothingElseIs) {
    const test::TempFolder folder;
    test::EventFile file((folder / "Velmora.RemindDB").string());
    db.DBFullName = file.path();
    const std::pair<const char*, const char*> rows[] = {
        {"A", "AllDone"}, {"B", "confirmed"}, {"C", ""}, {"D", "ALLDONE"}, {"E", "AllDone too"}};
    for (const auto& [GUID, status] : rows) {
        calEvent event;
        event.GUID = GUID;
        event.Subject = "AllDone";
        event.status = status;
        event.deleted = *GUID == 'D';
        file.put(event);
    }
    db.ReConnect();
    set.RemoveAllDoneStatus();
    EXPECT_FALSE(db.isOpen);
    const auto stored = db.OpenRS("SELECT * FROM Reminders ORDER BY GUID");
    std::string statuses;
    for (; !stored->EOF_(); stored->MoveNext()) {
        statuses += stored->value("GUID").toText() + "=" + stored->value("status").toText() + " ";
        EXPECT_EQ(stored->value("Subject"), Variant("AllDone"));
    }
    EXPECT_EQ(statuses, "A= B=confirmed C= D= E=AllDone too ");
}

TEST_F(AllDone, LeavesAnotherSetByItsGUID) {
    put(at(10, 0)).status = "AllDone";
    put(at(10, 0));
    CalEvents other(db, clock);
    for (const char* GUID : {"{0}", "{1}", "{2}"}) {
        const auto e = std::make_shared<calEvent>();
        e->GUID = GUID;
        other.Add(e, GUID);
    }
    other.RemoveAllDoneOf(set);
    EXPECT_EQ(other.mCol->Count(), 2U);
    EXPECT_FALSE(other.mCol->Exists("{0}"));
}

TEST_F(AllDone, KeepsPendingErrorAndWorksWithoutEvents) {
    ErrorState::set(ErrNo::Syntax);
    set.UpdateAllDone();
    set.RemoveAllDone();
    set.RemoveAllDoneOf(set);
    put(at(10, 0, 0, 1));
    set.UpdateAllDone();
    set.RemoveAllDone();
    set.RemoveAllDoneStatus();
    EXPECT_EQ(ErrorState::number(), ErrNo::Syntax);
    ErrorState::clear();
}

// It can still be snoozed where it stands.
TEST_F(AllDone, WaitsForWhatStandsInTheListWhereverTheHostHasMovedIt) {
    Ledger ledger(clock);
    bool listed = true;
    LedgerHistory history(ledger, db, [&](std::string_view) { return listed; });
    const calEvent& moved = put(at(9, 0, 0, 10));
    set.UpdateAllDone(&history);
    EXPECT_EQ(moved.status, "");
    listed = false;
    set.UpdateAllDone(&history);
    EXPECT_EQ(moved.status, "AllDone");
}

// Listed at another time, and moved while no program was there to see it: another copy may have
// that row in its list still, but not for ever.
TEST_F(AllDone, WaitsForWhatWasListedAtAnotherTimeAsLongAsTheLedgerKeepsIt) {
    Ledger ledger(clock);
    LedgerHistory history(ledger, db, [](std::string_view) { return false; });
    const calEvent& moved = put(at(9, 0, 0, 10));
    calEvent before(moved);
    before.StartDateTime = at(9, 0, 0, 12);
    before.EndDateTime = at(10, 0, 0, 12);
    ledger.change(db.DBFullName, moved.GUID, "listed", [&](EventState& state) {
        entryOf(state, before, before.StartDateTime).listed = at(8, 45, 0, 12);
    });
    clock.time = at(9, 59, 0, 12).addDays(90);
    set.UpdateAllDone(&history);
    EXPECT_EQ(moved.status, "");
    clock.time = at(10, 1, 0, 12).addDays(90);
    set.UpdateAllDone(&history);
    EXPECT_EQ(moved.status, "AllDone");
}

}  // namespace
}  // namespace vl
