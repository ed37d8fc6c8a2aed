// What reading again keeps, and what one set takes over from the other.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/ErrorState.h"
#include "events/CalEvents.h"
#include "support/EventFile.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

constexpr const char* kStandUp = "{956ABE94-E18E-437E-878F-EF5EC79876F1}";
constexpr const char* kDentist = "{437FED06-B0D4-4C70-8AC9-99114CC7B46A}";

class ReadAgain : public testing::Test {
protected:
    void SetUp() override {
        db.DBFullName = path.string();
        fs::copy_file(test::repoFile("data/first-light.RemindDB"), path);
        set.ReadDB(true, false);
    }
    /// As another program writes: without our knowing, but for the file's time.
    void elsewhere(const std::string& change, const char* GUID) {
        DBRemindUtils host;
        host.DBFullName = path.string();
        ASSERT_EQ(host.Execute("UPDATE Reminders SET " + change + " WHERE GUID=\"" + GUID + "\""),
                  1)
            << host.LastErrorText();
        fs::last_write_time(path, written += std::chrono::seconds(1));
    }
    static std::shared_ptr<calEvent> in(const CalEvents& set, const char* GUID) {
        return objectAt<calEvent>(*set.mCol, GUID);
    }

    test::TempFolder folder;
    fs::path path = folder / "Velmora.RemindDB";
    fs::file_time_type written = fs::file_time_type::clock::now();
    test::ManualClock clock{at(14, 0)};
    DBRemindUtils db;
    CalEvents set{db, clock};
    CalEvents other{db, clock};
};

TEST_F(ReadAgain, AnUnchangedFileKeepsTheEventsAndResetsWhatQueriesLeft) {
    const auto event = in(set, kStandUp);
    const auto collection = set.mCol;
    set.RemindCol(at(0, 0), at(23, 59));
    event->dLastReminder = at(9, 25);
    ASSERT_FALSE(event->InstanceStart.isZero());
    clock.time = at(14, 1);
    EXPECT_EQ(set.ReadDB(true, false), 1);
    EXPECT_EQ(in(set, kStandUp), event);
    EXPECT_EQ(set.mCol, collection);
    EXPECT_TRUE(event->InstanceStart.isZero());
    EXPECT_EQ(event->iRemMinutes, -100000);
    EXPECT_EQ(event->dLastReminder, at(9, 25)) << "that is no query's";
    EXPECT_EQ(set.dLastRead, at(14, 1));
    EXPECT_EQ(set.ReadDB(false, false), 0);
    EXPECT_FALSE(db.isOpen);
}

/// A row for each answer to what the query of a read asks: "..AD..." is all done and dismissed.
class ReadQuestion : public testing::Test {
protected:
    struct Row {
        bool deleted, allDone, dismissed, old;
    };
    static std::string nameOf(const Row& row) {
        return std::string(row.deleted ? "X" : ".") + (row.allDone ? "A" : ".") +
               (row.dismissed ? "D" : ".") + (row.old ? "O" : ".");
    }
    ReadQuestion() {
        for (int bits = 0; bits < 16; ++bits) {
            const Row row{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0};
            rows.push_back(row);
            calEvent event;
            event.GUID = nameOf(row);
            event.StartDateTime = at(10, 0);
            event.deleted = row.deleted;
            event.status = row.allDone ? "AllDone" : "";
            // The old one is of the very second of the last read.
            event.Modified = row.old ? at(12, 0) : at(12, 0, 1);
            file.put(event);
            if (row.dismissed) {
                file.change(event.GUID, {{"Dismissed", Variant(at(9, 50))}});
            }
        }
        db.DBFullName = file.path();
        db.Execute(
            "INSERT INTO Reminders (GUID, Deleted, Modified) VALUES (\"null\", False, "
            "#2026-11-20 13:00:00#)");
    }
    static std::string keys(const CalEvents& set) {
        std::set<std::string> all;
        for (std::size_t i = 1; i <= set.mCol->Count(); ++i) {
            all.insert(set.mCol->Key(static_cast<std::int64_t>(i)));
        }
        std::string out;
        for (const std::string& key : all) {
            out += key + " ";
        }
        return out;
    }
    std::string wanted(bool IncludeAllDone, std::optional<bool> Dismissed, bool sinceThen) const {
        std::set<std::string> names;
        for (const Row& row : rows) {
            if (!row.deleted && (IncludeAllDone || !row.allDone) &&
                (!Dismissed || *Dismissed == row.dismissed) && (!sinceThen || !row.old)) {
                names.insert(nameOf(row));
            }
        }
        if (IncludeAllDone && Dismissed != true) {
            names.insert("null");  // what has no status is not unlike "AllDone"
        }
        std::string out;
        for (const std::string& name : names) {
            out += name + " ";
        }
        return out;
    }

