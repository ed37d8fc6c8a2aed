#include "notify/Acts.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/types.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <filesystem>

#include "base/ErrorState.h"
#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "support/Events.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::at;

constexpr const char* kDentist = "{437FED06-B0D4-4C70-8AC9-99114CC7B46A}";  // 14:00, 15 minutes

/// Acts over a real file and a real ledger.
class ActsOnFile : public testing::Test {
protected:
    void SetUp() override {
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        fs::copy_file(test::repoFile("data/first-light.RemindDB"), db.DBFullName);
        read();
    }
    void read() {
        reminders.ReadDB(true, false);
        period.ReadDB(true, false);
    }
    std::shared_ptr<calEvent> in(const CalEvents& set, const char* GUID) {
        return objectAt<calEvent>(*set.mCol, GUID);
    }
    std::shared_ptr<calEvent> named(const std::string& subject) {
        for (const Variant& item : *period.mCol) {
            if (auto e = objectIn<calEvent>(item); e->Subject == subject) {
                return e;
            }
        }
        return nullptr;
    }
    ActRow row(const char* GUID, DateTime start, DateTime reminder) {
        return {in(period, GUID), start, reminder};
    }
    ActRow dentist() { return row(kDentist, at(14, 0), at(13, 45)); }
    /// What the file says, by nobody who was told before.
    std::shared_ptr<calEvent> stored(const char* GUID) {
        DBRemindUtils other;
        other.DBFullName = db.DBFullName;
        return CalEvents(other, clock).EventByGUID(GUID);
    }
    const EventState& known(const char* GUID) {
        const EventState* found = ledger.find(db.DBFullName, GUID);
        return found != nullptr ? *found : nothing;
    }
    /// Somebody else's statement.
    void elsewhere(const std::string& statement) {
        DBRemindUtils other;
        other.DBFullName = db.DBFullName;
        ASSERT_EQ(other.Execute(statement), 1) << other.LastErrorText();
    }
    /// In the file's place stands something that cannot be read or written.
    void takeFileAway() {
        fs::rename(db.DBFullName, folder / "away");
        fs::create_directory(db.DBFullName);
    }
    void bringFileBack() {
        fs::remove(db.DBFullName);
        fs::rename(folder / "away", db.DBFullName);
    }

    test::TempFolder folder;
    test::ManualClock clock{at(13, 50)};
    DBRemindUtils db;
    CalEvents reminders{db, clock};
    CalEvents period{db, clock};
    Ledger ledger{clock, (folder / "VLReminders.ledger").string()};
    ReminderState state;
    Acts acts{reminders, period, db, clock, ledger, state};
    const EventState nothing{};
};

TEST_F(ActsOnFile, SnoozeCountsFromNowAndIsSetEverywhereAtOnce) {
    ASSERT_NE(in(reminders, kDentist), in(period, kDentist));
    state.NewReminders->Add(Variant(in(reminders, kDentist)), kDentist);
    state.LastEventsReminded->Add(Variant(in(reminders, kDentist)), kDentist);
    EXPECT_TRUE(acts.Snooze(dentist(), 120));
    EXPECT_EQ(in(reminders, kDentist)->NextReminder, at(15, 50));
    EXPECT_EQ(in(period, kDentist)->NextReminder, at(15, 50));
    EXPECT_EQ(stored(kDentist)->NextReminder, at(15, 50));
    EXPECT_TRUE(stored(kDentist)->Dismissed.isZero()) << "snoozing dismisses nothing";
    EXPECT_FALSE(state.NewReminders->Exists(kDentist));
    EXPECT_FALSE(state.LastEventsReminded->Exists(kDentist));
    const OccurrenceState* one = known(kDentist).find(at(14, 0));
    ASSERT_TRUE(one);
    EXPECT_EQ(one->handled, at(13, 50));
    EXPECT_EQ(TimeZone::local().fromUtc(one->snoozed), at(15, 50));
    EXPECT_GT(one->end, at(14, 0));
    EXPECT_EQ(known(kDentist).note("NextReminder")->before,
              (std::vector<std::string>{"1899-12-30"}));
    EXPECT_EQ(known(kDentist).note("NextReminder")->after, "2026-11-20 15:50:00");
    EXPECT_EQ(known(kDentist).note("Dismissed")->after, "1899-12-30");
}

