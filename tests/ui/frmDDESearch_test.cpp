// Searching in the grids, and the way from there to the rows.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include "GridsTest.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDESearch : public test::GridsTest {
protected:
    QLineEdit& search() const { return child<QLineEdit>("txtSearch"); }
};

TEST_F(frmDDESearch, TheSearchFiltersAsItIsTyped) {
    loadThree();
    QTest::keyClick(window.get(), Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(search().hasFocus());
    QTest::keyClicks(&search(), "n");
    EXPECT_EQ(shown(0), "Anvil Banjo");
    QTest::keyClicks(&search(), "v");
    EXPECT_EQ(shown(0), "Anvil");
    EXPECT_EQ(shown(kEventsGrid), "Anvil") << "in all grids";
    EXPECT_EQ(tab(0), "&New Reminders: 3") << "the captions count what is there";
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_EQ(shown(0), "Cello Anvil Banjo");
    QTest::keyClicks(&search(), "smith");
    EXPECT_EQ(shown(0), "Anvil") << "by the location, too";
    takeIn(event("{d}", "Bugle", someFriday(), 0));
    EXPECT_EQ(shown(0), "Anvil") << "what comes is filtered as well";
    EXPECT_EQ(tab(0), "&New Reminders: 4");
    QTest::keyClicks(&search(), "y nowhere");
    EXPECT_EQ(grid(0).emptyText(), "Nothing matches the search");
}

TEST_F(frmDDESearch, WhatWasChosenIsChosenAgainAfterASearch) {
    loadThree();
    clickRow(0, 1);
    clickRow(0, 2, Qt::ControlModifier);
    ASSERT_EQ(listed(0).SelectedGUIDs(), (Texts{"{a}", "{b}"}));
    for (const char* found : {"cello", "nowhere", "n", "anvil"}) {
        SCOPED_TRACE(found);
        search().setFocus();
        QTest::keyClicks(&search(), found);
        for (const std::string& GUID : listed(0).SelectedGUIDs()) {
            EXPECT_NE(GUID, "{c}") << "nobody chose it";
        }
        QTest::keyClick(&search(), Qt::Key_Escape);
        EXPECT_EQ(listed(0).SelectedGUIDs(), (Texts{"{a}", "{b}"}));
        ASSERT_NE(listed(0).currentRow(), nullptr);
        EXPECT_EQ(listed(0).currentRow()->GUID, "{b}");
        EXPECT_FALSE(child<QLabel>("lblStatus").text().isEmpty());
        EXPECT_TRUE(child<QWidget>("butDismiss").isEnabled());
    }
    QTest::keyClicks(&search(), "n");
    clickRow(0, 0);
    search().clear();
    EXPECT_EQ(listed(0).SelectedGUIDs(), Texts{"{a}"}) << "chosen while it was searched";
}

TEST_F(frmDDESearch, TheKeyboardGetsFromTheSearchToWhatWasFound) {
    loadThree();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Return, Qt::Key_Enter}) {
        SCOPED_TRACE(key);
        search().setFocus();
        QTest::keyClicks(&search(), "n");
        QTest::keyClick(&search(), key);
        EXPECT_TRUE(grid(0).hasFocus());
        EXPECT_EQ(listed(0).SelectedGUIDs(), Texts{"{a}"});
        EXPECT_TRUE(started.empty()) << "it is not opened yet";
        search().clear();
        grid(0).list().selectFirst();
    }
}

TEST_F(frmDDESearch, ALettersTabHasTheFocusInItsRows) {
    loadThree();
    const std::pair<Qt::Key, int> letters[] = {
        {Qt::Key_N, 0}, {Qt::Key_A, 1}, {Qt::Key_A, 1}, {Qt::Key_E, 2}};
    for (const auto& [letter, index] : letters) {
        SCOPED_TRACE(index);
        search().setFocus();
        QTest::keyClick(window.get(), letter, Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([&, at = index] { return grid(at).hasFocus(); }));
        EXPECT_EQ(child<QTabWidget>("tabs").currentIndex(), index);
    }
}

}  // namespace
}  // namespace vl
