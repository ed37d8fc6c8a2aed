#include "ui/ColumnLayout.h"

#include <gtest/gtest.h>

namespace vl {
namespace {

constexpr int kUnit = 7;

std::vector<std::string> order(const ColumnLayout& layout) {
    std::vector<std::string> ids;
    for (const auto& column : layout.columns) {
        ids.push_back(column.id);
    }
    return ids;
}

const ColumnLayout::Column& column(const ColumnLayout& layout, const std::string& id) {
    return *std::find_if(layout.columns.begin(), layout.columns.end(),
                         [&id](const auto& c) { return c.id == id; });
}

TEST(ColumnLayout, ReadsWhatItWrote) {
    for (const int grid : {0, 1, 2}) {
        SCOPED_TRACE(grid);
        ColumnLayout layout = firstLayout(grid, kUnit);
        EXPECT_EQ(readLayout(grid, kUnit, columnsText(layout), sortText(layout)), layout);
        std::rotate(layout.columns.begin(), layout.columns.begin() + 3, layout.columns.end());
        layout.columns[2].hidden = true;
        EXPECT_EQ(readLayout(grid, kUnit, columnsText(layout), sortText(layout)), layout)
            << "without widths";
        layout.sized = true;
        layout.columns[1].width = 333;
        layout.columns[2].hidden = true;
        layout.sortedBy = CIDLocation;
        layout.descending = true;
        EXPECT_EQ(readLayout(grid, kUnit, columnsText(layout), sortText(layout)), layout);
    }
}

TEST(ColumnLayout, HasAFormThatPeopleCanRead) {
    ColumnLayout layout;
    layout.columns = {{CIDSubject, 252, false}, {CIDEnds, 161, true}};
    layout.sortedBy = CIDEventD;
    EXPECT_EQ(columnsText(layout), "Subject,Ends::hidden");
    layout.sized = true;
    EXPECT_EQ(columnsText(layout), "Subject:252,Ends:161:hidden");
    EXPECT_EQ(sortText(layout), "EventD");
    layout.descending = true;
    EXPECT_EQ(sortText(layout), "-EventD");
    EXPECT_EQ(columnsKey(0), "NewReminders");
    EXPECT_EQ(sortKey(2), "EventsSort");
}

TEST(ColumnLayout, IsTheFirstOneWhereTheTextSaysNothing) {
    const ColumnLayout first = firstLayout(1, kUnit);
    EXPECT_EQ(first.sortedBy, CIDReminderD);
    EXPECT_EQ(firstLayout(2, kUnit).sortedBy, CIDEventD);
    for (const char* garbage :
         {"", ",", ":::,,,", "Ends:80", "\xFF\xFE,\x01", "Subject::hidden", "Subject:-3",
          "Subject:99999999999999999999", "Subject:1e3", "Subject:252px", "Subject:19",
          "Subject:4001", " : 5 : ", "Subjec:100", "Subject,Subject:100"}) {
        SCOPED_TRACE(garbage);
        EXPECT_EQ(readLayout(1, kUnit, garbage, ""), first);
    }
    EXPECT_FALSE(column(readLayout(1, kUnit, "Subject:252:hidden", ""), CIDSubject).hidden);
    for (const char* garbage :
         {"", "-", "--ReminderD", "Ends", "ReminderD desc", "\xFF", "- EventD"}) {
        SCOPED_TRACE(garbage);
        EXPECT_EQ(readLayout(1, kUnit, "", garbage), first);
    }
}

TEST(ColumnLayout, TakesWhatCanBeUsed) {
    const ColumnLayout layout =
        readLayout(0, kUnit, " location : 90 ,Nothing:50,due:x:HIDDEN,Location:40", " -due ");
    EXPECT_EQ(order(layout),
              (std::vector<std::string>{CIDLocation, CIDDue, CIDSubject, CIDReminderD, CIDEventD,
                                        CIDRepeats, CIDField, CIDSource}));
    EXPECT_EQ(column(layout, CIDLocation).width, 90);
    EXPECT_TRUE(column(layout, CIDDue).hidden);
    EXPECT_EQ(column(layout, CIDDue).width, 19 * kUnit);
    EXPECT_TRUE(layout.sized);
    EXPECT_EQ(layout.sortedBy, CIDDue);
    EXPECT_TRUE(layout.descending);
}

int widthOf(const ColumnLayout& layout) {
    int width = 0;
    for (const auto& column : layout.columns) {
        width += column.hidden ? 0 : column.width;
    }
    return width;
}

TEST(ColumnLayoutFit, FillsTheRoomAndGivesTheSubjectWhatIsLeft) {
    for (const int grid : {0, 1, 2}) {
        for (const int unit : {5, 6, 7, 13}) {
            SCOPED_TRACE(testing::Message() << "grid " << grid << ", unit " << unit);
            const ColumnLayout first = firstLayout(grid, unit);
            for (const int room :
                 {110 * unit, 120 * unit + 1, 148 * unit, 149 * unit, 300 * unit}) {
                SCOPED_TRACE(room);
                ColumnLayout layout = first;
                fitColumns(layout, grid, unit, room);
                EXPECT_EQ(widthOf(layout), room);
                EXPECT_GE(column(layout, CIDSubject).width, 22 * unit);
                EXPECT_GE(column(layout, CIDDue).width, 18 * unit);
                EXPECT_GE(column(layout, CIDSource).width, 8 * unit);
                EXPECT_FALSE(layout.sized);
            }
        }
    }
}

TEST(ColumnLayoutFit, WithRoomEnoughOnlyTheSubjectGrows) {
    ColumnLayout layout = firstLayout(0, kUnit);
    const ColumnLayout first = layout;
    fitColumns(layout, 0, kUnit, widthOf(first) + 100);
    EXPECT_EQ(column(layout, CIDSubject).width, column(first, CIDSubject).width + 100);
    for (const char* id : {CIDDue, CIDReminderD, CIDEventD, CIDRepeats, CIDLocation, CIDSource}) {
        EXPECT_EQ(column(layout, id).width, column(first, id).width) << id;
    }
}

TEST(ColumnLayoutFit, TextsGiveMoreThanDates) {
    ColumnLayout layout = firstLayout(0, kUnit);
    const ColumnLayout first = layout;
    fitColumns(layout, 0, kUnit, 115 * kUnit);
    const auto given = [&](const char* id) {
        return column(first, id).width - column(layout, id).width;
    };
    EXPECT_GT(given(CIDRepeats), 2 * given(CIDReminderD));
    EXPECT_GT(given(CIDLocation), 2 * given(CIDDue));
}

TEST(ColumnLayoutFit, NothingGetsNarrowerThanItsLeast) {
    ColumnLayout layout = firstLayout(2, kUnit);
    fitColumns(layout, 2, kUnit, 109 * kUnit);
    const ColumnLayout least = layout;
    for (const int room : {108 * kUnit, 100, 0, -5}) {
        fitColumns(layout, 2, kUnit, room);
        EXPECT_EQ(layout, least) << room;
    }
}

TEST(ColumnLayoutFit, AHiddenColumnNeedsNoRoom) {
    ColumnLayout layout = firstLayout(1, kUnit);
    layout.columns[4].hidden = true;
    const int room = widthOf(layout);
    const ColumnLayout first = layout;
    fitColumns(layout, 1, kUnit, room);
    EXPECT_EQ(layout, first);
    layout.columns[4].hidden = false;
    fitColumns(layout, 1, kUnit, room);
    EXPECT_EQ(widthOf(layout), room);
}

}  // namespace
}  // namespace vl
