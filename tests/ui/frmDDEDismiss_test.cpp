// Dismissing and deleting: from the button to the rows and back.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTest>

#include "ActsTest.h"
#include "ui/frmDismiss.h"

namespace vl {
namespace {

using test::childOf;
using test::event;
using test::someFriday;

class frmDDEDismiss : public test::ActsTest {
protected:
    /// Chooses to delete in the dialog of each of the rows.
    void deleteItems(const Names& which) {
        select(0, which);
        std::size_t asked = 0;
        const std::function<void(frmDismiss&)> answer = [&](frmDismiss& d) {
            if (++asked < which.size()) {  // the next one opens when this one is left
                QTimer::singleShot(0, qApp, [&] {
                    auto* next = qobject_cast<frmDismiss*>(QApplication::activeModalWidget());
                    ASSERT_NE(next, nullptr);
                    answer(*next);
                });
            }
            childOf<QRadioButton>(d, "radDeleteItem").click();
            childOf<QPushButton>(d, "butOK").click();
        };
        test::whileOpen<frmDismiss>(
            [this] { QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier); }, answer);
        EXPECT_EQ(asked, which.size());
    }
    /// The events' host is gone, so that they can be deleted.
    void loseHost() {
        haveDatabase();
        for (const char* GUID : {"{1}", "{2}", "{3}"}) {
            held(GUID)->VLBase = (folder / "no such host.vlb").string();
        }
    }
    static QWidget* popup() {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "Popup1" && top->isVisible()) {
                return top;
            }
        }
        return nullptr;
    }
};

TEST_F(frmDDEDismiss, APlainClickDismissesTheSelectedRows) {
    loadThree();
    select(0, {"{1}", "{3}"});
    clickDismiss();
    EXPECT_EQ(held("{1}")->Dismissed, someFriday());
    EXPECT_TRUE(held("{2}")->Dismissed.isZero());
    EXPECT_EQ(held("{3}")->Dismissed, someFriday());
    EXPECT_EQ(listed(0), Names{"{2}"});
    EXPECT_FALSE(state.NewReminders->Exists("{3}"));
    EXPECT_EQ(WindowTest::listed(1).rowCount(), 3U) << "the view lists what is dismissed, too";
    EXPECT_TRUE(window->isVisible());
    select(0, {"{2}"});
    clickDismiss();
    EXPECT_FALSE(window->isVisible()) << "nothing is left";
}

// On the other tabs a row that was dismissed stays, dimmed.
TEST_F(frmDDEDismiss, TheListStandsStillUnderWhoDismissesOneRowAfterAnother) {
    load();
    for (int i = 1; i < 40; ++i) {
        add(event("{" + std::to_string(i) + "}", "Event", someFriday().addMinutes(i), 0));
    }
    window->DoPeriod();
    window->ShowHide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    tabTo(1);
    QScrollBar& bar = *grid(1).verticalScrollBar();
    ASSERT_GT(bar.maximum(), 0);
    const auto inView = [this] {
        return grid(1).viewport()->rect().contains(grid(1).visualRect(grid(1).currentIndex()));
    };
    for (const int from : {0, bar.maximum() / 2}) {
        bar.setValue(from);
        grid(1).setCurrentIndex(grid(1).indexAt(QPoint(5, 30)));
        const int scroll = bar.value();
        for (int i = 0; i < 3; ++i) {
            const QString first = WindowTest::listed(1).currentRow()->GUID;
            QTest::keyClick(&grid(1), Qt::Key_Delete);
            EXPECT_EQ(bar.value(), scroll) << "after " << i + 1;
            EXPECT_NE(WindowTest::listed(1).currentRow()->GUID, first) << "the next one is at hand";
            EXPECT_TRUE(inView());
        }
    }
    tabTo(0);
    bar.setValue(bar.maximum());
    grid(1).setCurrentIndex(grid(1).model()->index(0, 0));
    bar.setValue(bar.maximum());
    tabTo(1);
    EXPECT_TRUE(inView()) << "also when its tab is chosen";
}

TEST_F(frmDDEDismiss, NothingSelectedIsNothingToDismiss) {
    loadThree();
    grid(0).clearSelection();
    EXPECT_FALSE(dismiss().isEnabled());
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(listed(0).size(), 3U);
}

TEST_F(frmDDEDismiss, DeleteDismissesWithoutAsking) {
    loadThree();
    QTest::keyClick(&grid(0), Qt::Key_Delete);
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(WindowTest::listed(0).SelectedGUIDs(), Names{"{2}"}) << "and the next one is at hand";
}