// By that time the program tells what the host has written since it last read.
TEST_F(ActsOnFile, NoActChangesWhenTheRowWasLastModified) {
    const DateTime before = stored(kDentist)->Modified;
    ASSERT_FALSE(before.isZero());
    acts.Snooze(dentist(), 5);
    acts.Dismiss(dentist(), DismissMode::AllButAfter, true);
    acts.Hide(dentist());
    EXPECT_EQ(stored(kDentist)->Dismissed, at(13, 50));
    EXPECT_EQ(stored(kDentist)->Modified, before);
    acts.Reactivate(dentist());
    EXPECT_EQ(stored(kDentist)->Modified, before);
}

TEST_F(ActsOnFile, AnOffsetOfNothingChangesNothing) {
    EXPECT_FALSE(acts.Snooze(dentist(), 0));
    EXPECT_FALSE(acts.Snooze(dentist(), -5));
    EXPECT_TRUE(stored(kDentist)->NextReminder.isZero());
    EXPECT_EQ(known(kDentist), nothing);
}

TEST_F(ActsOnFile, AnActWorksOnTheRowsOwnOccurrence) {
    const auto series = named("Project review");  // Mondays and Wednesdays at 10:00
    ASSERT_TRUE(series);
    const auto other = in(reminders, series->GUID.str().c_str());
    other->InstanceStart = at(10, 0, 0, 2);  // what some query has left
    other->iRemMinutes = 99;
    acts.Snooze({series, at(10, 0, 0, 18), at(9, 45, 0, 18)}, 15);
    EXPECT_EQ(other->InstanceStart, at(10, 0, 0, 18));
    EXPECT_EQ(other->iRemMinutes, 15);
    EXPECT_EQ(other->RecordedReminderD(), at(9, 45, 0, 18));
    EXPECT_TRUE(known(series->GUID.str().c_str()).find(at(10, 0, 0, 18)));
    EXPECT_FALSE(known(series->GUID.str().c_str()).find(at(10, 0, 0, 2)));
}

// ---- a series' last instance

TEST_F(ActsOnFile, DismissingTheLastInstanceLeavesTheNextReminderAlone) {
    const auto series = named("Project review");
    ASSERT_TRUE(series);
    const std::string GUID = series->GUID;
    elsewhere(
        "UPDATE Reminders SET NextReminder = Null, recurrence = \"[\"\"RRULE:FREQ=DAILY;"
        "COUNT=1\"\"]\" WHERE GUID = \"" +
        GUID + "\"");
    read();
    const auto isNull = [&] {
        DBRemindUtils other;
        other.DBFullName = db.DBFullName;
        const auto rows =
            other.OpenRS("SELECT NextReminder FROM Reminders WHERE GUID = \"" + GUID + "\"");
        return rows->value("NextReminder").isNull();
    };
    ASSERT_TRUE(isNull());
    const auto last = in(period, GUID.c_str());
    acts.Dismiss({last, last->StartDateTime, {}}, DismissMode::All);
    EXPECT_EQ(stored(GUID.c_str())->Dismissed, at(13, 50));
    EXPECT_TRUE(isNull());
    EXPECT_FALSE(rowSpeaks(*stored(GUID.c_str()), &known(GUID.c_str())));
}

TEST_F(ActsOnFile, ARowWhoseEventHasLeftTheSetsIsStillActedUpon) {
    const ActRow row = dentist();
    reminders.mCol->Remove(kDentist);
    period.mCol->Remove(kDentist);
    acts.Dismiss(row, DismissMode::This);
    EXPECT_EQ(stored(kDentist)->Dismissed, at(13, 50));
    EXPECT_EQ(row.event->Dismissed, at(13, 50));
    EXPECT_EQ(known(kDentist).find(at(14, 0))->handled, at(13, 50));
}

/// A dismissal over events that were made by hand: what becomes of both columns.
class Dismissing : public testing::Test {
protected:
    std::shared_ptr<calEvent> put(std::shared_ptr<calEvent> e) {
        reminders.Add(e, e->GUID);
        return e;
    }
    const OccurrenceState* known(const calEvent& e, DateTime start) {
        const EventState* found = ledger.find(db.DBFullName, e.GUID);
        return found != nullptr ? found->find(e.ToWall(start)) : nullptr;
    }