    test::TempFolder folder;
    test::ManualClock clock{at(14, 0)};
    test::EventFile file{(folder / "Velmora.RemindDB").string()};
    DBRemindUtils db;
    std::vector<Row> rows;
};

TEST_F(ReadQuestion, IsSentAsItIsBuilt) {
    for (const bool IncludeAllDone : {false, true}) {
        for (const std::optional<bool> Dismissed :
             {std::optional<bool>(), std::optional(false), std::optional(true)}) {
            SCOPED_TRACE(CalEvents::ReadStatement(IncludeAllDone, Dismissed, {}));
            CalEvents full(db, clock);
            full.dLastRead = at(12, 0);
            EXPECT_EQ(full.ReadDB(false, IncludeAllDone, Dismissed), 1);
            EXPECT_EQ(keys(full), wanted(IncludeAllDone, Dismissed, false)) << "the first is full";
            EXPECT_EQ(full.dLastRead, at(14, 0));

            CalEvents since(db, clock);
            since.mCol = std::make_shared<GenCollection>();
            since.dLastRead = at(12, 0);
            EXPECT_EQ(since.ReadDB(false, IncludeAllDone, Dismissed), 1);
            EXPECT_EQ(keys(since), wanted(IncludeAllDone, Dismissed, true));

            since.dLastRead = at(12, 0);
            EXPECT_EQ(since.ReadDB(true, IncludeAllDone, Dismissed), 1);
            EXPECT_EQ(keys(since), wanted(IncludeAllDone, Dismissed, false));
        }
    }
}

TEST_F(ReadQuestion, OfAnEmptyTableGivesNothing) {
    db.Execute("DELETE FROM Reminders");
    CalEvents set(db, clock);
    EXPECT_EQ(set.ReadDB(true, false), 0);
    EXPECT_EQ(set.mCol->Count(), 0U);
    EXPECT_EQ(set.ReadDB(true, true), 0);
    clock.time = at(14, 1);
    EXPECT_EQ(set.ReadDB(false, false), 0);
    calEvent event;
    event.GUID = "A";
    event.Modified = at(14, 1, 1);
    file.put(event);
    EXPECT_EQ(set.ReadDB(false, true), 1);
}

TEST_F(ReadAgain, EqualTextsOfTwoEventsAreOne) {
    elsewhere("Location = \"The very same place\"", kStandUp);
    elsewhere("Location = \"The very same place\"", kDentist);
    set.ReadDB(true, false);
    EXPECT_EQ(in(set, kStandUp)->Location, "The very same place");
    EXPECT_TRUE(in(set, kStandUp)->Location.sharesWith(in(set, kDentist)->Location));
    in(set, kStandUp)->Location = "Elsewhere";
    EXPECT_EQ(in(set, kDentist)->Location, "The very same place") << "and yet each has its own";
}

TEST_F(ReadAgain, AnotherQuestionIsAsked) {
    EXPECT_EQ(set.mCol->Count(), 10U);
    set.ReadDB(true, true);
    EXPECT_EQ(set.mCol->Count(), 11U);
    set.ReadDB(true, true, true);
    EXPECT_EQ(set.mCol->Count(), 1U);
    db.DBFullName = (folder / "another.RemindDB").string();
    fs::copy_file(path, db.DBFullName);
    set.ReadDB(true, true);
    EXPECT_EQ(set.mCol->Count(), 11U);
}

TEST_F(ReadAgain, OfAChangedFileTheEventsThatAreAsTheyWereKeepTheirObject) {
    const auto standUp = in(set, kStandUp);
    const auto dentist = in(set, kDentist);
    dentist->dLastReminder = at(13, 45);
    elsewhere("StartDateTime = #2026-11-27 09:00:00#", kDentist);
    set.ReadDB(true, false);
    EXPECT_EQ(in(set, kStandUp), standUp);
    EXPECT_NE(in(set, kDentist), dentist);
    EXPECT_EQ(in(set, kDentist)->StartDateTime, at(9, 0, 0, 27));
    EXPECT_EQ(in(set, kDentist)->dLastReminder, at(13, 45));
}

TEST_F(ReadAgain, AWriteOfOurOwnIsAChange) {
    const auto time = fs::last_write_time(path);
    db.Execute(std::string("UPDATE Reminders SET EventID = 4711 WHERE GUID=\"") + kStandUp + "\"");
    fs::last_write_time(path, time);
    set.ReadDB(true, false);
    EXPECT_EQ(in(set, kStandUp)->EventID, 4711);
}

