// Two sets of which one finds what has changed by reading for the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "RandomHost.h"
#include "events/CalEvents.h"
#include "support/EventFile.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

class ReadTogether : public testing::Test {
protected:
    ReadTogether() {
        db.DBFullName = file.path();
        std::vector<std::shared_ptr<calEvent>> events;
        for (int i = 0; i < 300; ++i) {
            const auto event = std::make_shared<calEvent>();
            event->GUID = nameOf(i);
            event->Subject = "first";
            event->StartDateTime = kNow.addDays(1);
            event->Modified = kNow.addDays(-1);
            events.push_back(event);
        }
        file.put(events);
        period.ReadDB(true, false);
        reminders.Adopt(period);
        reminders.ReadWith(period);
        clock.time = kNow.addSeconds(20);
    }
    static std::string nameOf(int number) { return "event " + std::to_string(number); }
    /// Another write in the same second is seen by the header's counters alone: here by its time.
    void touchFile() { fs::last_write_time(file.path(), written += std::chrono::seconds(1)); }
    void change(int number, const std::string& subject, DateTime Modified) {
        file.change(nameOf(number), {{"Subject", subject}, {"Modified", Modified}});
        touchFile();
    }
    static std::shared_ptr<calEvent> in(const CalEvents& set, int number) {
        return objectAt<calEvent>(*set.mCol, nameOf(number));
    }

    test::TempFolder folder;
    test::EventFile file{(folder / "Velmora.RemindDB").string()};
    fs::file_time_type written = fs::file_time_type::clock::now();
    test::ManualClock clock{kNow};
    DBRemindUtils db;
    CalEvents period{db, clock};
    CalEvents reminders{db, clock};
};

TEST_F(ReadTogether, ARowIsDecodedOnceForBoth) {
    const auto untouched = in(reminders, 8);
    change(7, "second", kNow.addSeconds(15));
    EXPECT_EQ(reminders.ReadDB(false, false), 1);
    EXPECT_TRUE(reminders.IsRead());
    EXPECT_EQ(reminders.dLastRead, clock.time);
    const auto event = in(reminders, 7);
    EXPECT_EQ(event->Subject, "second");
    EXPECT_EQ(in(period, 7)->Subject, "first") << "that set has not been read yet";
    EXPECT_EQ(period.ReadDB(true, false), 1);
    EXPECT_EQ(in(period, 7), event);
    EXPECT_EQ(in(period, 8), untouched);
    EXPECT_EQ(period.mCol->Position(nameOf(7)), 8U);
    EXPECT_EQ(period.mCol->Count(), 300U);
    reminders.Adopt(period);
    EXPECT_EQ(reminders.ReadDB(false, false), 0) << "nobody has written";
}

TEST_F(ReadTogether, HoweverManyHaveChanged) {
    DBRemindUtils host;
    host.DBFullName = file.path();
    ASSERT_EQ(host.Execute("UPDATE Reminders SET Subject = \"second\", Modified = " +
                           DBRemindUtils::ToSQLDateTime(kNow.addSeconds(15), true)),
              300);
    touchFile();
    EXPECT_EQ(reminders.ReadDB(false, false), 1);
    period.ReadDB(true, false);
    EXPECT_EQ(reminders.mCol->Count(), 300U);
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(in(period, i)->Subject, "second");
        ASSERT_EQ(in(reminders, i), in(period, i));
        ASSERT_EQ(period.mCol->Position(nameOf(i)), static_cast<std::size_t>(i) + 1);
    }
}

TEST_F(ReadTogether, TheIncrementalReadTakesWhatWasModifiedSinceAndRemovesNothing) {
    change(3, "of the second of the last read", kNow);
    change(4, "one later", kNow.addSeconds(1));
    file.remove(nameOf(5));
    file.change(nameOf(6), {{"deleted", true}, {"Modified", kNow.addSeconds(1)}});
    touchFile();
    EXPECT_EQ(reminders.ReadDB(false, false), 1);
    EXPECT_EQ(in(reminders, 3)->Subject, "first");
    EXPECT_EQ(in(reminders, 4)->Subject, "one later");
    EXPECT_NE(in(reminders, 5), nullptr);
    EXPECT_NE(in(reminders, 6), nullptr);
    period.ReadDB(true, false);
    reminders.Adopt(period);
    EXPECT_EQ(in(reminders, 3)->Subject, "of the second of the last read");
    EXPECT_EQ(reminders.mCol->Count(), 298U);
}