    test::ManualClock clock{at(9, 50)};
    DBRemindUtils db;
    CalEvents reminders{db, clock};
    CalEvents period{db, clock};
    Ledger ledger{clock};
    ReminderState state;
    Acts acts{reminders, period, db, clock, ledger, state};
};

TEST_F(Dismissing, EachModeMovesTheNextReminderInItsWay) {
    struct Case {
        const char* what;
        DismissMode mode;
        bool repeats;
        DateTime stored;  // before
        DateTime next;    // after
        Muted muted;
    };
    const DateTime tomorrow = at(8, 0, 0, 21);  // the first reminder of the next day's instance
    const DateTime old = at(7, 0, 0, 1);
    const Case cases[] = {
        {"this: the next one after now", DismissMode::This, false, {}, at(9, 55), Muted::No},
        {"after the start", DismissMode::AllButAfter, false, {}, at(10, 20), Muted::ThroughStart},
        {"all: none", DismissMode::All, false, {}, {}, Muted::ForEver},
        {"all of a series: the next instance's",
         DismissMode::All,
         true,
         {},
         tomorrow,
         Muted::ForEver},
        {"an old value stays", DismissMode::All, true, old, old, Muted::ForEver},
        {"this, in a series", DismissMode::This, true, old, at(9, 55), Muted::No},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto e = c.repeats ? test::series("{A}", at(10, 0), "FREQ=DAILY", {120, 5, -20})
                           : test::single("{A}", at(10, 0), {120, 5, -20});
        e->GUID = c.what;
        e->NextReminder = c.stored;
        acts.Dismiss({e, at(10, 0), at(8, 0)}, c.mode);
        EXPECT_EQ(e->Dismissed, at(9, 50));
        EXPECT_EQ(e->NextReminder, c.next);
        const OccurrenceState* one = known(*e, at(10, 0));
        ASSERT_TRUE(one);
        EXPECT_EQ(one->handled, at(9, 50));
        EXPECT_EQ(one->muted, c.muted);
        EXPECT_TRUE(one->snoozed.isZero());
    }
}

TEST_F(Dismissing, WhatTheListTookEarlyIsHandledThroughItsTime) {
    const auto e = put(test::single("{A}", at(10, 0), {5}));
    ledger.change("", "{A}", "listed",
                  [](EventState& s) { s.at(at(10, 0)).listed = at(9, 50, 8); });
    acts.Dismiss({e, at(10, 0), at(9, 50, 8)}, DismissMode::This);
    EXPECT_EQ(known(*e, at(10, 0))->handled, at(9, 50, 8));
    EXPECT_TRUE(known(*e, at(10, 0))->listed.isZero());
    clock.time = at(9, 50, 4);
    acts.Dismiss({e, at(10, 0), at(9, 50, 8)}, DismissMode::This);
    EXPECT_EQ(known(*e, at(10, 0))->handled, at(9, 50, 8)) << "also after a second act";
}

TEST_F(Dismissing, EndsEarlierOccurrencesThatAreOverAndNoOthers) {
    // Three hours long, every hour: at 9:50 those of 7:00 (until 10:00), 8:00 and 9:00 go on.
    const auto e = put(test::series("{A}", at(0, 0), "FREQ=HOURLY", {5}));
    e->EndDateTime = at(3, 0);
    ledger.change("", "{A}", "test", [](EventState& s) {
        for (const int hour : {4, 5, 6, 7}) {
            s.at(at(hour, 0)).listed = at(hour, 0).addMinutes(-5);
        }
        s.at(at(4, 0)).snoozed = TimeZone::local().toUtc(at(20, 0));
    });
    acts.Dismiss({e, at(8, 0), at(7, 55)}, DismissMode::All);
    const EventState& kept = *ledger.find("", "{A}");
    EXPECT_EQ(kept.endedBefore, at(6, 50, 1));
    EXPECT_FALSE(kept.find(at(5, 0)));
    EXPECT_FALSE(kept.find(at(6, 0)));
    ASSERT_TRUE(kept.find(at(4, 0)));
    EXPECT_FALSE(kept.find(at(4, 0))->snoozed.isZero()) << "snoozed: stays";
    ASSERT_TRUE(kept.find(at(7, 0)));
    EXPECT_EQ(kept.find(at(7, 0))->listed, at(6, 55)) << "not over: stays";
    EXPECT_FALSE(kept.find(at(9, 0)));
}

