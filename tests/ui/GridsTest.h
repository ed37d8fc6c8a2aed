// The window with three reminders in its lists, and what its user does to rows.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <QTest>

#include "WindowTest.h"

namespace vl::test {

class GridsTest : public WindowTest {
protected:
    /// Three reminders listed as new, by time Cello, Anvil, Banjo; the window in front.
    void loadThree() {
        load();
        const std::pair<const char*, const char*> events[] = {
            {"{c}", "Cello"}, {"{a}", "Anvil"}, {"{b}", "Banjo"}};
        int minutes = 0;
        for (const auto& [GUID, subject] : events) {
            const auto e = event(GUID, subject, someFriday().addMinutes(minutes += 10), 5);
            e->Location = minutes == 20 ? "Smithy" : "Hall";
            e->iRemMinutes = 5;
            add(e);
            takeIn(e);
        }
        window->DoPeriod();
        window->resize(900, 400);
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->FirstNewRowCurrent();
    }
    /// The subjects of the shown rows, from top to bottom.
    std::string shown(int tab) const {
        std::string all;
        for (int i = 0; i < grid(tab).model()->rowCount(); ++i) {
            all +=
                (i > 0 ? " " : "") +
                plainText(grid(tab).model()->index(i, 0).data(GridModel::SummaryRole).toString());
        }
        return all;
    }
    QPoint rowAt(int tab, int row) const {
        return grid(tab).visualRect(grid(tab).model()->index(row, 0)).center();
    }
    void clickRow(int tab, int row, Qt::KeyboardModifiers keys = {}) const {
        QTest::mouseClick(grid(tab).viewport(), Qt::LeftButton, keys, rowAt(tab, row));
    }
    using Texts = std::vector<std::string>;
};

}  // namespace vl::test
