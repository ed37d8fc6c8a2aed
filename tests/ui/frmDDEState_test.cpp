// The window's public state: who keeps it, and who goes by it.
#include <gtest/gtest.h>

#include <QHeaderView>
#include <QTabWidget>

#include "ActsTest.h"

namespace vl {
namespace {

using test::someFriday;

class frmDDEState : public test::ActsTest {
protected:
    std::string hidden() const { return state.HiddenGUIDColR->SaveAsList(","); }
};

TEST_F(frmDDEState, KnowsWhereEachPeriodStandsInItsList) {
    settings.SaveIni("Reminders", "Period", "w+1");
    load();
    EXPECT_EQ(state.sPeriod, "W+1") << "as it stands in the list";
    EXPECT_EQ(state.ListIndexCol->Item("W+1"), Variant(13));
    ASSERT_EQ(state.ListIndexCol->Count(), static_cast<std::size_t>(list().count()));
    EXPECT_EQ(list().currentIndex(), 12);
    for (int i = 0; i < list().count(); ++i) {
        EXPECT_EQ(state.ListIndexCol->Position(plainText(list().itemData(i).toString())),
                  static_cast<std::size_t>(i) + 1);
    }
}

TEST_F(frmDDEState, HiddenEventsAreListedWhenTheSetChangesAndByTheActs) {
    loadThree();
    EXPECT_EQ(hidden(), "");
    tabTo(kEventsGrid);
    select(kEventsGrid, {"{1}", "{3}"});
    child<QPushButton>("butSnooze").click();
    EXPECT_EQ(hidden(), "{1},{3}");
    const auto read = std::make_shared<calEvent>(*held("{2}"));
    read->Hidden = true;  // by another copy of the program
    period.mCol->Add(Variant(ObjectRef(read)), "{2}", 0, 0, true);
    window->DoPeriod();
    EXPECT_EQ(hidden(), "{1},{2},{3}");
    child<QComboBox>("cboPeriod").setCurrentText("Hidden");
    select(kEventsGrid, {"{1}"});
    child<QPushButton>("butSnooze").click();
    EXPECT_EQ(hidden(), "{2},{3}");
}

TEST_F(frmDDEState, TheViewsGoByTheListOfHiddenEvents) {
    loadThree();
    state.HiddenGUIDColR->Add("{2}", "{2}");
    window->DoPeriod();
    EXPECT_EQ(listed(kEventsGrid), (Names{"{1}", "{3}"}));
    EXPECT_EQ(listed(kAllRemindersGrid), (Names{"{1}", "{3}"}));
    EXPECT_EQ(listed(kNewRemindersGrid).size(), 3U);
    window->AddItemR(held("{2}"), kAllRemindersGrid);
    EXPECT_EQ(listed(kAllRemindersGrid), (Names{"{1}", "{3}"}));
    child<QComboBox>("cboPeriod").setCurrentText("Hidden");
    EXPECT_EQ(listed(kEventsGrid), Names{"{2}"});
}

// What was hidden last is counted at once, too.
TEST_F(frmDDEState, AnEmptyGridTellsHowManyAreHidden) {
    loadThree();
    haveDatabase();
    tabTo(kEventsGrid);
    select(kEventsGrid, {"{1}", "{2}", "{3}"});
    child<QPushButton>("butSnooze").click();
    EXPECT_EQ(plainText(grid(kEventsGrid).emptyText()),
              "No events in the period \"Today\" (3 hidden)");
    EXPECT_EQ(plainText(grid(kAllRemindersGrid).emptyText()),
              "No reminders in the period \"Today\" (3 hidden)");
    child<QComboBox>("cboPeriod").setCurrentText("Tomorrow");
    EXPECT_EQ(plainText(grid(kEventsGrid).emptyText()), "No events in the period \"Tomorrow\"");
}

TEST_F(frmDDEState, CurrentEventAndReminderFollowTheCurrentRowOfTheSelectedTab) {
    loadThree();
    const auto current = [&] {
        return state.curEvent ? state.curEvent->GUID.str() : std::string("none");
    };
    const auto occurrence = [](std::int64_t i, bool reminds) {
        const DateTime start = someFriday().addMinutes(i * 10);
        return RowOccurrence{start, reminds ? start.addMinutes(-30) : DateTime()};
    };
    EXPECT_EQ(current(), "{1}");
    EXPECT_EQ(state.curReminder, occurrence(1, true));
    window->SelectGUID("{3}");
    EXPECT_EQ(current(), "{3}");
    EXPECT_EQ(state.curReminder, occurrence(3, true));
    tabTo(kEventsGrid);
    window->SelectGUID("{2}");
    EXPECT_EQ(current(), "{2}");
    EXPECT_EQ(state.curReminder, occurrence(2, false)) << "a row of events shows none";
    tabTo(kNewRemindersGrid);
    EXPECT_EQ(current(), "{3}");
    EXPECT_EQ(state.curReminder, occurrence(3, true));
    for (const char* GUID : {"{1}", "{2}", "{3}"}) {
        window->RemoveGUID(GUID, kNewRemindersGrid);
    }
    EXPECT_EQ(current(), "none");
    EXPECT_EQ(state.curReminder, RowOccurrence());
}

// It is dealt with, but the row that was current is another one, and still is.
TEST_F(frmDDEState, AnActOnOtherRowsLeavesTheCurrentOne) {
    loadThree();
    window->SelectGUID("{3}");
    grid(0).selectionModel()->select(
        grid(0).model()->index(0, 0),
        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    ASSERT_EQ(state.curEvent->GUID, "{3}");
    clickDismiss();
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    ASSERT_NE(state.curEvent, nullptr);
    EXPECT_EQ(state.curEvent->GUID, "{3}");
    EXPECT_TRUE(child<QPushButton>("butOpen").isEnabled());
}

TEST_F(frmDDEState, TheWidthsOfTheColumnsAreThoseOfTheGrids) {
    load();
    EXPECT_TRUE(state.WidthsE.empty()) << "there is no grid yet";
    ColumnWidths* const widths[] = {&state.WidthsR[0], &state.WidthsR[1], &state.WidthsE};
    for (int i = 0; i < kGridCount; ++i) {
        SCOPED_TRACE(i);
        const auto columns = gridColumns(i);
        const int location = columnIndex(columns, CIDLocation);
        grid(i).setColumnWidth(location, 111 + i);
        EXPECT_EQ(widths[i]->at(CIDLocation), 111 + i);
        grid(i).showColumn(location, false);
        EXPECT_EQ(widths[i]->at(CIDLocation), 111 + i) << "kept while it is not shown";
        EXPECT_EQ(widths[i]->size(), columns.size());
        for (const GridColumn& column : columns) {
            const int at = columnIndex(columns, column.id);
            if (at != location) {
                EXPECT_EQ(widths[i]->at(column.id), grid(i).columnWidth(at)) << column.id;
            }
        }
        (*widths[i])[CIDSource] = 222;
        const auto kept = grid(i).columnLayout();
        const auto source = std::find_if(kept.columns.begin(), kept.columns.end(),
                                         [](const auto& c) { return c.id == CIDSource; });
        EXPECT_EQ(source->width, 222) << "what is written to the settings";
    }
}

}  // namespace
}  // namespace vl