TEST_F(Dismissing, DoneMakesAnEventWithoutAnythingLeftAllDone) {
    const auto one = put(test::single("{A}", at(10, 0), {120}));
    acts.Dismiss({one, at(10, 0), at(8, 0)}, DismissMode::This, true);
    EXPECT_EQ(one->status, "AllDone");
    EXPECT_EQ(known(*one, at(10, 0))->muted, Muted::ForEver);
    const auto daily = put(test::series("{B}", at(10, 0, 0, 19), "FREQ=DAILY;COUNT=2", {120}));
    acts.Dismiss({daily, at(10, 0, 0, 19), at(8, 0, 0, 19)}, DismissMode::This, true);
    EXPECT_EQ(daily->status, "") << "there is a later one";
    EXPECT_EQ(known(*daily, at(10, 0, 0, 19))->muted, Muted::ForEver);
    acts.Snooze({daily, at(10, 0, 0, 19), at(8, 0, 0, 19)}, 30);
    acts.Dismiss({daily, at(10, 0), at(8, 0)}, DismissMode::This, true);
    EXPECT_EQ(daily->status, "") << "the last, but an earlier one is snoozed";
    acts.Dismiss({daily, at(10, 0, 0, 19), at(10, 20)}, DismissMode::This);
    acts.Dismiss({daily, at(10, 0), at(8, 0)}, DismissMode::This, true);
    EXPECT_EQ(daily->status, "AllDone");
}

TEST_F(Dismissing, ReactivatingForgetsEverything) {
    const auto e = put(test::series("{A}", at(10, 0, 0, 16), "FREQ=DAILY", {120}));
    acts.Dismiss({e, at(10, 0), at(8, 0)}, DismissMode::All);
    acts.Snooze({e, at(10, 0, 0, 19), at(8, 0, 0, 19)}, 30);
    acts.Reactivate({e, at(10, 0), at(8, 0)});
    EXPECT_TRUE(e->Dismissed.isZero());
    EXPECT_TRUE(e->NextReminder.isZero());
    const EventState* kept = ledger.find("", "{A}");
    ASSERT_TRUE(kept);
    EXPECT_TRUE(kept->occurrences.empty());
    EXPECT_TRUE(kept->endedBefore.isZero());
    EXPECT_FALSE(rowSpeaks(*e, kept));
}

TEST_F(Dismissing, TheActTakesOverWhatTheRowSaid) {
    const auto e = put(test::series("{A}", at(10, 0, 0, 16), "FREQ=DAILY", {120}));
    e->NextReminder = at(18, 0);  // another program has snoozed today's
    e->Dismissed = at(8, 30, 0, 19);
    ASSERT_TRUE(rowSpeaks(*e, nullptr));
    acts.Dismiss({e, at(10, 0, 0, 19), at(8, 0, 0, 19)}, DismissMode::This);
    EXPECT_FALSE(rowSpeaks(*e, ledger.find("", "{A}")));
    ASSERT_TRUE(known(*e, at(10, 0)));
    EXPECT_EQ(TimeZone::local().fromUtc(known(*e, at(10, 0))->snoozed), at(18, 0));
}

TEST_F(Dismissing, KeepsPendingError) {
    const auto e = put(test::single("{A}", at(10, 0), {5}));
    ErrorState::set(ErrNo::Syntax);
    acts.Snooze({e, at(10, 0), at(9, 55)}, 5);
    acts.Dismiss({e, at(10, 0), at(9, 55)}, DismissMode::All, true);
    acts.Hide({e, at(10, 0), at(9, 55)});
    acts.Reactivate({e, at(10, 0), at(9, 55)});
    acts.RestoreWaiting();
    acts.WriteWaiting();
    EXPECT_EQ(ErrorState::number(), ErrNo::Syntax);
    ErrorState::clear();
}

TEST_F(ActsOnFile, HidingAndShowingWritesTheFlag) {
    acts.Hide(dentist());
    EXPECT_TRUE(stored(kDentist)->Hidden);
    EXPECT_TRUE(in(reminders, kDentist)->Hidden);
    EXPECT_EQ(state.HiddenGUIDColR->SaveAsList(","), kDentist) << "for the views";
    EXPECT_TRUE(rowSpeaks(*stored(kDentist), &known(kDentist)))
        << "of its reminders it says nothing";
    acts.Hide(dentist(), false);
    EXPECT_FALSE(stored(kDentist)->Hidden);
    EXPECT_EQ(state.HiddenGUIDColR->Count(), 0U);
}

