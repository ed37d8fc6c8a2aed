// Acts on several rows at once: one line of writing for all, and each as good as alone.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/Files.h"
#include "base/Text.h"
#include "notify/Acts.h"
#include "support/Events.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using test::at;

class ActsTogether : public testing::Test {
protected:
    void SetUp() override {
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        fs::copy_file(test::repoFile("data/first-light.RemindDB"), db.DBFullName);
        reminders.ReadDB(true, false);
        period.ReadDB(true, false);
        for (const Variant& item : *period.mCol) {
            const auto event = objectIn<calEvent>(item);
            rows.push_back({event, event->StartDateTime, event->StartDateTime.addMinutes(-15)});
        }
        ASSERT_GE(rows.size(), 5U);
    }
    /// What the file says, by nobody who was told before.
    std::shared_ptr<calEvent> stored(const ActRow& row) {
        DBRemindUtils other;
        other.DBFullName = db.DBFullName;
        return CalEvents(other, clock).EventByGUID(row.event->GUID);
    }
    void dismissAll() {
        const Acts::Together together(acts);
        for (const ActRow& row : rows) {
            acts.Dismiss(row, DismissMode::This);
        }
    }

    test::TempFolder folder;
    test::ManualClock clock{at(13, 50)};
    DBRemindUtils db;
    CalEvents reminders{db, clock};
    CalEvents period{db, clock};
    std::string ledgerPath = (folder / "VLReminders.ledger").string();
    Ledger ledger{clock, ledgerPath};
    ReminderState state;
    Acts acts{reminders, period, db, clock, ledger, state};
    std::vector<ActRow> rows;
};

TEST_F(ActsTogether, AreWrittenWhenTheLastScopeEnds) {
    {
        const Acts::Together outer(acts);
        dismissAll();
        EXPECT_GE(acts.Waiting(), rows.size()) << "the inner scope writes nothing";
        EXPECT_TRUE(stored(rows[0])->Dismissed.isZero());
        EXPECT_EQ(rows[0].event->Dismissed, at(13, 50)) << "in the program at once";
    }
    EXPECT_EQ(acts.Waiting(), 0U);
    Ledger other(clock, ledgerPath);
    for (const ActRow& row : rows) {
        EXPECT_EQ(stored(row)->Dismissed, at(13, 50)) << row.event->Subject;
        ASSERT_TRUE(other.find(db.DBFullName, row.event->GUID)) << row.event->Subject;
        EXPECT_EQ(other.find(db.DBFullName, row.event->GUID)->row,
                  ledger.find(db.DBFullName, row.event->GUID)->row);
    }
    EXPECT_TRUE(ledger.onDisk());
}

TEST_F(ActsTogether, EndAsTheSameActsOneByOne) {
    for (const ActRow& row : rows) {
        acts.Reactivate(row);
    }
    dismissAll();
    std::vector<calEvent> together;
    for (const ActRow& row : rows) {
        together.push_back(*stored(row));
        acts.Reactivate(row);
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        acts.Dismiss(rows[i], DismissMode::This);
        EXPECT_EQ(stored(rows[i])->Dismissed, together[i].Dismissed);
        EXPECT_EQ(stored(rows[i])->NextReminder, together[i].NextReminder);
    }
}

TEST_F(ActsTogether, WaitTogetherWhileTheFileIsAway) {
    fs::rename(db.DBFullName, folder / "away");
    fs::create_directory(db.DBFullName);
    dismissAll();
    EXPECT_GE(acts.Waiting(), rows.size());
    EXPECT_EQ(state.waitingWrites, static_cast<int>(acts.Waiting()));
    fs::remove(db.DBFullName);
    fs::rename(folder / "away", db.DBFullName);
    acts.WriteWaiting();
    EXPECT_EQ(acts.Waiting(), 0U);
    for (const ActRow& row : rows) {
        EXPECT_EQ(stored(row)->Dismissed, at(13, 50)) << row.event->Subject;
    }
}

// Another copy has dismissed one of them a minute later: that one gets its own word.
TEST_F(ActsTogether, LeaveTheWordOfAnotherCopy) {
    fs::rename(db.DBFullName, folder / "away");
    fs::create_directory(db.DBFullName);
    dismissAll();
    Ledger other(clock, ledgerPath);
    other.change(db.DBFullName, rows[2].event->GUID, "dismiss", [](EventState& known) {
        known.row["Dismissed"].before.push_back(known.row["Dismissed"].after);
        known.row["Dismissed"].after = "2026-11-20 13:51:00";
    });
    fs::remove(db.DBFullName);
    fs::rename(folder / "away", db.DBFullName);
    ledger.ReadAgain();
    acts.WriteWaiting();
    EXPECT_EQ(acts.Waiting(), 0U);
    EXPECT_EQ(stored(rows[1])->Dismissed, at(13, 50));
    EXPECT_EQ(stored(rows[2])->Dismissed, at(13, 51));
}

TEST_F(ActsTogether, HideAndShowAgainEachRow) {
    const auto hide = [&](bool hidden) {
        const Acts::Together together(acts);
        for (const ActRow& row : rows) {
            acts.Hide(row, hidden);
        }
    };
    hide(true);
    for (const ActRow& row : rows) {
        EXPECT_TRUE(stored(row)->Hidden);
    }
    hide(false);
    for (const ActRow& row : rows) {
        EXPECT_FALSE(stored(row)->Hidden);
    }
}

// What is noted is on the disk before any row is written: a statement that finds no file must not
// leave an act that nobody knows of.
TEST_F(ActsTogether, AreInTheLedgerThoughNoRowCanBeWritten) {
    fs::rename(db.DBFullName, folder / "away");
    dismissAll();
    Ledger other(clock, ledgerPath);
    for (const ActRow& row : rows) {
        const EventState* known = other.find(db.DBFullName, row.event->GUID);
        ASSERT_TRUE(known) << row.event->Subject;
        EXPECT_EQ(known->note("Dismissed")->after, "2026-11-20 13:50:00");
    }
}

TEST_F(ActsTogether, AreOneFlushOfTheLedger) {
    std::vector<std::uintmax_t> sizes;
    {
        const Acts::Together together(acts);
        for (const ActRow& row : rows) {
            acts.Dismiss(row, DismissMode::This);
            sizes.push_back(fs::exists(ledgerPath) ? fs::file_size(ledgerPath) : 0);
        }
        EXPECT_FALSE(ledger.onDisk());
    }
    EXPECT_EQ(sizes.front(), sizes.back()) << "nothing is added in between";
    EXPECT_GT(fs::file_size(ledgerPath), sizes.back());
}

}  // namespace
}  // namespace vl