TEST_F(ReadTogether, WithoutAnyRowModifiedSinceItGivesNone) {
    change(3, "second", kNow.addDays(-1));
    EXPECT_EQ(reminders.ReadDB(false, false), 0);
    EXPECT_TRUE(reminders.IsRead());
}

TEST_F(ReadTogether, ARowThatIsAheadOfTheClockNoMoreIsForgotten) {
    change(0, "ahead", kNow.addDays(1));
    CalEvents all(db, clock);
    all.ReadDB(true, false);
    CalEvents since(db, clock);
    since.Adopt(all);
    since.ReadWith(all);
    EXPECT_EQ(since.ReadDB(false, false), 1) << "as long as it is";
    change(0, "no more", kNow.addDays(-1));
    EXPECT_EQ(since.ReadDB(false, false), 0);
}

TEST_F(ReadTogether, WhatIsWrittenMeanwhileTheReloadReads) {
    change(7, "second", kNow.addSeconds(15));
    reminders.ReadDB(false, false);
    change(7, "third", kNow.addSeconds(18));
    change(9, "third", kNow.addSeconds(18));
    period.ReadDB(true, false);
    EXPECT_EQ(in(period, 7)->Subject, "third");
    EXPECT_EQ(in(period, 9)->Subject, "third");
    EXPECT_EQ(in(reminders, 7)->Subject, "second");
}

TEST_F(ReadTogether, OfAnEventTouchedMeanwhileTheReloadTakesItsRowsWord) {
    change(7, "second", kNow.addSeconds(15));
    reminders.ReadDB(false, false);
    in(period, 8)->Dismissed = kNow;
    period.LookAgain(nameOf(8));
    period.ReadDB(true, false);
    EXPECT_TRUE(in(period, 8)->Dismissed.isZero());
    EXPECT_EQ(in(period, 7), in(reminders, 7));
}

TEST_F(ReadTogether, WhatAReadHasLeftForTheReloadServesOnce) {
    change(7, "second", kNow.addSeconds(15));
    reminders.ReadDB(false, false);
    period.ReadDB(true, false);
    period.mCol->Remove(nameOf(9));
    period.ReadAnew();
    period.ReadDB(true, false);
    EXPECT_NE(in(period, 9), nullptr);
    EXPECT_EQ(period.mCol->Count(), 300U);
}

TEST_F(ReadTogether, AnotherQuestionIsNotAnsweredByIt) {
    file.change(nameOf(8), {{"status", "AllDone"}, {"Modified", kNow.addSeconds(15)}});
    change(7, "second", kNow.addSeconds(15));
    reminders.ReadDB(false, false);
    period.ReadDB(true, true);
    EXPECT_EQ(period.mCol->Count(), 300U);
    period.ReadDB(true, false);
    EXPECT_EQ(period.mCol->Count(), 299U);
    EXPECT_EQ(in(reminders, 8)->status, "");
    reminders.dLastRead = kNow;
    EXPECT_EQ(reminders.ReadDB(false, true), 1);
    EXPECT_EQ(in(reminders, 8)->status, "AllDone");
}

TEST_F(ReadTogether, AReadThatFailsLeavesTheSetAndNothingForTheReload) {
    const std::string good = test::readFile(file.path());
    test::writeFile(file.path(), "no database");
    EXPECT_EQ(reminders.ReadDB(false, false), 0);
    EXPECT_FALSE(reminders.IsRead());
    EXPECT_EQ(reminders.mCol->Count(), 300U);
    test::writeFile(file.path(), good);
    change(7, "second", kNow.addSeconds(15));
    EXPECT_EQ(period.ReadDB(true, false), 1);
    EXPECT_EQ(in(period, 7)->Subject, "second");
}

