#include "events/CalEvents.h"

#include <gtest/gtest.h>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/Ledger.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

using test::ManualClock;

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

std::shared_ptr<calEvent> event(const char* GUID, DateTime start, const std::string& minutes) {
    auto e = std::make_shared<calEvent>();
    e->GUID = GUID;
    e->id = std::string("id") + GUID;
    e->StartDateTime = start;
    e->EndDateTime = start.addMinutes(30);
    std::string overrides;
    for (const auto piece : text::split(minutes, ",")) {
        if (!piece.empty()) {
            overrides += (overrides.empty() ? "" : ",") +
                         (R"({"method":"popup","minutes":)" + std::string(piece) + "}");
        }
    }
    e->reminders = R"({"useDefault":false,"overrides":[)" + overrides + "]}";
    e->SetRemindersCol();
    return e;
}

std::shared_ptr<calEvent> series(const char* GUID, DateTime start, const char* rule,
                                 const std::string& minutes) {
    auto e = event(GUID, start, minutes);
    e->recurrence = std::string("[\"RRULE:") + rule + "\"]";
    e->LoadRecurrence();
    e->RecurrenceState = 1;
    return e;
}

class Queries : public testing::Test {
protected:
    std::string due(DateTime from, DateTime to) { return keys(*set.RemindCol(from, to)); }
    std::string held(DateTime from, DateTime to) { return keys(*set.EventCol(from, to)); }
    static std::string keys(const GenCollection& col) {
        std::string out;
        for (const Variant& item : col) {
            out += objectIn<calEvent>(item)->GUID;
        }
        return out;
    }
    std::shared_ptr<calEvent> put(std::shared_ptr<calEvent> e) {
        set.Add(e, e->GUID);
        return e;
    }

    ManualClock clock{at(14, 0)};
    DBRemindUtils db;
    CalEvents set{db, clock};
};

TEST_F(Queries, BothEndsOfTheWindowAreInside) {
    put(event("A", at(10, 0), "30"));
    EXPECT_EQ(due(at(9, 30), at(9, 40)), "A");
    EXPECT_EQ(due(at(9, 20), at(9, 30)), "A");
    EXPECT_EQ(due(at(9, 30, 1), at(9, 40)), "");
    EXPECT_EQ(due(at(9, 20), at(9, 29, 59)), "");
}

TEST_F(Queries, TheEarliestDueReminderIsRecordedOnce) {
    const auto e = put(event("A", at(10, 0), "15,120,30"));
    EXPECT_EQ(due(at(9, 0), at(9, 50)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0));
    EXPECT_EQ(e->iRemMinutes, 30);
    EXPECT_EQ(e->iRemMinutesNext, 15);
    EXPECT_EQ(due(at(9, 45), at(9, 45)), "A");
    EXPECT_EQ(e->iRemMinutes, 15);
    EXPECT_EQ(e->iRemMinutesNext, -100000) << "no later reminder";
    EXPECT_EQ(due(at(11, 0), at(12, 0)), "");
    EXPECT_EQ(e->iRemMinutes, -100000);
    EXPECT_TRUE(e->InstanceStart.isZero());
}

TEST_F(Queries, RemindersAfterTheStartAndOfAllDayEventsFallDueLikeAnyOther) {
    put(event("A", at(10, 0), "-20"));
    put(event("B", at(0, 0, 0, 21), "360"))->IsAllDayEvent = true;
    EXPECT_EQ(due(at(10, 20), at(10, 20)), "A");
    EXPECT_EQ(due(at(18, 0), at(18, 0)), "B");
    EXPECT_EQ(due(at(0, 0), at(23, 59)), "AB");
}

TEST_F(Queries, AnEventWithoutRemindersIsNeverDueUnlessItWasSnoozed) {
    const auto e = put(event("A", at(10, 0), ""));
    EXPECT_EQ(due(at(0, 0), at(23, 0)), "");
    e->NextReminder = at(11, 5);
    set.LookAgain("A");
    EXPECT_EQ(due(at(11, 0), at(11, 10)), "A");
    EXPECT_EQ(e->iRemMinutes, -65) << "65 minutes after the start";
    EXPECT_EQ(e->iRemMinutesNext, -100000);
    EXPECT_EQ(due(at(11, 5, 1), at(11, 10)), "");
}

