// Cleaning up, over real files.
#include <gmock/gmock.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "CheckParts.h"
#include "db/jet/File.h"
#include "notify/Maintenance.h"
#include "support/Support.h"

namespace vl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Answers as it was told to, and keeps what it was asked.
class AnsweringScreen : public MessageScreen {
public:
    BoxAnswer ShowBox(const BoxRequest& box) override {
        asked.push_back(box);
        if (box.buttons == BoxButtons::Ok || answers.empty()) {
            return BoxAnswer::Ok;
        }
        const BoxAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::deque<BoxAnswer> answers;
    std::vector<BoxRequest> asked;
};

class MaintenanceTest : public test::CheckTest {
protected:
    MaintenanceTest() : CheckTest(DateTime::fromCivil(2026, 11, 20, 13, 45)) {}
    void SetUp() override {
        db.DBFullName = (folder / "Velmora.RemindDB").string();
        std::filesystem::copy_file(test::repoFile("data/first-light.RemindDB"), db.DBFullName);
        const std::string there = (folder / "there.vldb").string();
        test::writeFile(there, "");
        db.Execute("UPDATE Reminders SET VLBase = \"" + there + "\";");
    }

    std::int64_t rows(const std::string& where = "True") {
        const auto found = db.OpenRS("SELECT COUNT(*) AS n FROM Reminders WHERE " + where);
        return found->EOF_() ? -1 : found->value("n").toInt64();
    }
    // So many of the rows come from that file now.
    void move(int count, const std::string& path) {
        const auto guids = db.OpenRS("SELECT TOP " + std::to_string(count) +
                                     " GUID FROM Reminders WHERE NOT VLBase LIKE \"/gone*\" "
                                     "ORDER BY GUID");
        for (; !guids->EOF_(); guids->MoveNext()) {
            ASSERT_EQ(db.Execute("UPDATE Reminders SET VLBase = \"" + path + "\" WHERE GUID=\"" +
                                 guids->value("GUID").toText() + "\""),
                      1);
        }
    }

