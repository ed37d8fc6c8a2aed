#include "ui/GridModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTextDocument>

#include "Rows.h"
#include "ui/GridProxy.h"
#include "ui/QtText.h"
#include "ui/RowFill.h"

namespace vl {
namespace {

using test::clockText;
using test::reminderRow;
using test::someFriday;

constexpr auto kTester = QAbstractItemModelTester::FailureReportingMode::Fatal;

class GridModelTest : public testing::Test {
protected:
    GridModelTest() { model.setNow(someFriday()); }

    QString cell(int row, const char* id, int role = Qt::DisplayRole) const {
        return model.data(model.index(row, columnIndex(model.columns(), id)), role).toString();
    }

    GridModel model{reminderColumns(), clockText};
    QAbstractItemModelTester tester{&model, kTester};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy resets{&model, &QAbstractItemModel::modelReset};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
};

TEST_F(GridModelTest, ShowsWhatTheColumnsSay) {
    GridRow row = reminderRow("{A}", "Call the bank", -125);
    row.location = "Room 2";
    row.toolTip = "everything";
    model.putRow(row);
    EXPECT_EQ(cell(0, CIDSubject), "Call the bank\n(15 minutes)");
    EXPECT_EQ(cell(0, CIDSubject, Qt::AccessibleTextRole), "Call the bank\n(15 minutes)");
    EXPECT_EQ(cell(0, CIDSubject, Qt::ToolTipRole), "everything");
    EXPECT_EQ(cell(0, CIDDue), "2 h 5 min overdue");
    EXPECT_EQ(cell(0, CIDReminderD), "Today 12:25");
    EXPECT_EQ(cell(0, CIDReminderD, Qt::ToolTipRole), "Friday, 20 November 2026, 12:25");
    EXPECT_EQ(cell(0, CIDEventD), "Today 12:40");
    EXPECT_EQ(cell(0, CIDLocation), "Room 2");
}

TEST_F(GridModelTest, TipsAreNeverMarkup) {
    GridRow row = reminderRow("{A}", "x", 0);
    row.toolTip = "<b>Bold</b> & <i>sly</i> <img src=\"file:///secret.png\">\nRoom 2";
    row.location = "<u>Hall</u>";
    row.repeats = row.field = row.source = row.location;
    model.putRow(row);
    for (const auto& [id, wanted] : {std::pair{CIDSubject, row.toolTip},
                                     {CIDLocation, row.location},
                                     {CIDRepeats, row.repeats},
                                     {CIDField, row.field},
                                     {CIDSource, row.source}}) {
        SCOPED_TRACE(id);
        QTextDocument shown;
        shown.setHtml(cell(0, id, Qt::ToolTipRole));
        EXPECT_EQ(shown.toPlainText(), wanted) << "as a tool tip reads it";
    }
}

TEST_F(GridModelTest, FindsRowsWithoutRegardToCase) {
    model.putRow(reminderRow("{ab-C}", "a", 0));
    EXPECT_EQ(model.find("{AB-c}"), 0);
    EXPECT_EQ(model.find("{AB}"), std::nullopt);
    model.putRow(reminderRow("{AB-C}", "b", 0));
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(cell(0, CIDSubject), "b\n(15 minutes)");
}

TEST_F(GridModelTest, KeepsItsIndexWhenRowsGo) {
    for (const char* GUID : {"1", "2", "3", "4"}) {
        model.putRow(reminderRow(GUID, GUID, 0));
    }
    EXPECT_TRUE(model.removeRow("2"));
    EXPECT_FALSE(model.removeRow("2"));
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(model.find("1"), 0);
    EXPECT_EQ(model.find("3"), 1);
    EXPECT_EQ(model.find("4"), 2);
    model.putRow(reminderRow("5", "5", 0));
    EXPECT_EQ(model.find("5"), 3);
}

TEST_F(GridModelTest, AnEqualRefillIsSilent) {
    const std::vector<GridRow> rows{reminderRow("1", "a", 0), reminderRow("2", "b", 5)};
    model.setRows(rows);
    EXPECT_EQ(resets.count(), 1);
    model.setRows(rows);
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(changed.count(), 0);
}

TEST_F(GridModelTest, ARefillAnnouncesOnlyRowsThatLookDifferent) {
    std::vector<GridRow> rows{reminderRow("1", "a", 0), reminderRow("2", "b", 5)};
    model.setRows(rows);
    rows[1].location = "Room 3";
    model.setRows(rows);
    EXPECT_EQ(resets.count(), 1);
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 1);
}

TEST_F(GridModelTest, TheLiveColumnChangesWithTheMinute) {
    model.putRow(reminderRow("1", "a", 10));
    model.setNow(someFriday().addSeconds(59));
    EXPECT_EQ(changed.count(), 0);
    model.setNow(someFriday().addSeconds(60));
    ASSERT_EQ(changed.count(), 1);
    const int due = columnIndex(model.columns(), CIDDue);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().column(), due);
    EXPECT_EQ(changed.at(0).at(1).toModelIndex().column(), due);
    EXPECT_EQ(cell(0, CIDDue), "in 9 min");
}