TEST_F(ReadAgain, AfterAFailedReadNothingCountsAsUnchanged) {
    const std::string bytes = test::readFile(path);
    const auto time = fs::last_write_time(path);
    fs::remove(path);
    set.ReadDB(false, false);
    test::writeFile(path, bytes);
    fs::last_write_time(path, time);
    const auto event = in(set, kStandUp);
    event->EventID = 1;
    set.ReadDB(true, false);
    EXPECT_NE(in(set, kStandUp), event) << "it was read, and found different";
    EXPECT_EQ(in(set, kStandUp)->EventID, 1001);
}

TEST_F(ReadAgain, AChangeThatTheIncrementalReadMissesIsAdopted) {
    other.ReadDB(true, false);
    clock.time = at(14, 1);
    // The host's clock is behind: the row is older than the last read.
    elsewhere("StartDateTime = #2026-11-20 16:00:00#, Modified = #2026-11-20 13:00:00#", kDentist);
    EXPECT_EQ(other.ReadDB(false, false), 0);
    EXPECT_NE(in(other, kDentist)->StartDateTime, at(16, 0));
    set.ReadDB(true, false);
    other.Adopt(set);
    EXPECT_EQ(in(other, kDentist)->StartDateTime, at(16, 0));
    // And one that says nothing of when it was made.
    elsewhere("EventID = 99", kStandUp);
    other.ReadDB(false, false);
    set.ReadDB(true, false);
    other.Adopt(set);
    EXPECT_EQ(in(other, kStandUp)->EventID, 99);
}

TEST_F(ReadAgain, WhatTheFullReadDoesNotHaveAnyMoreLeaves) {
    other.ReadDB(true, true);
    EXPECT_EQ(other.mCol->Count(), 11U);
    const auto collection = other.mCol;
    other.Adopt(set);
    EXPECT_EQ(other.mCol->Count(), 10U);
    EXPECT_EQ(other.mCol, collection);
}

TEST_F(ReadAgain, AdoptionKeepsWhatWasListed) {
    other.ReadDB(true, false);
    in(other, kDentist)->dLastReminder = at(13, 45);
    elsewhere("EventID = 99", kDentist);
    other.ReadDB(false, false);
    set.ReadDB(true, false);
    other.Adopt(set);
    EXPECT_EQ(in(other, kDentist)->dLastReminder, at(13, 45));
    EXPECT_EQ(in(other, kDentist)->EventID, 99);
}

TEST_F(ReadAgain, ASetThatWasNeverReadAdoptsAllAndReadsOnFromThere) {
    CalEvents fresh(db, clock);
    clock.time = at(15, 0);
    fresh.Adopt(set);
    EXPECT_EQ(fresh.mCol->Count(), 10U);
    EXPECT_NE(fresh.mCol, set.mCol) << "a collection of its own:";
    fresh.mCol->Remove(kDentist);
    EXPECT_EQ(set.mCol->Count(), 10U);
    EXPECT_EQ(fresh.dLastRead, set.dLastRead);
    fresh.Adopt(CalEvents(db, clock));
    EXPECT_EQ(fresh.mCol->Count(), 9U) << "what was never read is no news";
}

/// What queries leave in an event.
using Left = std::tuple<DateTime, DateTime, std::int32_t, std::int32_t>;
Left leftIn(const calEvent& event) {
    return {event.InstanceStart, event.dReminder, event.iRemMinutes, event.iRemMinutesNext};
}

TEST_F(ReadAgain, TheChecksQuestionAndTheViewsLeaveNothingInEachOthersEvents) {
    other.Adopt(set);
    ASSERT_EQ(in(other, kStandUp), in(set, kStandUp)) << "held once";
    const Left before = leftIn(*in(set, kStandUp));
    const auto due = other.RemindCol(at(0, 0), at(23, 59), true);
    const auto listed = objectAt<calEvent>(*due, kStandUp);
    ASSERT_NE(listed, nullptr);
    ASSERT_FALSE(listed->InstanceStart.isZero());
    EXPECT_EQ(leftIn(*in(set, kStandUp)), before);
    const Left ofTheCheck = leftIn(*listed);
    set.RemindCol(at(0, 0), at(23, 59));
    set.EventCol(at(0, 0), at(23, 59));
    ASSERT_FALSE(in(set, kStandUp)->InstanceStart.isZero());
    set.ReadDB(true, false);
    ASSERT_TRUE(in(set, kStandUp)->InstanceStart.isZero());
    EXPECT_EQ(leftIn(*listed), ofTheCheck);
    set.RemindCol(at(0, 0), at(23, 59));
    const Left ofTheViews = leftIn(*in(set, kStandUp));
    other.RemindCol(at(0, 0), at(23, 59), true);
    EXPECT_EQ(leftIn(*in(set, kStandUp)), ofTheViews);
}