TEST_F(Queries, ARepeatingEventIsAskedForItsInstancesInTheWidenedWindow) {
    const auto e = put(series("A", at(10, 0, 0, 2), "FREQ=WEEKLY;BYDAY=MO,WE", "15,1440"));
    // The instance of Monday the 23rd: reminders on Sunday at 10:00 and Monday at 9:45.
    EXPECT_EQ(due(at(9, 0, 0, 22), at(11, 0, 0, 22)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 23));
    EXPECT_EQ(e->iRemMinutes, 1440);
    EXPECT_EQ(e->iRemMinutesNext, 15);
    EXPECT_EQ(due(at(9, 45, 0, 23), at(9, 45, 0, 23)), "A");
    EXPECT_EQ(e->iRemMinutes, 15);
    EXPECT_EQ(due(at(9, 46, 0, 23), at(9, 59, 0, 23)), "");
}

TEST_F(Queries, AStoredNextReminderStandsForItsEventsReminder) {
    const auto e = put(series("A", at(10, 0, 0, 2), "FREQ=WEEKLY", "15"));
    e->NextReminder = at(12, 0, 30, 16);
    EXPECT_EQ(due(at(12, 0, 0, 16), at(12, 1, 0, 16)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 16)) << "the last instance that had rung by then";
    EXPECT_EQ(e->iRemMinutes, -120);
    EXPECT_EQ(e->dReminder, at(12, 0, 30, 16)) << "to the second";
    EXPECT_EQ(e->iRemMinutesNext, -100000);
    e->NextReminder = at(9, 45, 0, 23);
    set.LookAgain("A");
    EXPECT_EQ(due(at(9, 0, 0, 23), at(10, 0, 0, 23)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 23)) << "that is the scheduled one";
    EXPECT_EQ(e->iRemMinutes, 15);
}