TEST_F(GridModelTest, EveryColumnChangesWithTheDay) {
    model.putRow(reminderRow("1", "a", 10));
    model.setNow(someFriday().date().addDays(1));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().column(), 0);
    EXPECT_EQ(changed.at(0).at(1).toModelIndex().column(), model.columnCount() - 1);
    EXPECT_EQ(cell(0, CIDReminderD), "Yesterday 14:40");
}

TEST_F(GridModelTest, TheDismissedViewShowsWhenItWas) {
    GridRow row = reminderRow("1", "a", 10);
    row.dismissed = someFriday().addDays(-1);
    model.putRow(row);
    const int column = columnIndex(model.columns(), CIDEventD);
    EXPECT_EQ(model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), "Event Date");
    model.setDismissedView(true);
    EXPECT_EQ(model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), "Dismissed");
    EXPECT_EQ(cell(0, CIDEventD), "Yesterday 14:30");
}

// "This reminder" of a series or of an event with several leaves the later ones alive.
TEST_F(GridModelTest, DueSaysWhatBecomesOfTheRowsOwnReminder) {
    struct Case {
        Fate fate;
        int due;  // minutes from now
        const char* text;
        DueState state;
    };
    static constexpr Case cases[] = {
        {Fate::DealtWith, -90, "dismissed", DueState::None},
        {Fate::DealtWith, 90, "dismissed", DueState::None},
        {Fate::Moved, 90, "moved", DueState::None},
        {Fate::Comes, -90, "1 h 30 min overdue", DueState::Past},
        {Fate::Comes, 90, "in 1 h 30 min", DueState::Ahead},
        {Fate::Snoozed, 1500, "in 1 day", DueState::Ahead},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        GridRow row = reminderRow("{A}", "x", c.due);
        row.dismissed = someFriday().addMinutes(-5);
        row.fate = c.fate;
        model.putRow(row);
        EXPECT_EQ(plainText(cell(0, CIDDue)), c.text);
        EXPECT_EQ(rowState(row, someFriday()), c.state);
        EXPECT_EQ(isDealtWith(row), c.state == DueState::None);
        EXPECT_EQ(cell(0, CIDSubject, Qt::AccessibleDescriptionRole), "dismissed");
        row.ofEvent = true;
        EXPECT_FALSE(isDealtWith(row)) << "an event is past, not dealt with";
    }
    model.putRow(reminderRow("{A}", "x", -5));
    EXPECT_EQ(cell(0, CIDSubject, Qt::AccessibleDescriptionRole), "");
}

// Its reminder stands in the lists as it was planned, or as it was snoozed before.
TEST_F(GridModelTest, ARowIsToldWhatHasBecomeOfItsReminder) {
    const DateTime then = someFriday().addDays(1);
    GridRow row = reminderRow("{A}", "x", -5);
    const GridRow planned = row;
    tellDue(row, {row.reminder, Fate::DealtWith});
    EXPECT_EQ(row.due, planned.due);
    EXPECT_EQ(row.detail, planned.detail);
    EXPECT_EQ(row.fate, Fate::DealtWith);
    EXPECT_FALSE(showsTheSame(row, planned));
    tellDue(row, {then, Fate::Snoozed});
    EXPECT_EQ(row.due, then);
    EXPECT_EQ(row.reminder, planned.reminder) << "an act is on what the row was listed with";
    EXPECT_EQ(row.detail, "(snoozed)");
    tellDue(row, {someFriday(), Fate::Comes});
    EXPECT_EQ(row.due, someFriday());
    EXPECT_EQ(row.detail, "") << "it is not the one that the words are about";
}