    test::TempFolder folder;
    AnsweringScreen boxes;
    Maintenance maintenance{db, reminders, period, cycle, state, screen, boxes};
};

TEST_F(MaintenanceTest, RemovesTheRowsMarkedAsDeleted) {
    EXPECT_EQ(rows(), 12);
    EXPECT_EQ(db.DeleteAllDeleted(), 1);
    EXPECT_EQ(rows(), 11);
    EXPECT_EQ(db.DeleteAllDeleted(), 0);
    EXPECT_EQ(rows("Deleted"), 0);
}

TEST_F(MaintenanceTest, RemovesOneRowByItsGUID) {
    const std::string guid = db.OpenRS("SELECT GUID FROM Reminders")->value("GUID").toText();
    db.DeleteDB("");
    EXPECT_EQ(rows(), 12);
    db.DeleteDB("{no such row}");
    EXPECT_EQ(rows(), 12);
    db.DeleteDB(guid);
    EXPECT_EQ(rows(), 11);
    EXPECT_EQ(rows("GUID=\"" + guid + "\""), 0);
}

TEST_F(MaintenanceTest, KnowsWhichHostDatabasesAreGone) {
    move(3, "/gone/a.vldb");
    move(2, "/gone/b.vldb");
    db.Execute("UPDATE Reminders SET VLBase = \"\" WHERE EventID = 1001");
    db.Execute("UPDATE Reminders SET VLBase = Null WHERE EventID = 1002");
    EXPECT_EQ(db.VLBasesCol()->Count(), 4U);
    const auto gone = db.DeletedVLBasesCol();
    EXPECT_THAT(std::vector<Variant>(gone->SaveAsArray()),
                testing::UnorderedElementsAre(Variant(""), Variant("/gone/a.vldb"),
                                              Variant("/gone/b.vldb")));
}

TEST_F(MaintenanceTest, CountsBeforeItRemoves) {
    move(3, "/gone/a.vldb");
    move(2, "/gone/b.vldb");
    EXPECT_EQ(db.DelDeletedVLBases(false), 5);
    EXPECT_EQ(rows(), 12);
    EXPECT_FALSE((db.CloseDB(), db.isOpen));
    EXPECT_EQ(db.DelDeletedVLBases(true), 5);
    EXPECT_EQ(rows(), 7);
    EXPECT_EQ(db.DelDeletedVLBases(true), 0);
}

TEST_F(MaintenanceTest, AnEmptyPathIsNoFile) {
    db.Execute("UPDATE Reminders SET VLBase = \"\" WHERE EventID <= 1003");
    EXPECT_EQ(db.DelDeletedVLBases(false), 3);
    EXPECT_EQ(db.DelDeletedVLBases(true), 3);
    EXPECT_EQ(rows(), 9);
}

// It is one of the paths, but no row equals it: such events are never removed.
TEST_F(MaintenanceTest, AMissingPathIsNoFileThatAnEventComesFrom) {
    db.Execute("UPDATE Reminders SET VLBase = Null WHERE EventID <= 1003");
    EXPECT_EQ(db.DeletedVLBasesCol()->Count(), 1U);
    EXPECT_EQ(db.DelDeletedVLBases(false), 0);
    EXPECT_EQ(db.DelDeletedVLBases(true), 0);
    EXPECT_EQ(rows(), 12);
    maintenance.CleanUp();
    ASSERT_EQ(boxes.asked.size(), 1U);
    EXPECT_EQ(boxes.asked[0].text, "Nothing to clean up. All events can be located");
}

TEST_F(MaintenanceTest, ADoubleQuoteInATextIsPartOfIt) {
    const std::string path = "/gone/x\" OR \"\"=\"";
    db.Execute("UPDATE Reminders SET VLBase = " + DBRemindUtils::ToSQLText(path) +
               " WHERE EventID = 1001");
    db.DeleteDB(path);
    EXPECT_EQ(rows(), 12);
    EXPECT_EQ(db.DelDeletedVLBases(false), 1);
    EXPECT_EQ(db.DelDeletedVLBases(true), 1);
    EXPECT_EQ(rows(), 11);
    EXPECT_EQ(rows("EventID = 1001"), 0);
}

TEST_F(MaintenanceTest, NeitherCompactsNorBacksUp) {
    const std::string before = test::readFile(db.DBFullName);
    EXPECT_FALSE(DBRemindUtils::Compact(db.DBFullName, true));
    DBRemindUtils::Backup((folder / "backup").string());
    EXPECT_FALSE(std::filesystem::exists(folder / "backup"));
    EXPECT_EQ(test::readFile(db.DBFullName), before);
}

TEST_F(MaintenanceTest, WithEveryHostDatabaseThereNothingIsCleanedUp) {
    maintenance.CleanUp();
    EXPECT_THAT(boxes.asked,
                ElementsAre(BoxRequest{"Clean up completed",
                                       "Nothing to clean up. All events can be located"}));
    EXPECT_EQ(rows(), 12);
    EXPECT_THAT(screen.calls, IsEmpty());
}

TEST_F(MaintenanceTest, CleaningUpAsksAndTellsHowMuch) {
    move(3, "/gone/a.vldb");
    move(2, "/gone/b.vldb");
    boxes.answers = {BoxAnswer::Yes};
    maintenance.CleanUp();
    EXPECT_THAT(boxes.asked,
                ElementsAre(BoxRequest{"Clean up database...",
                                       "5 events in 2 files could not be located\r\n"
                                       "(e.g. Files were moved, renamed or deleted)\r\r"
                                       "Clean up will remove these 5 events\rClean up database? \r",
                                       BoxButtons::YesNoCancel, BoxIcon::Question},
                            BoxRequest{"Clean up completed", "5 events were removed"}));
    EXPECT_EQ(rows(), 7);
    EXPECT_THAT(screen.calls, ElementsAre("DoPeriod"));
    ASSERT_TRUE(reminders.mCol);
    ASSERT_TRUE(period.mCol);
    EXPECT_EQ(reminders.mCol->Count(), period.mCol->Count());
}

TEST_F(MaintenanceTest, BothSetsAreReadAgainBeforeThePeriodIsShown) {
    struct LookingScreen : test::RecordingScreen {
        void DoPeriod() override { look(); }
        std::function<void()> look;
    } looking;
    using Counts = std::pair<std::size_t, std::size_t>;
    const auto counts = [&] { return Counts{reminders.mCol->Count(), period.mCol->Count()}; };
    std::vector<Counts> shown;
    looking.look = [&] { shown.push_back(counts()); };
    Maintenance onScreen{db, reminders, period, cycle, state, looking, boxes};
    move(3, "/gone/a.vldb");
    reminders.ReadDB(true, false);
    period.ReadDB(true, false);
    const Counts before = counts();
    boxes.answers = {BoxAnswer::Yes, BoxAnswer::Yes};
    onScreen.CleanUp();
    onScreen.DeleteAll();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_LT(shown[0].first, before.first);
    EXPECT_LT(shown[0].second, before.second);
    EXPECT_GT(shown[0].first, 0U);
    EXPECT_EQ(shown[1], Counts(0, 0));
}

TEST_F(MaintenanceTest, WhatIsNotAnsweredWithYesChangesNothing) {
    move(3, "/gone/a.vldb");
    for (const BoxAnswer answer : {BoxAnswer::No, BoxAnswer::Cancel}) {
        boxes.asked.clear();
        boxes.answers = {answer, answer};
        maintenance.CleanUp();
        maintenance.DeleteAll();
        EXPECT_EQ(boxes.asked.size(), 2U);
        EXPECT_EQ(rows(), 12);
        EXPECT_THAT(screen.calls, IsEmpty());
    }
}

TEST_F(MaintenanceTest, DeletingAllEmptiesTheTableAndTheLists) {
    cycle.Tick(10000);
    ASSERT_GT(state.NewReminders->Count(), 0U);
    screen.forget();
    boxes.answers = {BoxAnswer::Yes};
    maintenance.DeleteAll();
    EXPECT_THAT(boxes.asked, ElementsAre(BoxRequest{"Reminders database management...",
                                                    "Delete all reminders? \r"
                                                    "Reminders can be re-enabled in Velmora\r"
                                                    "(Tools > Reminders > Reminder Options)\r",
                                                    BoxButtons::YesNoCancel, BoxIcon::Question}));
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(state.NewReminders->Count(), 0U);
    EXPECT_EQ(screen.calls.back(), "DoPeriod");
    EXPECT_EQ(reminders.mCol->Count(), 0U);
}

// As a writer does from his first page to his last: others cannot read meanwhile.
class ReadersKeptOut {
public:
    explicit ReadersKeptOut(const std::string& path)
        : file_(jet::openFile(path, jet::Access::ReadWrite)) {
        EXPECT_TRUE(file_->tryLock(kReading, 1, jet::LockKind::Exclusive));
    }

private:
    static constexpr std::uint64_t kReading = 0xC0000002;
    std::unique_ptr<jet::File> file_;
};

// Whatever count came back is told, and 0 it is where nothing could be counted.
TEST_F(MaintenanceTest, AFileThatIsHeldIsLeftAsItIs) {
    move(3, "/gone/a.vldb");
    db.CloseDB();
    db.Patience = maintenance.Patience = std::chrono::milliseconds(0);
    {
        const ReadersKeptOut writer(db.DBFullName);
        maintenance.CleanUp();
    }
    ASSERT_EQ(boxes.asked.size(), 1U);
    EXPECT_EQ(boxes.asked[0].title, "Clean up completed");
    EXPECT_EQ(boxes.asked[0].text, "Nothing to clean up. All events can be located");
    EXPECT_EQ(boxes.asked[0].buttons, BoxButtons::Ok);
    EXPECT_EQ(rows(), 12);
}

// The others are done before a command's patience ends, though not before a tick's.
TEST_F(MaintenanceTest, CountingWaitsForAWriter) {
    move(3, "/gone/a.vldb");
    db.CloseDB();
    db.Patience = std::chrono::milliseconds(0);
    auto writer = std::make_unique<ReadersKeptOut>(db.DBFullName);
    std::thread done([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        writer.reset();
    });
    boxes.answers = {BoxAnswer::No};
    maintenance.CleanUp();
    done.join();
    ASSERT_EQ(boxes.asked.size(), 1U);
    EXPECT_EQ(boxes.asked[0].title, "Clean up database...");
    EXPECT_EQ(db.Patience, std::chrono::milliseconds(0));
    EXPECT_FALSE(db.isOpen) << "with a command's patience";
}

TEST_F(MaintenanceTest, WithoutAFileThereIsNothingToCleanUp) {
    std::filesystem::remove(db.DBFullName);
    maintenance.CleanUp();
    EXPECT_THAT(boxes.asked,
                ElementsAre(BoxRequest{"Clean up completed",
                                       "Nothing to clean up. All events can be located"}));
}

// What cannot be removed stays listed, and the closing message still comes.
TEST_F(MaintenanceTest, AFileThatCannotBeWrittenKeepsItsRows) {
    move(3, "/gone/a.vldb");
    cycle.Tick(10000);
    const std::size_t listed = state.NewReminders->Count();
    ASSERT_GT(listed, 0U);
    const std::int64_t before = rows();
    const std::string file = db.DBFullName;
    struct Moving : AnsweringScreen {
        BoxAnswer ShowBox(const BoxRequest& box) override {
            if (box.buttons == BoxButtons::YesNoCancel) {
                std::filesystem::rename(file, file + ".away");
            }
            return AnsweringScreen::ShowBox(box);
        }
        std::string file;
    } moving;
    moving.file = file;
    moving.answers = {BoxAnswer::Yes};
    Maintenance(db, reminders, period, cycle, state, screen, moving).CleanUp();
    ASSERT_EQ(moving.asked.size(), 2U);
    EXPECT_EQ(moving.asked[1].text, "0 events were removed");
    EXPECT_EQ(state.NewReminders->Count(), listed);
    std::filesystem::rename(file + ".away", file);
    EXPECT_EQ(rows(), before);
}

}  // namespace
}  // namespace vl
