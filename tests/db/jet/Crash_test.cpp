// Wherever the program or the machine stops, a statement is afterwards there as a whole or not at
// all, and one that had returned is there.
#include <iostream>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "Mdb.h"
#include "PageFile.h"
#include "Rows.h"
#include "Statements.h"
#include "db/jet/ReadGuard.h"

namespace vl {
namespace {

using jet::Access;
using jet::Database;
using test::kDatabase;
using test::MemoryFolder;
using Fault = MemoryFolder::Fault;
using Left = MemoryFolder::Left;

class Crash : public testing::Test {
protected:
    void SetUp() override {
        MemoryFolder folder;
        folder.put(kDatabase, test::firstLight());
        std::size_t done = 0;
        test::runStatements(folder, 0, done, &images_);
        ASSERT_EQ(done, test::statements().size());
        ASSERT_EQ(folder.files(), 1U) << "journal and lock file are gone";
    }

    /// Runs the script with a fault at operation n; false when there is no such operation.
    bool runUntil(MemoryFolder& folder, Fault fault, int n, std::size_t& done) {
        folder.put(kDatabase, images_[0]);
        folder.fail(fault, n);
        try {
            test::runStatements(folder, 0, done);
        } catch (const Error&) {
            EXPECT_TRUE(folder.hit());
        }
        return folder.hit();
    }

    /// Which statement's end the file holds, `done` statements having returned.
    std::size_t stateOf(const MemoryFolder& folder, std::size_t done) {
        const std::string bytes = folder.bytes(kDatabase);
        for (std::size_t state = done; state < std::min(done + 2, images_.size()); ++state) {
            if (bytes == images_[state]) {
                met_.insert(state);
                return state;
            }
        }
        ADD_FAILURE() << "neither the old nor the new state of statement " << done + 1;
        return done;
    }

    static void openOnce(MemoryFolder& folder) {
        Database::open(kDatabase, Access::ReadWrite, test::fewPages(folder));
    }

    /// Pages as a reader who may not write gets them.
    void expectReadable(MemoryFolder& folder, std::size_t done) {
        folder.readOnly = true;
        jet::PageFile file(folder.open(kDatabase, Access::Read), kDatabase, Access::Read,
                           test::fewPages(folder));
        const jet::ReadGuard guard(file);
        std::size_t same = 0;
        for (std::size_t state = done; state < std::min(done + 2, images_.size()); ++state) {
            const std::string& image = images_[state];
            bool equal = file.pageCount() == image.size() / jet::kPageSize;
            for (jet::PageNo page = 1; equal && page < file.pageCount(); ++page) {
                const auto bytes =
                    std::as_bytes(std::span(image)).subspan(page * jet::kPageSize, jet::kPageSize);
                const jet::Page read = file.page(page);
                equal = std::equal(bytes.begin(), bytes.end(), read.bytes().begin());
            }
            same += equal ? 1 : 0;
        }
        EXPECT_GT(same, 0U) << "read through the journal";
        folder.readOnly = false;
    }

