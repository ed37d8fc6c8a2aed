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
         {"", ",", ":::,,,", "Ends:80", "\xFF\xFE,\x01", "Subject:252:hidden", "Subject:-3",
          "Subject:99999999999999999999", "Subject:1e3", "Subject:252px", "Subject:19",
          "Subject:4001", " : 5 : ", "Subjec:100", "Subject:252,Subject:100"}) {
        SCOPED_TRACE(garbage);
        EXPECT_EQ(readLayout(1, kUnit, garbage, ""), first);
    }
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
    EXPECT_EQ(column(layout, CIDDue).width, 21 * kUnit);
    EXPECT_EQ(layout.sortedBy, CIDDue);
    EXPECT_TRUE(layout.descending);
}

}  // namespace
}  // namespace vl