// The ledger stands on the disk when the row is written: a crash between the two loses nothing.
TEST_F(ActsOnFile, TheRowIsWrittenLaterWhenItCannotBeWrittenNow) {
    takeFileAway();
    acts.Snooze(dentist(), 15);
    acts.Dismiss(dentist(), DismissMode::This);
    EXPECT_EQ(state.waitingWrites, 2);
    EXPECT_NE(acts.Trouble(), "");
    EXPECT_EQ(in(period, kDentist)->Dismissed, at(13, 50));
    bringFileBack();
    EXPECT_TRUE(stored(kDentist)->Dismissed.isZero());
    read();
    EXPECT_TRUE(in(period, kDentist)->Dismissed.isZero()) << "as the row says";
    acts.RestoreWaiting();
    EXPECT_EQ(in(period, kDentist)->Dismissed, at(13, 50));
    EXPECT_EQ(in(reminders, kDentist)->NextReminder, at(14, 5));
    EXPECT_FALSE(rowSpeaks(*stored(kDentist), &known(kDentist))) << "it shows what was before";
    acts.WriteWaiting();
    EXPECT_EQ(state.waitingWrites, 0);
    EXPECT_EQ(stored(kDentist)->Dismissed, at(13, 50));
    EXPECT_EQ(stored(kDentist)->NextReminder, at(14, 5));
}

TEST_F(ActsOnFile, TheRowIsWrittenByTheNextRunWhenThisOneCannot) {
    takeFileAway();
    acts.Snooze(dentist(), 15);
    acts.Hide(dentist());
    acts.Snooze(dentist(), 45);  // what the first was to write, nobody will have seen
    bringFileBack();
    CalEvents set(db, clock);
    set.ReadDB(true, false);
    Ledger again(clock, (folder / "VLReminders.ledger").string());
    ReminderState fresh;
    Acts next(set, set, db, clock, again, fresh);
    EXPECT_FALSE(rowSpeaks(*stored(kDentist), again.find(db.DBFullName, kDentist)));
    next.RestoreWaiting();
    EXPECT_EQ(fresh.waitingWrites, 2);
    EXPECT_EQ(in(set, kDentist)->NextReminder, at(14, 35));
    next.WriteWaiting();
    EXPECT_EQ(fresh.waitingWrites, 0);
    EXPECT_EQ(stored(kDentist)->NextReminder, at(14, 35));
    EXPECT_TRUE(stored(kDentist)->Hidden);
}

TEST_F(ActsOnFile, WhoWroteTheRowMeanwhileHasTheLastWord) {
    takeFileAway();
    acts.Snooze(dentist(), 15);
    bringFileBack();
    elsewhere(
        std::string("UPDATE Reminders SET NextReminder = #2026-11-20 20:00:00# WHERE GUID=\"") +
        kDentist + "\";");
    read();
    acts.RestoreWaiting();
    acts.WriteWaiting();
    EXPECT_EQ(state.waitingWrites, 0);
    EXPECT_EQ(stored(kDentist)->NextReminder, at(20, 0));
    EXPECT_TRUE(rowSpeaks(*stored(kDentist), &known(kDentist)));
}

TEST_F(ActsOnFile, AWriteThatCanNeverSucceedDoesNotBlockTheOthers) {
    const auto ghost = test::single("{G\"}", at(14, 0), {15});  // breaks the statement
    acts.Snooze({ghost, at(14, 0), at(13, 45)}, 15);
    EXPECT_EQ(state.waitingWrites, 0);
    acts.Snooze(dentist(), 15);
    EXPECT_EQ(stored(kDentist)->NextReminder, at(14, 5));
}

