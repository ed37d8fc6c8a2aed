#include "ui/ColumnNeeds.h"

#include <chrono>
#include <memory>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>

#include "Rows.h"
#include "ui/GridModel.h"

namespace vl {
namespace {

using test::reminderRow;
using test::someFriday;

class ColumnNeeds : public testing::Test {
protected:
    int need(const char* id) { return needs(model)[std::size_t(columnIndex(model.columns(), id))]; }
    std::vector<int> needs(const GridModel& of) { return neededWidths(of, metrics); }
    int width(const char* text) { return metrics.horizontalAdvance(QString::fromUtf8(text)); }
    static GridModel* modelOf(TimeText time) {
        auto* made = new GridModel(reminderColumns(), std::move(time));
        made->setNow(someFriday());
        return made;
    }

    QFontMetrics metrics{QApplication::font()};
    GridModel model{reminderColumns(), test::clockText};
};

TEST_F(ColumnNeeds, DatesAreAsWideAsTheLongestOfTheDaysAround) {
    model.setNow(someFriday());
    EXPECT_GE(need(CIDReminderD), width("Mon 30 Nov 20:38"));
    EXPECT_GE(need(CIDEventD), width("Yesterday 20:38"));
    EXPECT_LT(need(CIDReminderD), width("Mon 30 Nov 2027 20:38")) << "no year, nothing is so far";
    EXPECT_GE(need(CIDDue), width("2 h 58 min overdue"));
    EXPECT_LE(need(CIDDue), width("2 h 58 min overdue") + width("0"));
    EXPECT_EQ(need(CIDSubject), 0);
    EXPECT_EQ(need(CIDLocation), 0);
}

TEST_F(ColumnNeeds, TheYearIsSaidWhereARowIsThatFar) {
    model.setNow(someFriday());
    const int before = need(CIDReminderD);
    model.setRows({reminderRow("a", "a", 0), reminderRow("far", "far", 400 * 24 * 60)});
    EXPECT_GT(need(CIDReminderD), before);
    EXPECT_GE(need(CIDReminderD), width("25 Dec 2027 14:30"));
    model.setNow(DateTime::fromCivil(2026, 12, 20, 9, 0));
    model.setRows({});
    EXPECT_GE(need(CIDReminderD), width("Mon 18 Jan 2027 20:38")) << "it is near";
}

TEST_F(ColumnNeeds, FollowTheUsersTimeFormat) {
    const std::unique_ptr<GridModel> half(
        modelOf([](DateTime d) { return test::clockText(d) + " in the afternoon"; }));
    model.setNow(someFriday());
    const auto at = std::size_t(columnIndex(model.columns(), CIDReminderD));
    EXPECT_GE(needs(*half)[at], needs(model)[at] + width("in the afternoon"));
    EXPECT_EQ(needs(*half)[std::size_t(columnIndex(model.columns(), CIDDue))], need(CIDDue));
}

TEST_F(ColumnNeeds, AFieldIsAsWideAsItsLongestWordButNoSentence) {
    model.setNow(someFriday());
    EXPECT_EQ(need(CIDField), 0);
    GridRow row = reminderRow("a", "a", 0);
    row.field = "Appointments";
    GridRow other = reminderRow("b", "b", 0);
    other.field = "Work";
    model.setRows({row, other});
    EXPECT_EQ(need(CIDField), width("Appointments"));
    other.field = QString("A long sentence about a field").repeated(10);
    model.setRows({row, other});
    EXPECT_GT(need(CIDField), width("Appointments"));
    EXPECT_LE(need(CIDField), 22 * metrics.averageCharWidth());
}

TEST_F(ColumnNeeds, OfTenThousandRowsTakeNoTime) {
    model.setNow(someFriday());
    std::vector<GridRow> rows;
    rows.reserve(10'000);
    for (int i = 0; i < 10'000; ++i) {
        rows.push_back(reminderRow("{" + std::to_string(i) + "}", "Reminder", i));
    }
    model.setRows(std::move(rows));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_GT(need(CIDDue), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
}

}  // namespace
}  // namespace vl