// Mondays at 10:00, asked on a Friday from 9:00 to 9:50: instances up to 10:05 are looked for.
TEST_F(Queries, WithoutAnInstanceNearTheStoredNextReminderSpeaksForOne) {
    struct Case {
        const char* what;
        DateTime NextReminder;
        DateTime InstanceStart;  // as the last query left it
        DateTime instance;       // 0: it is not due
        int minutes;
    };
    const DateTime none;
    const Case cases[] = {
        {"for the instance that stands in the event", at(9, 55), at(10, 0), at(10, 0), 15},
        {"which may have another reminder in the window", at(9, 55), at(9, 30), at(9, 30), 15},
        {"or none", at(9, 55), at(11, 0), none, 0},
        {"else for itself", at(9, 55), none, at(9, 55), 15},
        {"up to the widened end", at(10, 5), none, at(10, 5), 15},
        {"and no further", at(10, 5, 1), none, none, 0},
        {"inside the window it is the reminder", at(9, 50), none, at(10, 0, 0, 16), -5750},
        {"from the start of the window on", at(9, 0), at(9, 5), at(10, 0, 0, 16), -5700},
        {"and not before", at(8, 59, 59), at(9, 15), none, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        set.mCol = std::make_shared<GenCollection>();
        const auto e = put(series("A", at(10, 0, 0, 2), "FREQ=WEEKLY", "15"));
        e->NextReminder = c.NextReminder;
        e->InstanceStart = c.InstanceStart;
        set.LookAgain("A");
        EXPECT_EQ(due(at(9, 0), at(9, 50)), c.instance.isZero() ? "" : "A");
        EXPECT_EQ(e->InstanceStart, c.instance);
        EXPECT_EQ(e->iRemMinutes, c.instance.isZero() ? -100000 : c.minutes);
        EXPECT_EQ(e->iRemMinutesNext, -100000);
    }
}

TEST_F(Queries, AnExceptionInTheWindowTakesItsSeriesAway) {
    put(series("M", at(10, 0, 0, 16), "FREQ=DAILY", "15"));
    const auto exception = put(event("X", at(16, 0), "15"));
    exception->RecurrenceState = 3;
    exception->recurringEventId = "IDm";
    EXPECT_EQ(due(at(0, 0), at(23, 0)), "X") << "ids meet without regard to case";
    EXPECT_EQ(due(at(0, 0), at(12, 0)), "M");
    EXPECT_EQ(held(at(0, 0), at(23, 0)), "X");
    EXPECT_EQ(held(at(0, 0), at(12, 0)), "M");
    exception->ISRecurrenceExceptionDeleted = 1;
    set.LookAgain("X");
    // A cancelled one has no occurrence, and that of its series does not take place.
    EXPECT_EQ(due(at(0, 0), at(23, 0)), "");
    EXPECT_EQ(held(at(0, 0), at(23, 0)), "");
    EXPECT_EQ(due(at(0, 0), at(12, 0)), "M");
    EXPECT_EQ(held(at(0, 0), at(12, 0)), "M");
}

TEST_F(Queries, DismissedEventsStayInTheViews) {
    put(event("A", at(10, 0), "15"))->Dismissed = at(9, 50);
    EXPECT_EQ(due(at(9, 0), at(10, 0)), "A");
    EXPECT_EQ(held(at(9, 0), at(10, 0)), "A");
}

TEST_F(Queries, TheEarliestOccurrenceOfThePeriodWins) {
    const auto e = put(series("A", at(10, 0, 0, 1), "FREQ=DAILY", "15"));
    EXPECT_EQ(held(at(0, 0, 0, 20), at(23, 59, 0, 26)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 20));
    EXPECT_EQ(held(at(0, 0, 0, 24), at(23, 59, 0, 26)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 20)) << "only ever lowered";
    EXPECT_EQ(held(at(10, 0, 0, 18), at(10, 0, 0, 18)), "A");
    EXPECT_EQ(e->InstanceStart, at(10, 0, 0, 18));
    EXPECT_EQ(held(at(10, 0, 1, 18), at(9, 59, 59, 19)), "");
}

TEST_F(Queries, AnAnswerIsNeverNull) {
    EXPECT_EQ(set.RemindCol(at(0, 0), at(1, 0))->Count(), 0U);
    EXPECT_EQ(set.EventCol(at(0, 0), at(1, 0))->Count(), 0U);
}

TEST_F(Queries, KeepsPendingError) {
    put(event("A", at(10, 0), "15"));
    ErrorState::set(ErrNo::Syntax);
    due(at(0, 0), at(23, 0));
    held(at(0, 0), at(23, 0));
    set.ReadDB(false, false);
    EXPECT_EQ(set.EventByGUID("A"), nullptr);
    EXPECT_EQ(ErrorState::number(), ErrNo::Syntax);
    ErrorState::clear();
}

TEST(ReminderMSG, JoinsTheFirstTwoParts) {
    EXPECT_EQ(CalEvents::ReminderMSG("a || b"), "a (b)");
    EXPECT_EQ(CalEvents::ReminderMSG("a || b || c"), "a (b)");
    EXPECT_EQ(CalEvents::ReminderMSG("a || a"), "a (a)");
    EXPECT_EQ(CalEvents::ReminderMSG("a||b"), "a||b");
    EXPECT_EQ(CalEvents::ReminderMSG(""), "");
}

TEST(ReadStatement, IsBuiltPieceByPiece) {
    const DateTime never;
    EXPECT_EQ(CalEvents::ReadStatement(false, {}, never),
              "SELECT * FROM Reminders WHERE Deleted=0 AND Status <> \"AllDone\"");
    EXPECT_EQ(CalEvents::ReadStatement(true, {}, never), "SELECT * FROM Reminders WHERE Deleted=0");
    EXPECT_EQ(CalEvents::ReadStatement(true, false, never),
              "SELECT * FROM Reminders WHERE Deleted=0 AND Dismissed is Null");
    EXPECT_EQ(CalEvents::ReadStatement(false, true, at(14, 30, 5)),
              "SELECT * FROM Reminders WHERE Deleted=0 AND Status <> \"AllDone\" AND Dismissed is "
              "not Null AND Modified > #2026-11-20 14:30:05#");
}

TEST_F(Queries, OfAListedEventWhatIsPendingInAnEarlierWindowIsDueAgain) {
    Ledger ledger(clock);
    const auto listed = std::make_shared<GenCollection>();
    set.UseLedger(ledger, [&] { return listed; });
    put(event("A", at(10, 0), "15"));
    clock.time = at(9, 45);
    const auto pending = [&](DateTime from, DateTime to) {
        return keys(*set.RemindCol(from, to, true));
    };
    EXPECT_EQ(pending(at(9, 44), at(9, 45)), "A");
    listed->Add(Variant(objectAt<calEvent>(*set.mCol, "A")), "A");
    EXPECT_EQ(pending(at(9, 45), at(9, 46)), "A");
    EXPECT_EQ(pending(at(9, 46), at(9, 47)), "");
    EXPECT_EQ(pending(at(9, 47), at(9, 48)), "");
    EXPECT_EQ(pending(at(9, 44), at(9, 49)), "A") << "the window went back";
}

/// The real file, with the clock at the day its events lie around.
class FirstLight : public testing::Test {
protected:
    void SetUp() override {
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        std::filesystem::copy_file(test::repoFile("data/first-light.RemindDB"), db.DBFullName);
    }
    std::shared_ptr<calEvent> named(const char* subject) {
        for (const Variant& item : *set.mCol) {
            auto e = objectIn<calEvent>(item);
            if (e->Subject.view().starts_with(subject)) {
                return e;
            }
        }
        return nullptr;
    }

    test::TempFolder folder;
    ManualClock clock{at(14, 0)};
    DBRemindUtils db;
    CalEvents set{db, clock};
};

TEST_F(FirstLight, ReadsWhatIsNeitherDeletedNorDone) {
    EXPECT_EQ(set.ReadDB(true, false), 1) << "one, not a count";
    EXPECT_EQ(set.mCol->Count(), 10U);
    EXPECT_EQ(set.dLastRead, clock.now());
    EXPECT_FALSE(db.isOpen);
    CalEvents all(db, clock);
    all.ReadDB(true, true);
    EXPECT_EQ(all.mCol->Count(), 11U) << "with the one that is all done";
    all.ReadDB(true, true, true);
    EXPECT_EQ(all.mCol->Count(), 1U);
    all.ReadDB(true, true, false);
    EXPECT_EQ(all.mCol->Count(), 10U);
}

// Two of the host's databases hold the same calendar: the series is the one that a database gives
// for the id, also where the other stands in the window.
TEST_F(FirstLight, OfAnIdThatStandsTwiceTheFirstIsTheSeries) {
    const std::string id = "2fbnt5ha62tosd8fhgnm7l1kc5";
    db.Execute("UPDATE Reminders SET id=\"" + id + "\" WHERE EventID=1001;");
    db.Execute("UPDATE Reminders SET RecurrenceState=3, recurringEventId=\"" + id +
               "\" WHERE EventID=1012;");
    db.Execute("UPDATE Reminders SET StartDateTime=#2026-11-20 12:00:00# WHERE EventID=1012;");
    set.ReadDB(true, false);
    const std::string first = set.EventByID(id)->GUID;
    const std::string standUp = named("Stand-up")->GUID;
    const std::string dentist = named("Dentist")->GUID;
    ASSERT_TRUE(first == standUp || first == dentist);
    const auto held = set.EventCol(at(0, 0), at(23, 59));
    EXPECT_FALSE(held->Exists(first));
    EXPECT_TRUE(held->Exists(first == standUp ? dentist : standUp));
    EXPECT_TRUE(held->Exists(named("Café")->GUID));
    // The other one alone in the window.
    const DateTime other = first == standUp ? at(14, 0) : at(9, 30);
    db.Execute("UPDATE Reminders SET StartDateTime=" + DBRemindUtils::ToSQLDateTime(other, true) +
               " WHERE EventID=1012;");
    set.ReadDB(true, false);
    EXPECT_EQ(set.EventCol(other, other)->Count(), 2U);
}

TEST_F(FirstLight, FillsEventsColumnByColumn) {
    set.ReadDB(true, false);
    const auto standUp = named("Stand-up meeting");
    ASSERT_TRUE(standUp);
    EXPECT_EQ(standUp->GUID, "{956ABE94-E18E-437E-878F-EF5EC79876F1}");
    EXPECT_EQ(standUp->StartDateTime, at(9, 30));
    EXPECT_EQ(standUp->EndDateTime, at(9, 45));
    EXPECT_EQ(standUp->Location, "Room 2.14");
    EXPECT_EQ(standUp->EventID, 1001);
    EXPECT_TRUE(standUp->IsAllLoaded);
    EXPECT_TRUE(standUp->NextReminder.isZero()) << "null reads as no date";
    ASSERT_TRUE(standUp->RemindersCol);
    EXPECT_EQ(standUp->RemindersCol->Count(), 2U);

    const auto fair = named("Trade fair");
    ASSERT_TRUE(fair);
    EXPECT_EQ(fair->Subject, "Trade fair for building services, hall 7, stand B ");
    const auto cafe = named("Café");
    ASSERT_TRUE(cafe);
    EXPECT_EQ(cafe->Subject, "Café Zürich – 会議 mit Łukasz & Zoë 🎉");

    const auto master = named("Project review");
    ASSERT_TRUE(master);
    EXPECT_EQ(master->RecurrenceState, 1);
    EXPECT_EQ(master->RRULE, "FREQ=WEEKLY;BYDAY=MO,WE");
    EXPECT_EQ(master->NextReminder, at(9, 45, 0, 30));
    const auto moved = named("Project review (moved)");
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->RecurrenceState, 3);
    EXPECT_EQ(moved->RExceptionStartTimeOrig, at(10, 0, 0, 23));
}