TEST_F(ReadAgain, ASetThatHasAdoptedItsEventsAsksTheViewsQuestionsOfItsOwn) {
    other.Adopt(set);
    const Left before = leftIn(*in(set, kStandUp));
    EXPECT_GT(other.RemindCol(at(0, 0), at(23, 59))->Count(), 0U);
    EXPECT_GT(other.EventCol(at(0, 0), at(23, 59))->Count(), 0U);
    EXPECT_NE(in(other, kStandUp), in(set, kStandUp));
    EXPECT_FALSE(in(other, kStandUp)->InstanceStart.isZero());
    EXPECT_EQ(leftIn(*in(set, kStandUp)), before);
}

TEST_F(ReadAgain, TheSameQuestionOfTheSameEventsLeavesTheSame) {
    const auto ask = [&](int hour) {
        set.ReadDB(true, false);
        std::vector<std::pair<std::string, Left>> found;
        for (const auto& col :
             {set.RemindCol(at(0, 0), at(hour, 59)), set.EventCol(at(0, 0), at(hour, 59))}) {
            for (const Variant& item : *col) {
                const auto event = objectIn<calEvent>(item);
                found.emplace_back(event->GUID, leftIn(*event));
            }
        }
        return found;
    };
    const auto first = ask(23);
    EXPECT_FALSE(first.empty());
    EXPECT_EQ(ask(23), first);
    EXPECT_EQ(ask(23), first) << "from memory";
    EXPECT_NE(ask(9), first);
    EXPECT_EQ(ask(23), first);
    const auto standUp = in(set, kStandUp);
    standUp->StartDateTime = standUp->StartDateTime.addDays(-1);
    standUp->NextReminder = at(15, 0);
    set.LookAgain(kStandUp);
    EXPECT_NE(ask(23), first);
}

TEST_F(ReadAgain, KeepsPendingError) {
    ErrorState::set(ErrNo::Locked);
    set.ReadDB(true, false);
    other.Adopt(set);
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

// What the views ask for again and again is remembered as long as nothing has changed.
TEST_F(ReadAgain, AnEventChangedInPlaceIsLookedAtAgain) {
    const auto asked = [&] {
        set.ReadDB(true, false);
        const bool reminds = set.RemindCol(at(0, 0), at(23, 59))->Exists(kDentist);
        const bool starts = set.EventCol(at(0, 0), at(23, 59))->Exists(kDentist);
        return std::pair(reminds, starts);
    };
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(asked(), std::pair(true, true));
    }
    in(set, kDentist)->StartDateTime = at(15, 0, 0, 27);
    set.LookAgain(kDentist);
    EXPECT_EQ(asked(), std::pair(false, false));
}

// A host whose clock is ahead writes rows that each query since the last read gives.
TEST_F(ReadAgain, SaysThatAnUnchangedFileGivesRowsWhereItsQueryWould) {
    EXPECT_EQ(set.ReadDB(false, false), 0);
    elsewhere("Modified = #2026-11-20 15:00:00#", kDentist);
    EXPECT_EQ(set.ReadDB(false, false), 1);
    EXPECT_EQ(set.ReadDB(false, false), 1) << "unchanged, and an hour ahead";
    clock.time = at(15, 0);
    set.ReadDB(false, false);
    EXPECT_EQ(set.ReadDB(false, false), 0);
}

TEST_F(ReadAgain, OfATableWithoutRowsGivesNone) {
    DBRemindUtils host;
    host.DBFullName = path.string();
    ASSERT_GT(host.Execute("DELETE FROM Reminders"), 0);
    fs::last_write_time(path, written += std::chrono::seconds(1));
    EXPECT_EQ(other.ReadDB(true, false), 0);
    EXPECT_EQ(other.mCol->Count(), 0U);
}

// ---- a damaged file

/// The sample's rows lie on pages 23 and 33; page 36 holds the JSON of one of them.
class DamagedFile : public ReadAgain {
protected:
    static constexpr std::size_t kPage = 4096;
    static constexpr std::size_t kLongValue = 36 * kPage;
    static constexpr std::size_t kRows = 33 * kPage;
    static constexpr std::size_t kFirstSlot = 14;
    static constexpr std::size_t kOnSecondPage = 3;  // that are neither deleted nor finished

