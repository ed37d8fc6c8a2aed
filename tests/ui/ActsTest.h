// The window with three reminders of today, and what its user does to them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QComboBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/SplitButton.h"
#include "ui/frmSnooze.h"

namespace vl::test {

class ActsTest : public WindowTest {
protected:
    /// Three reminders of today listed as new; the window shown on its first tab.
    void loadThree() {
        load();
        for (std::int64_t i = 1; i <= 3; ++i) {
            const std::string GUID = "{" + std::to_string(i) + "}";
            const auto e =
                event(GUID, "Event " + std::to_string(i), someFriday().addMinutes(i * 10), 30);
            add(e);
            e->iRemMinutes = 30;
            takeIn(e);
            state.LastEventsReminded->Add(Variant(ObjectRef(e)), GUID);
        }
        window->DoPeriod();
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->FirstNewRowCurrent();
    }
    void tabTo(int i) { child<QTabWidget>("tabs").setCurrentIndex(i); }
    void select(int tab, const std::vector<std::string>& GUIDs) {
        grid(tab).clearSelection();
        for (const std::string& GUID : GUIDs) {
            const auto column =
                grid(tab).model()->match(grid(tab).model()->index(0, 0), GridModel::SummaryRole,
                                         "Event " + QString(GUID[1]), 1, Qt::MatchExactly);
            ASSERT_EQ(column.size(), 1) << GUID;
            grid(tab).selectionModel()->select(
                column[0], QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    std::vector<std::string> listed(int tab) const {
        std::vector<std::string> GUIDs;
        for (const GridRow& row : WindowTest::listed(tab).rows().rows()) {
            GUIDs.push_back(plainText(row.GUID));
        }
        return GUIDs;
    }
    std::shared_ptr<calEvent> held(const char* GUID) const {
        return objectAt<calEvent>(*period.mCol, GUID);
    }
    QPushButton& snooze() const { return child<QPushButton>("butSnooze"); }
    SplitButton& dismiss() const { return child<SplitButton>("butDismiss"); }

    // By the mouse: a click knows which keys are held, a `click()` only which were held last.
    void clickDismiss() const {
        QTest::mouseClick(&dismiss(), Qt::LeftButton, {}, QPoint(12, dismiss().height() / 2));
    }

    void snoozeBy(const char* typed, const char* leaveBy = "butSnooze") {
        whileOpen<frmSnooze>([this] { snooze().click(); },
                             [&](frmSnooze& d) {
                                 caption = plainText(d.windowTitle());
                                 auto& list = childOf<QComboBox>(d, "cboSnooze");
                                 list.setEditText(typed);
                                 childOf<QPushButton>(d, leaveBy).click();
                             });
    }
    using Names = std::vector<std::string>;
    std::string caption;
};

}  // namespace vl::test