TEST_F(FirstLight, AnIncrementalReadReplacesChangedEventsAndRemovesNone) {
    set.ReadDB(true, false);
    const auto before = named("Café");
    clock.time = at(14, 1);
    EXPECT_EQ(set.ReadDB(false, false), 0) << "nothing was changed since";
    EXPECT_EQ(named("Café"), before);
    db.Execute(
        "UPDATE Reminders SET Modified = #2026-11-20 14:05:00#, StartDateTime = "
        "#2026-11-27 16:00:00# WHERE EventID=1012;");
    db.Execute(
        "UPDATE Reminders SET Modified = #2026-11-20 14:05:00#, Deleted = True "
        "WHERE EventID=1001;");
    clock.time = at(14, 6);
    EXPECT_EQ(set.ReadDB(false, false), 1);
    EXPECT_EQ(set.mCol->Count(), 10U);
    EXPECT_EQ(named("Café")->StartDateTime, at(16, 0, 0, 27));
    EXPECT_NE(named("Café"), before);
    EXPECT_TRUE(named("Stand-up")) << "gone by the next full read only";
    set.ReadDB(true, false);
    EXPECT_FALSE(named("Stand-up"));
}

TEST_F(FirstLight, KnowsWhatFallsDueOnTheDay) {
    set.ReadDB(true, false);
    const auto due = set.RemindCol(at(0, 0), at(23, 59));
    std::string subjects;
    for (const Variant& item : *due) {
        const auto e = objectIn<calEvent>(item);
        subjects += e->Subject + " " + formatDateTime(e->dReminder).substr(11, 5) + "\n";
    }
    EXPECT_EQ(subjects,
              "Stand-up meeting 09:25\n"
              "Dentist: check-up 13:45\n"
              "Call the insurance about the water damage 16:45\n"
              "Waste paper collection 18:00\n");
}