    void damage(std::size_t at, char byte) {
        std::string bytes = test::readFile(path);
        bytes.at(at) = byte;
        test::writeFile(path, bytes);
        fs::last_write_time(path, written += std::chrono::seconds(1));
    }
    /// The events of `set` that lack their JSON.
    static std::vector<std::string> withoutJSON(const CalEvents& set) {
        std::vector<std::string> found;
        for (const Variant& item : *set.mCol) {
            const auto event = objectIn<calEvent>(item);
            if (event->JSON.empty()) {
                found.push_back(event->GUID);
            }
        }
        return found;
    }
};

TEST_F(DamagedFile, AnEventComesWithoutTheValueThatCannotBeRead) {
    ASSERT_EQ(withoutJSON(set), std::vector<std::string>());
    EXPECT_EQ(set.DamagedRows(), 0U);
    const std::size_t all = set.mCol->Count();
    damage(kLongValue, 9);
    EXPECT_EQ(other.ReadDB(true, false), 1);
    EXPECT_EQ(db.ReadTrouble().number, ErrNo::None);
    EXPECT_EQ(other.mCol->Count(), all);
    EXPECT_EQ(other.DamagedRows(), 1U);
    const auto damaged = withoutJSON(other);
    ASSERT_EQ(damaged.size(), 1U);
    EXPECT_TRUE(other.IsReadInPart(damaged.front()));
    EXPECT_EQ(other.EventCol(at(0, 0, 0, 1), at(0, 0, 0, 30))->Count(),
              set.EventCol(at(0, 0, 0, 1), at(0, 0, 0, 30))->Count());

    damage(kLongValue, 1);
    other.ReadDB(true, false);
    EXPECT_EQ(withoutJSON(other), std::vector<std::string>()) << "mended";
    EXPECT_EQ(other.DamagedRows(), 0U);
    EXPECT_FALSE(other.IsReadInPart(damaged.front()));
}

TEST_F(DamagedFile, WhatASetHasReadAsAWholeItKeeps) {
    damage(kLongValue, 9);
    set.ReadDB(true, false);
    EXPECT_EQ(withoutJSON(set), std::vector<std::string>());
    EXPECT_EQ(set.DamagedRows(), 1U);
    const std::size_t all = set.mCol->Count();
    damage(kRows + kFirstSlot + 1, 0x1F);  // the first row begins behind the page's end
    set.ReadDB(true, false);
    EXPECT_EQ(set.mCol->Count(), all) << "although a page of rows cannot be read";
    other.ReadDB(true, false);
    EXPECT_EQ(other.mCol->Count(), all - kOnSecondPage) << "who has not read them before";
    EXPECT_EQ(other.DamagedRows(), 1U);
}

TEST_F(DamagedFile, AnActOnWhatIsNotHeldLosesNothingOfIt) {
    const std::size_t all = set.mCol->Count();
    set.LookAgain("of no event");
    damage(kRows + kFirstSlot + 1, 0x1F);
    set.ReadDB(true, false);
    EXPECT_EQ(set.mCol->Count(), all);
    EXPECT_EQ(set.DamagedRows(), 1U);
    damage(kRows + kFirstSlot + 1, 0x0E);
    set.ReadDB(true, false);
    EXPECT_EQ(set.mCol->Count(), all) << "mended";
}

TEST_F(DamagedFile, ReadingWhatHasChangedGoesOn) {
    damage(kLongValue, 9);
    set.ReadDB(true, false);
    other.ReadDB(true, false);
    const std::string damaged = withoutJSON(other).at(0);
    clock.time = at(14, 10);
    elsewhere("Modified = #2026-11-20 14:05:00#, Subject = \"changed\"", kDentist);
    elsewhere("Modified = #2026-11-20 14:05:00#, Subject = \"too\"", damaged.c_str());
    EXPECT_EQ(set.ReadDB(false, false), 1);
    EXPECT_EQ(db.ReadTrouble().number, ErrNo::None);
    EXPECT_EQ(in(set, kDentist)->Subject, "changed");
    EXPECT_EQ(in(set, damaged.c_str())->Subject, "too");
    EXPECT_TRUE(set.IsReadInPart(damaged));
}

// A series whose rule is lost looks like a single event.
TEST_F(DamagedFile, AnEventReadInPartIsNeverFinished) {
    damage(kLongValue, 9);
    other.ReadDB(true, false);
    const std::string damaged = withoutJSON(other).at(0);
    clock.time = DateTime::fromCivil(2040, 1, 1, 9, 0, 0);
    other.UpdateAllDone();
    EXPECT_EQ(in(other, kDentist)->status, "AllDone");
    EXPECT_EQ(in(other, damaged.c_str())->status, "");
}

}  // namespace
}  // namespace vl
