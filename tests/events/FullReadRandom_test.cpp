// A set that passes by what it knows holds what a set that knows nothing reads.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "events/CalEvents.h"
#include "support/EventFile.h"
#include "support/ManualClock.h"
#include "support/ManyEvents.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

std::vector<std::string> keysOf(const GenCollection& collection) {
    std::vector<std::string> keys;
    for (std::size_t i = 1; i <= collection.Count(); ++i) {
        keys.push_back(collection.Key(static_cast<std::int64_t>(i)));
    }
    return keys;
}

/// A host that writes whatever comes to its mind, and a set that reads after it.
class Host {
public:
    explicit Host(unsigned seed) : random_(seed), events_(kNow, seed) {
        db.DBFullName = path_.string();
        for (int i = 0; i < 150; ++i) {
            insert();
        }
    }

    int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

    std::string anyText() {
        static constexpr int lengths[] = {0, 5, 60, 700, 3000, 9000};
        return std::string(static_cast<std::size_t>(lengths[upTo(6)]),
                           static_cast<char>('a' + upTo(26)));
    }

    void insert() {
        const auto event = events_.next();
        event->JSON = anyText();
        file_->put(*event);
        guids_.push_back(event->GUID);
    }

    const std::string& any() {
        return guids_[static_cast<std::size_t>(upTo(static_cast<int>(guids_.size())))];
    }

    void change() {
        const std::string GUID = any();
        switch (upTo(9)) {
            case 0:
                insert();
                break;
            case 1:
                file_->remove(GUID);
                break;
            case 2:
                file_->change(GUID, {{"JSON", anyText()}});
                break;
            case 3:
                file_->change(GUID, {{"Body", anyText()}, {"Location", anyText().substr(0, 100)}});
                break;
            case 4:
                file_->change(GUID, {{"status", upTo(2) == 0 ? "AllDone" : ""}});
                break;
            case 5:
                file_->change(GUID, {{"deleted", upTo(2) == 0}});
                break;
            case 6:
                file_->change(GUID, {{"EventID", upTo(5)}});
                break;
            case 7:
                file_->change(GUID, {{"status", Variant(Null{})}});
                break;
            default:
                file_->remove(GUID);
                insert();
                break;
        }
    }

    /// Surely a change of the file.
    void write(int step) {
        std::string GUID = any();
        while (!file_->has(GUID)) {
            GUID = any();
        }
        file_->change(GUID, {{"LabelID", step + 1}});
    }

    /// The same file, copied: every byte is the same, but it is another file.
    void replace() {
        const fs::path copy = folder_ / "copy";
        fs::copy_file(path_, copy);
        fs::rename(copy, path_);
    }

    /// As an act does that cannot write the row.
    void touch(CalEvents& set) {
        const std::string GUID = any();
        if (const auto event = objectAt<calEvent>(*set.mCol, GUID)) {
            event->Dismissed = kNow.addDays(-upTo(100));
            set.LookAgain(GUID);
        }
    }

    test::TempFolder folder_;
    fs::path path_ = folder_ / "Velmora.RemindDB";
    std::unique_ptr<test::EventFile> file_ = std::make_unique<test::EventFile>(path_.string());
    DBRemindUtils db;

private:
    std::mt19937 random_;
    test::ManyEvents events_;
    std::vector<std::string> guids_;
};

void expectSame(const GenCollection& quick, const GenCollection& plain) {
    ASSERT_EQ(keysOf(quick), keysOf(plain));
    for (std::size_t i = 1; i <= plain.Count(); ++i) {
        const auto a = objectAt<calEvent>(quick, i);
        const auto b = objectAt<calEvent>(plain, i);
        ASSERT_TRUE(a && b && a->sameRow(*b)) << plain.Key(static_cast<std::int64_t>(i));
        EXPECT_EQ(a->RRULE, b->RRULE);
        EXPECT_EQ(quick.Position(b->GUID), i);
    }
}

class FullReadRandom : public testing::TestWithParam<unsigned> {};

TEST_P(FullReadRandom, GivesWhatAPlainReadGives) {
    Host host(GetParam());
    test::ManualClock clock{kNow};
    CalEvents set(host.db, clock);
    constexpr const char* kWithoutStatus =
        "SELECT COUNT(*) AS Missed FROM Reminders WHERE Deleted=0 AND Status is Null";
    std::size_t kept = 0;
    for (int step = 0; step < 80; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << GetParam() << ", step " << step);
        if (host.upTo(15) == 0) {
            host.replace();
        }
        if (set.mCol && host.upTo(5) == 0) {
            host.touch(set);
        }
        if (set.mCol && host.upTo(10) == 0) {
            set.ReadDB(false, false);
        }
        if (set.mCol && host.upTo(20) == 0) {
            set.UpdateAllDone();
        }
        if (host.upTo(30) == 0 && set.mCol && set.mCol->Count() > 0) {
            set.mCol->Remove(1);
        }
        // As long as nobody writes the set keeps what it has, whatever that is.
        for (int i = host.upTo(4); i > 0; --i) {
            host.change();
        }
        host.write(step);
        const GenCollection before = set.mCol ? *set.mCol : GenCollection();
        const bool all = host.upTo(12) == 0;
        set.ReadDB(true, all);

        DBRemindUtils fresh;
        fresh.DBFullName = host.db.DBFullName;
        CalEvents plain(fresh, clock);
        plain.ReadDB(true, all);
        expectSame(*set.mCol, *plain.mCol);
        EXPECT_EQ(keysOf(*host.db.GetDeletedCol()), keysOf(*fresh.GetDeletedCol()));
        EXPECT_EQ(host.db.OpenRSAgain(kWithoutStatus)->value("Missed"),
                  fresh.OpenRS(kWithoutStatus)->value("Missed"));
        host.db.CloseDB();
        for (const Variant& item : *set.mCol) {
            const auto event = objectIn<calEvent>(item);
            const auto was = objectAt<calEvent>(before, event->GUID);
            const bool same = was && was->sameRow(*event);
            EXPECT_TRUE(!same || was == event) << event->GUID;
            kept += same ? 1U : 0U;
        }
        if (HasFatalFailure()) {
            return;
        }
    }
    EXPECT_GT(kept, 3000U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FullReadRandom, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace vl