/// A table that lacks what later versions have added.
class OldFile : public testing::Test {
protected:
    void make() {
        jet::Database::create(db.DBFullName, [](jet::Database& file) {
            file.createTable("Reminders",
                             std::vector<jet::NewColumn>{{"GUID", jet::ColumnType::Text, 50}});
        });
        auto file = jet::Database::open(db.DBFullName, jet::Access::ReadWrite);
        jet::Transaction change(file);
        file.table("Reminders").insert(std::vector<jet::Table::Change>{{0, "A"}});
        change.commit();
    }
    Variant stored(const char* column) {
        const auto rows = db.OpenRS("SELECT * FROM Reminders WHERE GUID=\"A\"");
        Variant value = rows->EOF_() ? Variant() : rows->value(column);
        db.CloseDB();
        return value;
    }

    test::TempFolder folder;
    test::ManualClock clock{at(13, 50)};
    DBRemindUtils db = [this] {
        DBRemindUtils utils;
        utils.DBFullName = (folder / "Velmora.RemindDB").string();
        return utils;
    }();
    CalEvents set{db, clock};
    Ledger ledger{clock, (folder / "VLReminders.ledger").string()};
    ReminderState state;
    Acts acts{set, set, db, clock, ledger, state};
    ActRow row{test::single("A", at(14, 0), {15}), at(14, 0), at(13, 45)};
};

TEST_F(OldFile, AColumnThatIsMissingIsAddedAndTheActWritten) {
    make();
    acts.Snooze(row, 15);
    acts.Hide(row);
    acts.Dismiss(row, DismissMode::All, true);
    EXPECT_EQ(state.waitingWrites, 0);
    EXPECT_EQ(stored("Dismissed").toDateTime(), at(13, 50));
    EXPECT_EQ(stored("NextReminder").toDateTime(), at(14, 5));
    EXPECT_EQ(stored("Hidden"), Variant(true));
    EXPECT_EQ(stored("status"), Variant("AllDone"));
}

TEST_F(OldFile, SoIsWhatHasWaitedForTheFile) {
    acts.Snooze(row, 15);
    EXPECT_EQ(state.waitingWrites, 1);
    make();
    acts.WriteWaiting();
    EXPECT_EQ(state.waitingWrites, 0);
    EXPECT_EQ(stored("NextReminder").toDateTime(), at(14, 5));
}

#ifndef _WIN32
// In a process of its own: to root no file is protected.
TEST_F(ActsOnFile, AFileThatMayOnlyBeReadIsWrittenWhenItMayBeAgain) {
    constexpr uid_t kNobody = 65534;
    const auto body = [&] {
        EXPECT_TRUE(geteuid() != 0 || setuid(kNobody) == 0);
        acts.Snooze(dentist(), 15);
        EXPECT_EQ(state.waitingWrites, 1);
        EXPECT_TRUE(stored(kDentist)->NextReminder.isZero());
        EXPECT_EQ(in(period, kDentist)->NextReminder, at(14, 5)) << "it holds all the same";
        Ledger again(clock, (folder / "VLReminders.ledger").string());
        CalEvents set(db, clock);
        set.ReadDB(true, false);
        ReminderState fresh;
        Acts next(set, set, db, clock, again, fresh);
        next.RestoreWaiting();
        next.WriteWaiting();
        EXPECT_EQ(fresh.waitingWrites, 1) << "also over a restart";
        fs::permissions(db.DBFullName, fs::perms::owner_write, fs::perm_options::add);
        next.WriteWaiting();
        EXPECT_EQ(fresh.waitingWrites, 0);
        EXPECT_EQ(stored(kDentist)->NextReminder, at(14, 5));
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    fs::permissions(folder.path(), fs::perms::all);
    fs::permissions(db.DBFullName, fs::perms::owner_read);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(db.DBFullName.c_str(), kNobody, kNobody), 0);
    }
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}
#endif