TEST(GridColumns, EveryIdIsThereOnceAndHasAHeading) {
    for (const int grid : {0, 1, 2}) {
        const auto columns = gridColumns(grid);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            SCOPED_TRACE(testing::Message() << grid << ' ' << columns[i].id);
            EXPECT_EQ(columnIndex(columns, columns[i].id), static_cast<int>(i));
            EXPECT_STRNE(columns[i].heading, "");
            EXPECT_STRNE(columns[i].dismissedHeading, "");
            EXPECT_GT(columns[i].width, 0);
        }
    }
    EXPECT_EQ(columnIndex(reminderColumns(), CIDEnds), -1);
    EXPECT_EQ(columnIndex(eventColumns(), CIDReminderD), -1);
}

class GridProxyTest : public testing::Test {
protected:
    QString order() const {
        QString names;
        for (int i = 0; i < proxy.rowCount(); ++i) {
            names += proxy.row(i).GUID;
        }
        return names;
    }
    void sortBy(const char* id, Qt::SortOrder how = Qt::AscendingOrder) {
        proxy.sort(columnIndex(model.columns(), id), how);
    }

    GridModel model{reminderColumns(), clockText};
    GridProxy proxy{model};
    QAbstractItemModelTester tester{&proxy, kTester};
};

TEST_F(GridProxyTest, SortsDatesAsDates) {
    model.setRows({reminderRow("a", "x", 9 * 24 * 60), reminderRow("b", "x", -5),
                   reminderRow("c", "x", 100)});
    sortBy(CIDDue);
    EXPECT_EQ(order(), "bca");  // as texts "in 1 h", "in 9 days" and "5 min overdue" go another way
    sortBy(CIDReminderD, Qt::DescendingOrder);
    EXPECT_EQ(order(), "acb");
}

TEST_F(GridProxyTest, SortsTextsWithoutCaseAndNumbersByValue) {
    model.setRows({reminderRow("a", "week 10", 0), reminderRow("b", "Week 9", 0),
                   reminderRow("c", "apple", 0), reminderRow("d", "Zoo", 0)});
    sortBy(CIDSubject);
    EXPECT_EQ(order(), "cbad");
}

TEST_F(GridProxyTest, EqualRowsStayInTheirOrder) {
    model.setRows({reminderRow("a", "same", 1), reminderRow("b", "same", 2),
                   reminderRow("c", "Same", 3), reminderRow("d", "first", 4)});
    sortBy(CIDSubject);
    EXPECT_EQ(order(), "dabc");
    sortBy(CIDSubject, Qt::DescendingOrder);
    EXPECT_EQ(order(), "abcd");
}

TEST_F(GridProxyTest, SearchesSummaryAndLocation) {
    GridRow meeting = reminderRow("a", "Project meeting", 0);
    meeting.location = "Room 2";
    model.setRows({meeting, reminderRow("b", "Dentist", 0), reminderRow("c", "Über uns", 0)});
    struct Case {
        const char* search;
        const char* left;
    };
    static constexpr Case cases[] =
        {
            {"", "abc"},     {"meet", "a"}, {"ROOM", "a"}, {"room meeting", "a"},
            {"  ", "abc"},   {"über", "c"}, {"ÜBER", "c"}, {"room dentist", ""},
            {"minutes", ""},  // the second line is not searched
        };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.search);
        proxy.setSearch(QString::fromUtf8(c.search));
        EXPECT_EQ(order(), c.left);
    }
}

TEST_F(GridProxyTest, ARowThatChangesMovesToItsPlace) {
    model.setRows({reminderRow("a", "x", 1), reminderRow("b", "x", 2)});
    sortBy(CIDReminderD);
    model.putRow(reminderRow("a", "x", 3));
    EXPECT_EQ(order(), "ba");
}

}  // namespace
}  // namespace vl
