// A dialog or box that waits for its answer blocks the window it belongs to, and nothing else.
#include <gtest/gtest.h>

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QWindow>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/MessageBoxes.h"
#include "ui/frmDismiss.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

using test::childOf;
using test::event;
using test::someFriday;

class frmDDEDialogs : public test::WindowTest {
protected:
    /// Two reminders listed as new, the first one current; the window in front.
    void loadTwo() {
        load();
        for (const char* GUID : {"{1}", "{2}"}) {
            const std::string subject = std::string("Event ") + GUID[1];
            const auto e = event(GUID, subject, someFriday(), 0);
            add(e);
            takeIn(e);
            auto line = std::make_shared<ValueList>();
            line->items = {Variant(subject), Variant(" Event start (14:30)")};
            state.EvCol->Add(Variant(ObjectRef(line)), GUID);
        }
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->FirstNewRowCurrent();
    }
    void whileSnoozing(const std::function<void(frmSnooze&)>& act) const {
        test::whileOpen<frmSnooze>([this] { child<QPushButton>("butSnooze").click(); }, act);
    }
    QWidget& toast() const {
        window->ShowPopUp({"2 reminders", "", -1, false, 300, 100, 100});
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "Popup1" && top->isVisible()) {
                return *top;
            }
        }
        ADD_FAILURE() << "no toast";
        return *window;
    }
    static void choose(const char* entry) {
        auto* action = trayMenu()->findChild<QAction*>(entry);
        ASSERT_NE(action, nullptr) << entry;
        action->trigger();
    }
    // As the desktop hands it in: a window that is blocked gets none.
    static void clickThrough(const QWidget& control) {
        QWindow* top = control.window()->windowHandle();
        QTest::mouseClick(top, Qt::LeftButton, {},
                          control.mapTo(control.window(), QPoint(10, control.height() / 2)));
    }
    bool inFront(const QWidget& dialog) const {
        return dialog.isVisible() && window->isVisible() && dialog.isActiveWindow();
    }
};

TEST_F(frmDDEDialogs, ItsToastIsClosedByItsCross) {
    loadTwo();
    whileSnoozing([this](frmSnooze& d) {
        QWidget& shown = toast();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&shown));
        clickThrough(childOf<QToolButton>(shown, "butPopupClose"));
        EXPECT_FALSE(shown.isVisible());
        EXPECT_TRUE(d.isVisible());
        clickThrough(child<QPushButton>("butHide"));
        EXPECT_TRUE(window->isVisible()) << "the window itself waits";
    });
}

TEST_F(frmDDEDialogs, ALinkOfTheToastBringsTheDialogForward) {
    loadTwo();
    whileSnoozing([this](frmSnooze& d) {
        QWidget& shown = toast();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&shown));
        window->activateWindow();
        clickThrough(childOf<QLabel>(shown, "lblPopupLink2"));
        EXPECT_FALSE(shown.isVisible());
        EXPECT_TRUE(QTest::qWaitFor([&] { return inFront(d); }));
        EXPECT_EQ(listed(0).currentRow()->GUID, "{2}") << "found when the dialog is left";
        childOf<QPushButton>(d, "butSnooze").click();
    });
    EXPECT_FALSE(objectAt<calEvent>(*period.mCol, "{1}")->NextReminder.isZero());
    EXPECT_TRUE(objectAt<calEvent>(*period.mCol, "{2}")->NextReminder.isZero());
}

TEST_F(frmDDEDialogs, TheTraysCommandsBringItForwardInsteadOfAnotherOne) {
    loadTwo();
    for (const char* entry : {"mnuShowHide", "mnuAbout", "mnuCleanUp", "mnuDeleteAll"}) {
        SCOPED_TRACE(entry);
        whileSnoozing([&](frmSnooze& d) {
            window->activateWindow();
            choose(entry);
            EXPECT_TRUE(QTest::qWaitFor([&] { return inFront(d); }));
            EXPECT_TRUE(boxes.shown.empty());
        });
    }
    choose("mnuAbout");
    EXPECT_EQ(boxes.shown.size(), 1U);
}

TEST_F(frmDDEDialogs, ItsSettingsCanBeChangedMeanwhile) {
    loadTwo();
    whileSnoozing([this](frmSnooze& d) {
        choose("mnuMute");
        choose("mnuTypeTray");
        EXPECT_TRUE(d.isVisible());
    });
    EXPECT_EQ(ini("Reminders", "Muted"), "-1");
    EXPECT_EQ(ini("Reminders", "NotifType"), "T");
}

/// Counts the dismiss dialogs that are shown.
class DialogsShown final : public QObject {
public:
    DialogsShown() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        count += event->type() == QEvent::Show && qobject_cast<frmDismiss*>(watched) ? 1 : 0;
        return false;
    }
    int count = 0;
};

TEST_F(frmDDEDialogs, ExitLeavesThemAsByCancel) {
    loadTwo();
    grid(0).selectAll();
    const DialogsShown dialogs;
    QTimer::singleShot(0, window.get(),
                       [this] { QTest::keyClick(&grid(0), Qt::Key_Delete, Qt::ShiftModifier); });
    QTimer::singleShot(100, window.get(), [] {
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
        choose("mnuExit");
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(dialogs.count, 1) << "and the second row's is not opened";
    EXPECT_EQ(listed(0).rowCount(), 2U);
    EXPECT_TRUE(objectAt<calEvent>(*period.mCol, "{1}")->Dismissed.isZero());
    EXPECT_EQ(ini("Reminders", "Period"), "T") << "saved";
}

TEST(MessageBoxesModality, BlockTheirOwnerAlone) {
    for (const bool visible : {true, false}) {
        SCOPED_TRACE(visible);
        QWidget owner;
        owner.setVisible(visible);
        MessageBoxes boxes(owner);
        test::whileOpen<QMessageBox>(
            [&] {
                boxes.ShowBox({"Title", "Text"});
            },
            [](QMessageBox& box) {
                EXPECT_EQ(box.windowModality(), Qt::WindowModal);
                EXPECT_EQ(box.findChild<QLabel*>("qt_msgbox_label")->font().family(), "Arial");
            });
    }
}

}  // namespace
}  // namespace vl
