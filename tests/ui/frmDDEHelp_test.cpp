// F1: the help at the place that is about the control in use, or about the question asked.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

#include "Dialogs.h"
#include "WindowTest.h"
#include "ui/SplitButton.h"
#include "ui/UpDown.h"

namespace vl {
namespace {

class frmDDEHelp : public test::WindowTest {
protected:
    void loadShown() {
        load();
        takeIn(test::event("{1}", "Meeting", test::someFriday(), 15));
        window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->FirstNewRowCurrent();
    }
    /// What F1 opens while `control` has the focus, behind the address of the page.
    std::string helpAt(QWidget& control) {
        control.setFocus();
        EXPECT_TRUE(control.hasFocus()) << plainText(control.objectName());
        opened.clear();
        QTest::keyClick(&control, Qt::Key_F1);
        EXPECT_EQ(opened.size(), 1U);
        return opened.empty() ? "" : opened[0].substr(HelpBase.size());
    }
};

TEST_F(frmDDEHelp, IsAboutTheControlThatHasTheFocus) {
    loadShown();
    EXPECT_EQ(helpAt(grid(0)), "5565");
    EXPECT_EQ(helpAt(list()), "5565.periods");
    EXPECT_EQ(helpAt(child<QLineEdit>("txtSearch")), "5565.search");
    EXPECT_EQ(helpAt(*child<QTabWidget>("tabs").tabBar()), "5565.tabs");
    EXPECT_EQ(helpAt(child<QPushButton>("butSnooze")), "5566");
    EXPECT_EQ(helpAt(child<SplitButton>("butDismiss")), "5567");
    EXPECT_EQ(helpAt(child<QPushButton>("butOpen")), "5565");
    EXPECT_EQ(helpAt(child<QPushButton>("butMenu")), "5565.tray");
    EXPECT_EQ(helpAt(child<QPushButton>("butHide")), "5565");
}

// On the other lists that button hides events.
TEST_F(frmDDEHelp, OfTheSnoozeButtonIsAboutWhatItDoes) {
    loadShown();
    add(test::event("{1}", "Meeting", test::someFriday().addMinutes(60), 15));
    window->DoPeriod();
    child<QTabWidget>("tabs").setCurrentIndex(kEventsGrid);
    grid(kEventsGrid).list().selectFirst();
    EXPECT_EQ(helpAt(child<QPushButton>("butSnooze")), "5565");
    EXPECT_EQ(helpAt(grid(kEventsGrid)), "5565");
}

TEST_F(frmDDEHelp, ThatDoesNotOpenIsTold) {
    haveDatabase();
    loadShown();
    opens = false;
    EXPECT_EQ(helpAt(grid(0)), "5565");
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "The help could not be opened");
}

TEST_F(frmDDEHelp, ThatIsNotInstalledIsToldAndNotLookedFor) {
    haveDatabase();
    HelpBase.clear();
    loadShown();
    QTest::keyClick(&grid(0), Qt::Key_F1);
    EXPECT_TRUE(opened.empty());
    EXPECT_EQ(child<QLabel>("lblStatus").text(), "The help is not installed");
}

TEST_F(frmDDEHelp, InABoxIsAboutItsQuestion) {
    haveDatabase();
    settings.SaveIni("Reminders", "NotifType", "T");  // no reminder comes in front of the box
    WindowParts own = parts(gridUtils);
    own.boxes = nullptr;
    window = std::make_unique<frmDDE>(own);
    window->Load();
    const std::pair<const char*, const char*> cases[] = {{"mnuAbout", "5565.tray"},
                                                         {"mnuDeleteAll", "5565.cleanup"},
                                                         {"mnuCleanUp", "5565.cleanup"}};
    for (const auto& [command, place] : cases) {
        SCOPED_TRACE(command);
        opened.clear();
        QAction* entry = trayMenu()->findChild<QAction*>(command);
        ASSERT_NE(entry, nullptr);
        test::whileOpen<QMessageBox>([&] { entry->trigger(); },
                                     [&](QMessageBox& box) {
                                         QTest::keyClick(&box, Qt::Key_F1);
                                         EXPECT_TRUE(box.isVisible()) << "and still asks";
                                     });
        EXPECT_EQ(opened, std::vector<std::string>{HelpBase + place});
    }
}

}  // namespace
}  // namespace vl
