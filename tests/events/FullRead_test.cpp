// What a full read keeps of rows that its statement's condition passes over.
#include "FullRead.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "events/Ledger.h"
#include "support/EventFile.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);
constexpr const char* kOpen = "SELECT * FROM Reminders WHERE Deleted=0 AND Status <> \"AllDone\"";

class TakenBack : public testing::Test {
protected:
    TakenBack() {
        db.DBFullName = file.path();
        put("Done", "AllDone");
        put("Again", "AllDone");
        put("Open", "");
        full.takeBack(isOpenAgain);
    }

    void put(const std::string& GUID, const std::string& status, DateTime start = kNow.addDays(1)) {
        calEvent event;
        event.GUID = GUID;
        event.id = GUID;
        event.status = status;
        event.StartDateTime = start;
        event.EndDateTime = event.StartDateTime.addMinutes(30);
        file.put(event);
    }

    void read(DateTime now) {
        asked.clear();
        const GenCollection before = held ? *held : GenCollection();
        held = full.read(db, kOpen, before, now, [](const FullRead::Fill& fill) {
            auto event = std::make_shared<calEvent>();
            fill(*event);
            return event;
        });
        db.CloseDB();
    }

    std::vector<std::string> keys() const {
        std::vector<std::string> found;
        for (const Variant& item : *held) {
            found.push_back(objectIn<calEvent>(item)->GUID);
        }
        return found;
    }

    using Names = std::vector<std::string>;
    test::TempFolder folder;
    test::EventFile file{(folder / "Velmora.RemindDB").string()};
    DBRemindUtils db;
    FullRead full;
    Names asked;
    std::string open = "Again";
    FullRead::IsOpenAgain isOpenAgain = [this](const calEvent& event) {
        asked.push_back(event.GUID);
        return event.GUID == open;
    };
    std::shared_ptr<GenCollection> held;
};

TEST_F(TakenBack, IsAskedOfWhatHasNothingToComeOnlyWhereItIsNamed) {
    put("Over", "AllDone", kNow.addDays(-3));
    open = "Over";
    read(kNow);
    EXPECT_EQ(asked, (Names{"Done", "Again"}));
    EXPECT_EQ(keys(), Names{"Open"});
    full.takeBack(isOpenAgain, {guidHash("OVER")});
    read(kNow);
    EXPECT_EQ(asked, Names()) << "nothing of it has changed";
    full.forgetPassedOver();
    read(kNow);
    EXPECT_EQ(asked, (Names{"Done", "Again", "Over"}));
    EXPECT_EQ(keys(), (Names{"Open", "Over"}));
}

// Its row could not be written, and the reminder that it was taken in for has just come.
TEST_F(TakenBack, StaysWhenAnotherRowOfItsPageChangesAndItsTimeHasCome) {
    read(kNow);
    ASSERT_EQ(asked, (Names{"Done", "Again"}));
    ASSERT_EQ(keys(), (Names{"Again", "Open"}));
    EXPECT_EQ(full.takeTakenBack(), Names{"Again"});
    const auto again = objectAt<calEvent>(*held, "Again");
    EXPECT_EQ(again->status, "");

    open.clear();
    file.change("Open", {{"Subject", "changed"}});
    read(kNow.addDays(2));
    EXPECT_EQ(objectAt<calEvent>(*held, "Open")->Subject, "changed");
    EXPECT_EQ(asked, Names()) << "nothing of these rows has changed";
    EXPECT_EQ(objectAt<calEvent>(*held, "Again"), again);
    EXPECT_EQ(full.takeTakenBack(), Names());

    full.lookAtAll();
    read(kNow.addDays(2));
    EXPECT_EQ(asked, Names());
    EXPECT_EQ(objectAt<calEvent>(*held, "Again"), again);
}