/// The program's two sets over the host's file.
struct Sets {
    Sets(const std::string& path, const Clock& clock) : reminders(db, clock), period(db, clock) {
        db.DBFullName = path;
        period.ReadDB(true, false);
        reminders.Adopt(period);
    }
    void touch(const std::string& GUID, DateTime Dismissed) {
        for (CalEvents* set : {&reminders, &period}) {
            if (const auto event = objectAt<calEvent>(*set->mCol, GUID)) {
                event->Dismissed = Dismissed;
            }
            set->LookAgain(GUID);
        }
    }

    DBRemindUtils db;
    CalEvents reminders;
    CalEvents period;
};

using ByKey = std::map<std::string, std::shared_ptr<calEvent>>;

ByKey byKey(const CalEvents& set) {
    ByKey events;
    for (const Variant& item : *set.mCol) {
        const auto event = objectIn<calEvent>(item);
        events.emplace(event->GUID, event);
    }
    return events;
}

// Whatever their order: what an incremental read replaces goes to the end as it comes.
void expectSameEvents(const CalEvents& one, const CalEvents& other) {
    const ByKey events = byKey(one);
    const ByKey others = byKey(other);
    ASSERT_EQ(events.size(), others.size());
    ASSERT_EQ(events.size(), one.mCol->Count());
    for (const auto& [GUID, event] : events) {
        const auto same = others.find(GUID);
        ASSERT_NE(same, others.end()) << GUID;
        ASSERT_TRUE(event->sameRow(*same->second)) << GUID;
    }
}

class ReadTogetherRandom : public testing::TestWithParam<unsigned> {};

TEST_P(ReadTogetherRandom, FindsWhatEachFindsAlone) {
    test::RandomHost host(kNow, GetParam());
    test::ManualClock clock{kNow};
    Sets together(host.path(), clock);
    Sets alone(host.path(), clock);
    together.reminders.ReadWith(together.period);
    std::size_t shared = 0;
    for (int step = 0; step < 80; ++step) {
        SCOPED_TRACE(testing::Message() << "seed " << GetParam() << ", step " << step);
        const auto touchAny = [&] {
            const std::string GUID = host.any();
            const DateTime Dismissed = kNow.addDays(-host.upTo(100));
            together.touch(GUID, Dismissed);
            alone.touch(GUID, Dismissed);
        };
        const auto writeAny = [&](int most) {
            for (int i = host.upTo(most); i > 0; --i) {
                host.change();
                host.stamp(clock.time.addSeconds(host.upTo(20) - 10));
            }
        };
        if (host.upTo(4) == 0) {
            touchAny();
        }
        writeAny(host.upTo(6) == 0 ? 100 : 4);
        host.write(step);
        clock.time = clock.time.addSeconds(10);
        ASSERT_EQ(together.reminders.ReadDB(false, false), alone.reminders.ReadDB(false, false));
        ASSERT_NO_FATAL_FAILURE(expectSameEvents(together.reminders, alone.reminders));
        if (host.upTo(4) == 0) {
            touchAny();
        }
        if (host.upTo(4) == 0) {
            writeAny(4);
            host.write(step + 1000);
        }
        if (host.upTo(6) == 0) {
            together.period.mCol->Remove(1);
            alone.period.mCol->Remove(1);
        }
        ASSERT_EQ(together.period.ReadDB(true, false), alone.period.ReadDB(true, false));
        ASSERT_NO_FATAL_FAILURE(expectSameEvents(together.period, alone.period));
        for (const auto& [GUID, event] : byKey(together.reminders)) {
            shared += objectAt<calEvent>(*together.period.mCol, GUID) == event ? 1U : 0U;
        }
        for (std::size_t i = 1; i <= alone.period.mCol->Count(); ++i) {
            const auto position = static_cast<std::int64_t>(i);
            ASSERT_EQ(together.period.mCol->Key(position), alone.period.mCol->Key(position));
        }
        together.reminders.Adopt(together.period);
        alone.reminders.Adopt(alone.period);
    }
    EXPECT_GT(shared, 5000U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ReadTogetherRandom, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace vl