/// A host's file with the dentist's event and its item, among others.
class Deleting : public ActsOnFile {
protected:
    void SetUp() override {
        ActsOnFile::SetUp();
        host.DBFullName = (folder / "Home.vldb").string();
        fs::copy_file(test::repoFile("data/first-light.RemindDB"), host.DBFullName);
        in_("CREATE TABLE Event (GUID TEXT(255), ItemID LONG)");
        in_("CREATE TABLE [\u00AFItems] (ItemID LONG, Title TEXT(50))");
        in_(std::string("INSERT INTO Event (GUID, ItemID) VALUES (\"") + kDentist + "\", 7)");
        in_("INSERT INTO Event (GUID, ItemID) VALUES (\"{other}\", 8)");
        in_("INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (7, \"Dentist\")");
        in_("INSERT INTO [\u00AFItems] (ItemID, Title) VALUES (8, \"Other\")");
    }
    void in_(const std::string& statement) {
        host.Execute(statement);
        ASSERT_EQ(host.LastErrorText(), "") << statement;
    }
    std::size_t count(const std::string& table) {
        const auto rows = host.OpenRS("SELECT * FROM " + table);
        const std::size_t n = rows->RecordCount();
        host.CloseDB();
        return n;
    }
    ActRow itemOf(const std::string& VLBase) {
        elsewhere("UPDATE Reminders SET VLBase = \"" + VLBase + "\" WHERE GUID=\"" + kDentist +
                  "\"");
        read();
        return dentist();
    }
    DBRemindUtils host;
};

TEST_F(Deleting, TakesTheItemOutOfTheHostsFileAndThenTheRow) {
    EXPECT_EQ(acts.DeleteItem(itemOf(host.DBFullName)), calEvent::Deletion::Gone);
    EXPECT_EQ(count("Event"), 1U);
    EXPECT_EQ(count("[\u00AFItems]"), 1U);
    EXPECT_FALSE(stored(kDentist));
    EXPECT_FALSE(period.mCol->Exists(kDentist));
    EXPECT_FALSE(reminders.mCol->Exists(kDentist));
    EXPECT_FALSE(known(kDentist).deleting);
}

TEST_F(Deleting, TheRowGoesAlsoWhereThereIsNoHostsFileOrItIsNoDatabase) {
    EXPECT_EQ(acts.DeleteItem(itemOf((folder / "nowhere.vldb").string())),
              calEvent::Deletion::Gone);
    EXPECT_FALSE(stored(kDentist));
    elsewhere("DELETE * FROM Reminders WHERE GUID=\"{956ABE94-E18E-437E-878F-EF5EC79876F1}\"");
    test::writeFile(folder / "text.vldb", "this is no database");
    const auto standUp = in(period, "{956ABE94-E18E-437E-878F-EF5EC79876F1}");
    standUp->VLBase = (folder / "text.vldb").string();
    EXPECT_EQ(acts.DeleteItem({standUp, at(9, 30), at(9, 25)}), calEvent::Deletion::Gone);
}

TEST_F(Deleting, OfAnExceptionTheStartThatItReplacedStaysReplaced) {
    const ActRow row = itemOf((folder / "nowhere.vldb").string());
    row.event->RecurrenceState = 3;
    row.event->recurringEventId = "master";
    row.event->RExceptionStartTimeOrig = at(10, 0);
    EXPECT_EQ(acts.DeleteItem(row), calEvent::Deletion::Gone);
    const auto replaced = ledger.replaced(db.DBFullName, seriesOf(*row.event));
    ASSERT_EQ(replaced.size(), 1U);
    EXPECT_EQ(replaced.front().local, at(10, 0));
}

TEST_F(Deleting, WaitsWhileTheHostsFileCannotBeReadAlsoOverARestart) {
    const std::string path = host.DBFullName;
    fs::rename(path, folder / "held");
    fs::create_directory(path);  // there, and not to be read
    EXPECT_EQ(acts.DeleteItem(itemOf(path)), calEvent::Deletion::Waits);
    EXPECT_EQ(state.waitingWrites, 1);
    EXPECT_TRUE(stored(kDentist)) << "the row stays until the item is gone";
    EXPECT_FALSE(period.mCol->Exists(kDentist)) << "but it is not shown";
    read();
    acts.RestoreWaiting();
    EXPECT_FALSE(period.mCol->Exists(kDentist)) << "nor after a read";
    acts.WriteWaiting();
    EXPECT_EQ(state.waitingWrites, 1);

    Ledger again(clock, (folder / "VLReminders.ledger").string());
    CalEvents set(db, clock);
    set.ReadDB(true, false);
    ReminderState fresh;
    Acts next(set, set, db, clock, again, fresh);
    next.RestoreWaiting();
    fs::remove(path);
    fs::rename(folder / "held", path);
    next.WriteWaiting();
    EXPECT_EQ(fresh.waitingWrites, 0);
    EXPECT_EQ(count("Event"), 1U);
    EXPECT_FALSE(stored(kDentist));
}

}  // namespace
}  // namespace vl