TEST_F(TakenBack, IsAskedAboutAgainAfterAnAct) {
    read(kNow);
    const auto again = objectAt<calEvent>(*held, "Again");
    open.clear();
    again->Dismissed = kNow;
    full.look(*again);
    read(kNow);
    EXPECT_EQ(asked, Names{"Again"});
    EXPECT_EQ(keys(), Names{"Open"});
}

TEST_F(TakenBack, IsAskedAboutAgainWhenItsRowChanges) {
    read(kNow);
    file.change("Again", {{"Subject", "changed"}});
    read(kNow);
    EXPECT_EQ(asked, Names{"Again"});
    EXPECT_EQ(objectAt<calEvent>(*held, "Again")->Subject, "changed");
}

TEST_F(TakenBack, WhatWasPassedOverIsLookedAtAgainThoughThePageHoldsTheSame) {
    read(kNow);
    const auto again = objectAt<calEvent>(*held, "Again");
    read(kNow);
    EXPECT_EQ(asked, Names());
    full.forgetPassedOver();
    open = "Done";
    read(kNow);
    EXPECT_EQ(asked, Names{"Done"});
    EXPECT_EQ(keys(), (Names{"Done", "Again", "Open"}));
    EXPECT_EQ(objectAt<calEvent>(*held, "Again"), again);
}

// ---- a damaged file that somebody writes while it is read

class TouchedWhileRead : public testing::Test {
protected:
    TouchedWhileRead() {
        test::writeFile(path, bytes);
        db.DBFullName = path.string();
    }
    void damage() {
        bytes.at(36 * 4096) = 9;  // a page with the JSON of one event
        test::writeFile(path, bytes);
    }
    std::shared_ptr<GenCollection> read(const GenCollection& before) {
        auto all = full.read(db, kOpen, before, kNow, [this](const FullRead::Fill& fill) {
            if (touches) {
                fs::last_write_time(path, written += std::chrono::seconds(1));
            }
            auto event = std::make_shared<calEvent>();
            fill(*event);
            return event;
        });
        db.CloseDB();
        return all;
    }

    test::TempFolder folder;
    fs::path path = folder / "Velmora.RemindDB";
    fs::file_time_type written = fs::file_time_type::clock::now();
    std::string bytes = test::readFile(test::repoFile("data/first-light.RemindDB"));
    DBRemindUtils db;
    FullRead full;
    bool touches = false;
};

TEST_F(TouchedWhileRead, IsNotReadAtAll) {
    const auto before = read(GenCollection());
    ASSERT_TRUE(before);
    EXPECT_EQ(before->Count(), 10U);

    damage();
    touches = true;
    EXPECT_FALSE(read(*before)) << "what looks damaged may only be torn";
    EXPECT_EQ(db.ReadTrouble().number, ErrNo::None) << "to its end it could be read";
    EXPECT_EQ(full.damage().rows, 0U);
    EXPECT_TRUE(full.damage().inPart.empty());

    touches = false;
    const auto after = read(*before);
    ASSERT_TRUE(after);
    EXPECT_EQ(after->Count(), 10U);
    EXPECT_EQ(full.damage().rows, 1U);
}

// Nor is anything of it kept: what is known of the damage is what the last reading found.
TEST_F(TouchedWhileRead, LeavesWhatWasKnownOfDamageAsItWas) {
    damage();
    const auto before = read(GenCollection());
    ASSERT_TRUE(before);
    const auto inPart = full.damage().inPart;
    EXPECT_EQ(full.damage().rows, 1U);
    EXPECT_EQ(inPart.size(), 1U);

    bytes.at(23 * 4096) = 9;  // a page with rows
    test::writeFile(path, bytes);
    touches = true;
    EXPECT_FALSE(read(*before));
    EXPECT_EQ(full.damage().rows, 1U);
    EXPECT_EQ(full.damage().inPart, inPart);

    touches = false;
    ASSERT_TRUE(read(*before));
    EXPECT_GT(full.damage().rows, 1U);
}

}  // namespace
}  // namespace vl
