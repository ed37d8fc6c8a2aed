// A set that passes by what it knows holds what a set that knows nothing reads.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "RandomHost.h"
#include "events/CalEvents.h"
#include "support/ManualClock.h"

namespace vl {
namespace {

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

std::vector<std::string> keysOf(const GenCollection& collection) {
    std::vector<std::string> keys;
    for (std::size_t i = 1; i <= collection.Count(); ++i) {
        keys.push_back(collection.Key(static_cast<std::int64_t>(i)));
    }
    return keys;
}

void expectSame(const GenCollection& quick, const GenCollection& plain) {
    ASSERT_EQ(keysOf(quick), keysOf(plain));
    for (std::size_t i = 1; i <= plain.Count(); ++i) {
        const auto a = objectAt<calEvent>(quick, i);
        const auto b = objectAt<calEvent>(plain, i);
        ASSERT_TRUE(a && b && a->sameRow(*b)) << plain.Key(static_cast<std::int64_t>(i));
        // Events with equal lines have had them read once.
        calEvent alone = *b;
        alone.LoadRecurrence();
        EXPECT_EQ(a->RRULE, alone.RRULE);
        const DateTime from = kNow.addDays(-400);
        EXPECT_EQ(a->ICalRecEvents(from, kNow, 50), alone.ICalRecEvents(from, kNow, 50));
        EXPECT_EQ(quick.Position(b->GUID), i);
    }
}

class FullReadRandom : public testing::TestWithParam<unsigned> {};

TEST_P(FullReadRandom, GivesWhatAPlainReadGives) {
    test::RandomHost host(kNow, GetParam());
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
