#include "ui/frmDismiss.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "Dialogs.h"
#include "Rows.h"
#include "app/Settings.h"
#include "support/ManualClock.h"
#include "support/Support.h"
#include "ui/QtText.h"

namespace vl {
namespace {

using test::childOf;
using Choice = frmDismiss::Choice;

class frmDismissTest : public testing::Test {
protected:
    frmDismissTest() { settings.filename = (folder / "VLReminders.ini").string(); }

    void show(const std::function<void(frmDismiss&)>& act) {
        frmDismiss dialog({settings, clock, false, [this](int page) { pages.push_back(page); }});
        dialog.sNext = "Next reminder Today 14:30.";
        dialog.sEvent = "Call the bank";
        dialog.sSnooze = sSnooze;
        test::whileOpen<frmDismiss>([&] { dialog.ShowModal(); }, act);
        bCancel = dialog.bCancel;
        choice = dialog.choice();
        markDone = dialog.markDone();
    }

    test::TempFolder folder;
    test::ManualClock clock{test::someFriday()};
    Settings settings;
    std::vector<int> pages;
    std::string sSnooze;
    bool bCancel = false;
    Choice choice = Choice::ThisOnly;
    bool markDone = false;
};

QRadioButton& radio(const frmDismiss& d, const char* name) {
    return childOf<QRadioButton>(d, name);
}
void press(frmDismiss& d, const char* button) {
    QTest::mouseClick(&childOf<QPushButton>(d, button), Qt::LeftButton);
}

// Whoever knows the letters types them in one go.
TEST_F(frmDismissTest, ALetterCountsAtOnce) {
    show([](frmDismiss& d) {
        QTest::keyClick(&d, Qt::Key_A, Qt::AltModifier);
        EXPECT_EQ(d.choice(), frmDismiss::Choice::All);
        EXPECT_TRUE(childOf<QWidget>(d, "radAll").hasFocus());
        QTest::keyClick(&d, Qt::Key_D, Qt::AltModifier);
        EXPECT_TRUE(d.markDone());
    });
}

TEST_F(frmDismissTest, HasItsTexts) {
    show([](frmDismiss& d) {
        EXPECT_EQ(d.windowTitle(), "Dismiss Reminder...");
        EXPECT_EQ(childOf<QLabel>(d, "lblEvent").text(),
                  "Next reminder Today 14:30. Event: Call the bank");
        auto* group = d.findChild<QGroupBox*>();
        ASSERT_NE(group, nullptr);
        EXPECT_EQ(group->title(), "Dismiss:");
        const auto choices = group->findChildren<QRadioButton*>();
        ASSERT_EQ(choices.size(), 4);
        EXPECT_EQ(choices[0]->text(), "&This reminder");
        EXPECT_EQ(choices[1]->text(), "All reminders &except those after the event (if any)");
        EXPECT_EQ(choices[2]->text(), "&All reminders");
        EXPECT_EQ(choices[3]->text(), "Dismiss all reminders and DELETE item");
        EXPECT_TRUE(choices[0]->isChecked());
        EXPECT_EQ(childOf<QCheckBox>(d, "chkDone").text(), "Mark item as &Done");
        EXPECT_FALSE(childOf<QCheckBox>(d, "chkDone").isChecked());
        EXPECT_EQ(childOf<QPushButton>(d, "butCancel").text(), "&Cancel");
        EXPECT_TRUE(childOf<QPushButton>(d, "butOK").isDefault());
        EXPECT_FALSE(d.loading);
    });
}

TEST_F(frmDismissTest, GivesWhatWasChosen) {
    const std::pair<const char*, Choice> cases[] = {{"radThisOnly", Choice::ThisOnly},
                                                    {"radAfter", Choice::After},
                                                    {"radAll", Choice::All},
                                                    {"radDeleteItem", Choice::DeleteItem}};
    for (const auto& [name, wanted] : cases) {
        SCOPED_TRACE(name);
        show([&name = name](frmDismiss& d) {
            radio(d, name).click();
            press(d, "butOK");
        });
        EXPECT_FALSE(bCancel);
        EXPECT_EQ(choice, wanted);
        EXPECT_FALSE(markDone);
    }
}

TEST_F(frmDismissTest, DoneIsNotOfferedForWhatIsDeleted) {
    show([](frmDismiss& d) {
        auto& done = childOf<QCheckBox>(d, "chkDone");
        EXPECT_TRUE(done.isEnabled());
        done.click();
        radio(d, "radDeleteItem").click();
        EXPECT_FALSE(done.isEnabled());
        EXPECT_FALSE(d.markDone());
        radio(d, "radAll").click();
        EXPECT_TRUE(done.isEnabled());
        EXPECT_TRUE(d.markDone());
        press(d, "butOK");
    });
    EXPECT_TRUE(markDone);
}

TEST_F(frmDismissTest, EveryWayOutButOKIsCancel) {
    const std::pair<const char*, std::function<void(frmDismiss&)>> ways[] = {
        {"button", [](frmDismiss& d) { press(d, "butCancel"); }},
        {"Escape", [](frmDismiss& d) { QTest::keyClick(&d, Qt::Key_Escape); }},
        {"frame", [](frmDismiss& d) { d.close(); }},
    };
    for (const auto& [way, leave] : ways) {
        SCOPED_TRACE(way);
        show(leave);
        EXPECT_TRUE(bCancel);
    }
}

TEST_F(frmDismissTest, EnterIsOKWhereverTheFocusIs) {
    for (const char* focused : {"radAll", "chkDone", "butCancel", "lblF1"}) {
        SCOPED_TRACE(focused);
        show([focused](frmDismiss& d) {
            auto& control = childOf<QWidget>(d, focused);
            control.setFocus();
            QTest::keyClick(&control, Qt::Key_Enter);
            EXPECT_FALSE(d.isVisible());
        });
        EXPECT_FALSE(bCancel);
    }
}

TEST_F(frmDismissTest, F1AndTheLinkOpenItsHelp) {
    show([](frmDismiss& d) {
        QTest::keyClick(&d, Qt::Key_F1);
        emit childOf<QLabel>(d, "lblF1").linkActivated("F1");
    });
    EXPECT_EQ(pages, (std::vector{5567, 5567}));
}

// Whatever the caller left in the field, also nothing: the next snooze then offers 15m again.
TEST_F(frmDismissTest, WritesItsThirdFieldWhereSnoozesAreRemembered) {
    settings.SaveIni("Reminders", "Snooze", "2h");
    show([](frmDismiss& d) { press(d, "butCancel"); });
    EXPECT_EQ(settings.GetIni("Reminders", "Snooze", "15m"), "15m");
    EXPECT_EQ(settings.GetIniSection("Reminders"), std::string("Snooze=\0", 8));
    sSnooze = "4h";
    show([](frmDismiss& d) { press(d, "butOK"); });
    EXPECT_EQ(settings.GetIni("Reminders", "Snooze", "15m"), "4h");
}

}  // namespace
}  // namespace vl