    std::vector<std::string> images_;  // before the first statement, and after each
    std::set<std::size_t> met_;        // of them, those that were found after a crash
};

TEST_F(Crash, EveryStateOfTheScriptIsSoundForUsAndForAnotherReader) {
    const test::TempFolder folder;
    for (std::size_t i = 0; i < images_.size(); ++i) {
        SCOPED_TRACE(i == 0 ? "before" : test::statements()[i - 1].what);
        test::expectSound(images_[i]);
        test::writeFile(folder / "image.mdb", images_[i]);
        test::Disk disk(images_[i]);
        const jet::Database db = test::openMemory(disk);
        const jet::Table table = db.table("Reminders");
        std::map<std::string, const test::Row*> ours;
        const test::Rows rows = test::rowsOf(table);
        for (const test::Row& row : rows.values) {
            ours[row[test::position(table, "GUID")].toText()] = &row;
        }
        const auto theirs = test::mdbRows(folder / "image.mdb", "Reminders");
        EXPECT_EQ(theirs.size(), rows.values.size());
        EXPECT_EQ(ours.size(), rows.values.size());
        for (const nlohmann::json& row : theirs) {
            const std::string guid = row.at("GUID");
            SCOPED_TRACE(guid);
            ASSERT_EQ(ours.count(guid), 1U);
            const test::Row& mine = *ours.at(guid);
            if (row.contains("EventID")) {
                EXPECT_EQ(row.at("EventID").get<double>(),
                          mine[test::position(table, "EventID")].toDouble());
            }
            if (guid.rfind("{row-", 0) == 0) {  // the others hold what it does not print
                for (const char* column : {"Subject", "JSON"}) {
                    EXPECT_TRUE(row.at(column).get<std::string>() ==
                                mine[test::position(table, column)].toText());
                }
            }
        }
    }
}

TEST_F(Crash, LeavesTheOldOrTheNewStateWhereverItComes) {
    static constexpr std::pair<Left, unsigned> kLeft[] = {{Left::All, 0},  {Left::Flushed, 0},
                                                          {Left::Some, 1}, {Left::Some, 2},
                                                          {Left::Some, 3}, {Left::Some, 4}};
    int points = 0;
    int crashes = 0;
    int takenBack = 0;
    for (const Fault fault : {Fault::Stop, Fault::Torn}) {
        for (int n = 1;; ++n) {
            MemoryFolder folder;
            std::size_t done = 0;
            if (!runUntil(folder, fault, n, done)) {
                break;
            }
            ++points;
            for (const auto& [left, seed] : kLeft) {
                SCOPED_TRACE(testing::Message()
                             << "operation " << n << (fault == Fault::Torn ? ", torn" : "")
                             << ", left " << static_cast<int>(left) << " " << seed << ", statement "
                             << done + 1 << ": " << folder.log);
                ++crashes;
                MemoryFolder next;
                folder.copyTo(next, left, seed + static_cast<unsigned>(n) * 8);
                expectReadable(next, done);
                openOnce(next);
                takenBack += next.operations() > 0 ? 1 : 0;
                const std::size_t state = stateOf(next, done);
                EXPECT_EQ(next.files(), next.operations() > 0 ? 1U : next.files());
                if (left == Left::All) {  // and it goes on as if nothing had been
                    std::size_t end = 0;
                    test::runStatements(next, state, end);
                    EXPECT_TRUE(next.bytes(kDatabase) == images_.back());
                }
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    EXPECT_EQ(met_.size(), images_.size()) << "all states come out";
    std::cout << points << " places to stop at, " << crashes << " crashes, " << takenBack
              << " changes taken back\n";
}

TEST_F(Crash, WhileAChangeIsTakenBackIsNoHarm) {
    int crashes = 0;
    for (int n = 1;; n += 5) {
        MemoryFolder folder;
        std::size_t done = 0;
        if (!runUntil(folder, Fault::Torn, n, done)) {
            break;
        }
        for (const Left left : {Left::All, Left::Some}) {
            for (int m = 1;; ++m) {
                SCOPED_TRACE(testing::Message() << "operation " << n << ", then " << m << ", left "
                                                << static_cast<int>(left));
                MemoryFolder next;
                folder.copyTo(next, left, static_cast<unsigned>(n));
                next.fail(Fault::Torn, m);
                openOnce(next);  // reads out of the journal when it cannot be taken back
                if (!next.hit()) {
                    break;
                }
                ++crashes;
                MemoryFolder last;
                next.copyTo(last, m % 2 == 0 ? Left::All : Left::Some, static_cast<unsigned>(m));
                openOnce(last);
                stateOf(last, done);
                ASSERT_FALSE(HasFailure());
            }
        }
    }
    std::cout << crashes << " crashes while a change was taken back\n";
    EXPECT_GT(crashes, 1000);
}

TEST_F(Crash, AnErrorTakesTheStatementBackAndItCanBeRepeated) {
    int errors = 0;
    for (const Fault fault : {Fault::Once, Fault::Full, Fault::Never}) {
        for (int n = 1;; ++n) {
            MemoryFolder folder;
            std::size_t done = 0;
            if (!runUntil(folder, fault, n, done)) {
                break;
            }
            SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault)
                                            << " at operation " << n << ", statement " << done + 1);
            ++errors;
            if (fault != Fault::Never && done < test::statements().size()) {
                // The file itself holds the old state already, without being opened again.
                EXPECT_TRUE(folder.bytes(kDatabase) == images_[done]);
            }
            folder.fail(Fault::None, 0);
            openOnce(folder);
            std::size_t end = 0;
            test::runStatements(folder, stateOf(folder, done), end);
            EXPECT_TRUE(folder.bytes(kDatabase) == images_.back());
            ASSERT_FALSE(HasFailure());
        }
    }
    std::cout << errors << " errors\n";
}

}  // namespace
}  // namespace vl