TEST_F(FirstLight, AFailedReadLeavesTheSetAndStampsTheTime) {
    set.ReadDB(true, false);
    std::filesystem::remove(db.DBFullName);
    clock.time = at(15, 0);
    EXPECT_EQ(set.ReadDB(false, false), 0);
    EXPECT_EQ(set.mCol->Count(), 10U);
    EXPECT_EQ(set.dLastRead, at(15, 0));
}

TEST_F(FirstLight, FindsSingleEventsAfresh) {
    const auto byGuid = set.EventByGUID("{437fed06-b0d4-4c70-8ac9-99114cc7b46a}");
    ASSERT_TRUE(byGuid);
    EXPECT_EQ(byGuid->Subject, "Dentist: check-up");
    ASSERT_TRUE(byGuid->RemindersCol);
    const auto byId = set.EventByID("2fbnt5ha62tosd8fhgnm7l1kc5");
    ASSERT_TRUE(byId);
    EXPECT_EQ(byId->GUID, byGuid->GUID);
    EXPECT_FALSE(set.EventByGUID("{nobody}"));
    EXPECT_FALSE(set.EventByID("a\"b")) << "not escaped: the statement is broken";
}

RecordSet oneRow(std::vector<sql::Field> fields, std::vector<Variant> row) {
    sql::Result result;
    result.isQuery = true;
    result.fields = std::move(fields);
    result.rows.push_back(std::move(row));
    return RecordSet(std::move(result));
}

