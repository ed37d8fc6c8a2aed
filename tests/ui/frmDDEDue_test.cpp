// "Due" of the reminders' list: what the checks will do, after whatever its user has done.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QTest>

#include "ActsTest.h"

namespace vl {
namespace {

using test::someFriday;

class frmDDEDue : public test::ActsTest {
protected:
    std::string due(const char* GUID) const {
        const GridModel& model = WindowTest::listed(1).rows();
        const auto row = model.find(GUID);
        if (!row) {
            return "(not listed)";
        }
        const int column = columnIndex(reminderColumns(), CIDDue);
        return plainText(model.index(*row, column).data().toString());
    }
    QString detail(const char* GUID) const {
        const GridModel& model = WindowTest::listed(1).rows();
        return model.rows()[static_cast<std::size_t>(*model.find(GUID))].detail;
    }
    void refill() const { window->DoPeriod(); }
};

TEST_F(frmDDEDue, OfWhatWasSnoozedAndThenDismissedIsNotAhead) {
    loadThree();
    snoozeBy("2h");
    EXPECT_EQ(due("{1}"), "in 2 h");
    tabTo(1);
    select(1, {"{1}"});
    QTest::keyClick(&grid(1), Qt::Key_Delete);
    EXPECT_EQ(held("{1}")->NextReminder, someFriday().addMinutes(120)) << "it stays in the row";
    for (const int later : {0, 119, 127}) {
        clock.time = someFriday().addMinutes(later);
        refill();
        EXPECT_EQ(due("{1}"), "dismissed") << later;
    }
}

TEST_F(frmDDEDue, OfWhatWasSnoozedBeyondThePeriodIsThatTime) {
    loadThree();
    snoozeBy("1d");
    for (const char* shown : {"This Week", "Today"}) {
        child<QComboBox>("cboPeriod").setCurrentText(shown);
        refill();
        EXPECT_EQ(due("{1}"), "in 1 day") << shown;
        EXPECT_EQ(detail("{1}"), "(snoozed)") << shown;
    }
    EXPECT_EQ(due("{2}"), "10 min overdue") << "nobody has touched it";
    EXPECT_EQ(detail("{2}"), "(30 minutes)");
}

TEST_F(frmDDEDue, FollowsAnotherCopyOfTheProgram) {
    loadThree();
    EXPECT_EQ(due("{3}"), "now");
    const auto e = held("{3}");
    ledger.change(db.DBFullName, "{3}", "all", [&](EventState& known) {
        recordDismiss(known, {*e, e->StartDateTime, someFriday(), TimeZone::local()},
                      DismissMode::All);
    });
    refill();
    EXPECT_EQ(due("{3}"), "dismissed");
}

}  // namespace
}  // namespace vl