TEST_F(frmDDEDismiss, TheDialogIsShownForEachRow) {
    loadThree();
    select(0, {"{1}", "{2}", "{3}"});
    std::vector<std::string> labels;
    const std::function<void(frmDismiss&)> answer = [&](frmDismiss& d) {
        labels.push_back(plainText(childOf<QLabel>(d, "lblEvent").text()));
        const char* button = labels.size() == 2 ? "butCancel" : "butOK";
        if (labels.size() < 3) {  // the next one opens when this one is left
            QTimer::singleShot(0, qApp, [&] {
                auto* next = qobject_cast<frmDismiss*>(QApplication::activeModalWidget());
                ASSERT_NE(next, nullptr);
                answer(*next);
            });
        }
        childOf<QPushButton>(d, button).click();
    };
    test::whileOpen<frmDismiss>(
        [this] { QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier); }, answer);
    ASSERT_EQ(labels.size(), 3U);
    EXPECT_TRUE(labels[0].starts_with("Reminder Today 14:10. Event: Event 1, Today 14:40"))
        << labels[0];
    EXPECT_EQ(listed(0), Names{"{2}"});
    EXPECT_TRUE(held("{2}")->Dismissed.isZero());
    EXPECT_EQ(held("{3}")->Dismissed, someFriday());
}

TEST_F(frmDDEDismiss, NamesAnEventWithoutASubjectAndPartsAWordThatIsTooLong) {
    loadThree();
    const auto label = [this](const char* subject) {
        held("{1}")->Subject = subject;
        QString text;
        int lines = 0;
        test::whileOpen<frmDismiss>([this] { emit dismiss().chooseChosen(); },
                                    [&](frmDismiss& d) {
                                        const auto& shown = childOf<QLabel>(d, "lblEvent");
                                        text = shown.accessibleName();
                                        lines = shown.height() / shown.fontMetrics().height();
                                        EXPECT_LE(shown.minimumSizeHint().width(), shown.width());
                                    });
        return std::pair(plainText(text), lines);
    };
    EXPECT_TRUE(label("").first.starts_with("Reminder Today 14:10. Event: (no subject), Today "));
    const std::string word(400, 'W');
    const auto [text, lines] = label(word.c_str());
    EXPECT_NE(text.find(word + ", Today "), std::string::npos) << text;
    EXPECT_GT(lines, 3);
}

TEST_F(frmDDEDismiss, MarkingAsDoneFinishesTheEvent) {
    loadThree();
    test::whileOpen<frmDismiss>([this] { emit dismiss().chooseChosen(); },
                                [](frmDismiss& d) {
                                    childOf<QRadioButton>(d, "radAll").click();
                                    childOf<QCheckBox>(d, "chkDone").click();
                                    childOf<QPushButton>(d, "butOK").click();
                                });
    EXPECT_EQ(held("{1}")->status, "AllDone");
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
}

TEST_F(frmDDEDismiss, DeletingTakesTheEventAwayAndSaysSo) {
    loadThree();
    loseHost();
    test::whileOpen<frmDismiss>([this] { emit dismiss().chooseChosen(); },
                                [](frmDismiss& d) {
                                    childOf<QRadioButton>(d, "radDeleteItem").click();
                                    childOf<QPushButton>(d, "butOK").click();
                                });
    EXPECT_FALSE(period.mCol->Exists("{1}"));
    for (const int tab : {0, 1, 2}) {
        EXPECT_FALSE(WindowTest::listed(tab).contains("{1}")) << tab;
    }
    ASSERT_NE(popup(), nullptr);
    EXPECT_EQ(popup()->findChild<QLabel*>("lblPopupTitle")->text(), "Items deleted...");
    EXPECT_EQ(popup()->findChild<QLabel*>("lblPopupText")->text(),
              "Items were deleted. Opened grids and calendars may need to be refreshed");
}

TEST_F(frmDDEDismiss, SeveralDeletedItemsAreToldOnce) {
    /// Counts how often the pop-up is given something to say: each time in a label of its own.
    class Tellings final : public QObject {
    public:
        Tellings() { qApp->installEventFilter(this); }
        bool eventFilter(QObject* watched, QEvent* event) override {
            if (event->type() == QEvent::Show && watched->objectName() == "lblPopupText") {
                ++count;
            }
            return false;
        }
        int count = 0;
    };
    loadThree();
    loseHost();
    Tellings tellings;
    deleteItems({"{1}", "{3}"});
    EXPECT_EQ(listed(0), Names{"{2}"});
    EXPECT_EQ(period.mCol->Count(), 1U);
    EXPECT_EQ(tellings.count, 1);
    ASSERT_NE(popup(), nullptr);
    EXPECT_EQ(popup()->findChild<QLabel*>("lblPopupTitle")->text(), "Items deleted...");
    deleteItems({"{2}"});
    EXPECT_EQ(tellings.count, 2) << "and it is told again";
}

// What others hold for good stays listed; what could be deleted is told once, and so is what could
// not, though another row is current then.
TEST_F(frmDDEDismiss, OfSeveralItemsTheOnesThatStayAreNamedAtTheEnd) {
    loadThree();
    loseHost();
    const std::string foreign = (folder / "foreign.vlb").string();
    std::string bytes("\0\1\0\0Standard ACE DB\0", 20);
    bytes.resize(8192);
    test::writeFile(foreign, bytes);
    held("{2}")->VLBase = foreign;
    deleteItems({"{1}", "{2}"});
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "Event 2 could not be deleted");
    held("{3}")->VLBase = foreign;
    deleteItems({"{2}", "{3}"});
    EXPECT_EQ(listed(0), (Names{"{2}", "{3}"}));
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "2 items could not be deleted");
}

}  // namespace
}  // namespace vl