TEST(FillEvent, NullsReadByTheColumnsType) {
    calEvent e;
    e.EventID = 7;
    e.StartDateTime = at(1, 0);
    e.Location = "there";
    e.IsAllDayEvent = true;
    CalEvents::FillEvent(oneRow({{"EventID", jet::ColumnType::Long},
                                 {"StartDateTime", jet::ColumnType::Date},
                                 {"Location", jet::ColumnType::Text},
                                 {"IsAllDayEvent", jet::ColumnType::Boolean},
                                 {"NoSuchProperty", jet::ColumnType::Text}},
                                {Null{}, Null{}, Null{}, Null{}, "x"}),
                         e);
    EXPECT_EQ(e.EventID, 0);
    EXPECT_TRUE(e.StartDateTime.isZero());
    EXPECT_EQ(e.Location, "");
    EXPECT_TRUE(e.IsAllDayEvent) << "an empty text is no Boolean: the property stays";
}

TEST(FillEvent, AnyTextInRecurrenceMakesAMasterAndAMasterIsNoException) {
    for (const char* recurrence : {"[]", "[\"RRULE:FREQ=DAILY\"]", "nonsense"}) {
        SCOPED_TRACE(recurrence);
        calEvent e;
        CalEvents::FillEvent(oneRow({{"recurringEventId", jet::ColumnType::Text},
                                     {"RExceptionStartTimeOrig", jet::ColumnType::Date},
                                     {"RExceptionEndTimeOrig", jet::ColumnType::Date},
                                     {"BeforeMoveStartDateTime", jet::ColumnType::Date},
                                     {"ISRecurrenceExceptionDeleted", jet::ColumnType::Long},
                                     {"recurrence", jet::ColumnType::Memo}},
                                    {"master", at(1, 0), at(2, 0), at(3, 0), 1, recurrence}),
                             e);
        EXPECT_EQ(e.RecurrenceState, 1);
        EXPECT_EQ(e.recurringEventId, "");
        EXPECT_TRUE(e.RExceptionStartTimeOrig.isZero());
        EXPECT_TRUE(e.RExceptionEndTimeOrig.isZero());
        EXPECT_TRUE(e.BeforeMoveStartDateTime.isZero());
        EXPECT_EQ(e.ISRecurrenceExceptionDeleted, 0);
    }
}

TEST(FillEvent, CutsASubjectAtFiftyUnits) {
    calEvent e;
    e.Subject = std::string(49, 'x') + "🎉y";
    const RecordSet nothing;
    CalEvents::FillEvent(nothing, e);
    EXPECT_EQ(e.Subject, std::string(49, 'x')) << "a character is not split";
}

}  // namespace
}  // namespace vl
