#include "ui/frmSnooze.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "Dialogs.h"
#include "Rows.h"
#include "app/Settings.h"
#include "app/TimeText.h"
#include "base/ErrorState.h"
#include "notify/SnoozeText.h"
#include "support/ManualClock.h"
#include "support/Support.h"
#include "ui/QtText.h"

namespace vl {
namespace {

using test::childOf;

class frmSnoozeTest : public testing::Test {
protected:
    frmSnoozeTest() { settings.filename = (folder / "VLReminders.ini").string(); }

    /// What a caller does: shows the dialog, reads its fields, lets go of it.
    void show(const std::function<void(frmSnooze&)>& act) {
        frmSnooze dialog({settings, clock, false, [this](int page) { pages.push_back(page); }});
        dialog.sTitle = "Snooze reminder for:  Call the bank...";
        test::whileOpen<frmSnooze>([&] { dialog.ShowModal(); }, act);
        EXPECT_FALSE(dialog.isVisible());
        bCancel = dialog.bCancel;
        sSnooze = dialog.sSnooze;
    }
    std::string remembered() const { return settings.GetIni("Reminders", "Snooze", "(none)"); }

    test::TempFolder folder;
    test::ManualClock clock{test::someFriday()};
    Settings settings;
    std::vector<int> pages;
    bool bCancel = false;
    std::string sSnooze;
};

QComboBox& listOf(const frmSnooze& dialog) { return childOf<QComboBox>(dialog, "cboSnooze"); }
void press(frmSnooze& dialog, const char* button) {
    QTest::mouseClick(&childOf<QPushButton>(dialog, button), Qt::LeftButton);
}
void type(frmSnooze& dialog, const char* text) {
    QLineEdit& field = *listOf(dialog).lineEdit();
    field.selectAll();
    QTest::keyClicks(&field, text);
}

TEST_F(frmSnoozeTest, OffersItsChoicesEachBehindABlank) {
    show([](frmSnooze& d) {
        EXPECT_EQ(d.windowTitle(), "Snooze reminder for:  Call the bank...");
        ASSERT_EQ(listOf(d).count(), 16);
        for (int i = 0; i < 16; ++i) {
            EXPECT_EQ(plainText(listOf(d).itemText(i)),
                      std::string(" ") + snoozeChoices()[static_cast<std::size_t>(i)]);
        }
        EXPECT_EQ(listOf(d).currentText(), " 15m");
        EXPECT_EQ(listOf(d).toolTip(),
                  "Format: 5m, 3h, 1d, 1w / for an email: add (e) i.e. 3d (e)");
        EXPECT_EQ(childOf<QLabel>(d, "lblHint").text(), listOf(d).toolTip()) << "without a mouse";
        EXPECT_TRUE(childOf<QLabel>(d, "lblHint").isVisible());
        EXPECT_EQ(childOf<QPushButton>(d, "butSnooze").text(), "&Snooze");
        EXPECT_EQ(childOf<QPushButton>(d, "butCancel").text(), "&Cancel");
        EXPECT_FALSE(d.loading);
    });
}

TEST_F(frmSnoozeTest, TakesWhatIsTypedOrChosen) {
    struct Case {
        const char* typed;
        const char* taken;
    };
    static constexpr Case cases[] = {
        {"2h", "2h"}, {"  3d (e) ", "3d (e)"}, {"", ""}, {"soon", "soon"}, {"1", "1"}, {" ", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << '"' << c.typed << '"');
        show([&c](frmSnooze& d) {
            if (*c.typed) {
                type(d, c.typed);
            } else {
                listOf(d).clearEditText();
            }
            press(d, "butSnooze");
        });
        EXPECT_FALSE(bCancel);
        EXPECT_EQ(sSnooze, c.taken);
        EXPECT_EQ(remembered(), *c.taken ? c.taken : "(none)");
    }
}

TEST_F(frmSnoozeTest, RemembersWhatWasUsedLast) {
    show([](frmSnooze& d) {
        listOf(d).setCurrentIndex(6);
        press(d, "butSnooze");
    });
    EXPECT_EQ(sSnooze, "2h");
    EXPECT_EQ(remembered(), "2h");
    show([](frmSnooze& d) {
        EXPECT_EQ(listOf(d).currentText(), " 2h");
        type(d, "5m");
        press(d, "butCancel");
    });
    EXPECT_TRUE(bCancel);
    EXPECT_EQ(remembered(), "2h");
}

TEST_F(frmSnoozeTest, EveryWayOutButSnoozeIsCancel) {
    const std::pair<const char*, std::function<void(frmSnooze&)>> ways[] = {
        {"button", [](frmSnooze& d) { press(d, "butCancel"); }},
        {"Escape", [](frmSnooze& d) { QTest::keyClick(&d, Qt::Key_Escape); }},
        {"frame", [](frmSnooze& d) { d.close(); }},
    };
    for (const auto& [way, leave] : ways) {
        SCOPED_TRACE(way);
        show([&leave = leave](frmSnooze& d) {
            type(d, "2h");
            leave(d);
            EXPECT_FALSE(d.isVisible());
        });
        EXPECT_TRUE(bCancel);
        EXPECT_EQ(remembered(), "15m");
    }
}

TEST_F(frmSnoozeTest, EnterSnoozesWhereverTheFocusIs) {
    for (const char* focused : {"cboSnooze", "butSnooze", "butCancel", "lblF1"}) {
        SCOPED_TRACE(focused);
        show([focused](frmSnooze& d) {
            type(d, "1d");
            auto& control = childOf<QWidget>(d, focused);
            control.setFocus();
            QTest::keyClick(&control, Qt::Key_Return);
            EXPECT_FALSE(d.isVisible());
        });
        EXPECT_FALSE(bCancel);
        EXPECT_EQ(sSnooze, "1d");
    }
}

TEST_F(frmSnoozeTest, F2OpensAndClosesTheList) {
    show([](frmSnooze& d) {
        QAbstractItemView* view = listOf(d).view();
        QTest::keyClick(&d, Qt::Key_F2);
        EXPECT_TRUE(view->isVisible());
        QTest::keyClick(view, Qt::Key_F2);
        EXPECT_FALSE(view->isVisible());
        EXPECT_TRUE(d.isVisible());
    });
}

TEST_F(frmSnoozeTest, F1AndTheLinkOpenItsHelp) {
    show([](frmSnooze& d) {
        EXPECT_TRUE(childOf<QLabel>(d, "lblF1").text().contains("Show online help..."));
        QTest::keyClick(&d, Qt::Key_F1);
        auto& link = childOf<QLabel>(d, "lblF1");
        emit link.linkActivated("F1");
        childOf<QPushButton>(d, "butCancel").setFocus();
        QTest::keyClick(&childOf<QPushButton>(d, "butCancel"), Qt::Key_Tab);
        EXPECT_TRUE(link.hasFocus());
        const QImage focused = link.grab().toImage();
        QTest::keyClick(&link, Qt::Key_Space);
        EXPECT_TRUE(d.isVisible());
        listOf(d).setFocus();
        EXPECT_NE(focused, link.grab().toImage()) << "where the focus is can be seen";
    });
    EXPECT_EQ(pages, (std::vector{5566, 5566, 5566}));
}

TEST_F(frmSnoozeTest, TheTimeGetsItsPrefixWithTheFirstTick) {
    show([this](frmSnooze& d) {
        auto& time = childOf<QLabel>(d, "lblTime");
        EXPECT_EQ(plainText(time.text()), shortTimeText(clock.time));
        clock.time = clock.time.addMinutes(1);
        const QString ticked = "Time: " + qtText(shortTimeText(clock.time));
        EXPECT_TRUE(QTest::qWaitFor([&] { return time.text() == ticked; }, 5000));
    });
}

TEST_F(frmSnoozeTest, SaysWhatTheTextMeans) {
    show([this](frmSnooze& d) {
        auto& until = childOf<QLabel>(d, "lblUntil");
        EXPECT_EQ(plainText(until.text()),
                  "Reminds Today " + shortTimeText(clock.time.addMinutes(15)));
        type(d, "2d");
        EXPECT_EQ(plainText(until.text()), "Reminds Sun 22 Nov " + shortTimeText(clock.time));
        type(d, "soon");
        EXPECT_EQ(until.text(), "This is no time ahead; nothing would change");
    });
}

// The title alone names the event.
TEST_F(frmSnoozeTest, IsAsWideAsItsTitleUpToTheScreen) {
    for (const int letters : {10, 60, 1000}) {
        SCOPED_TRACE(letters);
        frmSnooze dialog({settings, clock, false, {}});
        dialog.sTitle =
            "Snooze reminder for:  " + std::string(static_cast<std::size_t>(letters), 'x');
        test::whileOpen<frmSnooze>([&] { dialog.ShowModal(); },
                                   [letters](frmSnooze& d) {
                                       const int title =
                                           d.fontMetrics().horizontalAdvance(d.windowTitle());
                                       const int screen = d.screen()->availableSize().width();
                                       EXPECT_LE(d.width(), screen);
                                       EXPECT_GE(d.width(), std::min(title, screen * 8 / 10));
                                       EXPECT_TRUE(letters > 10 || d.width() < screen * 9 / 10);
                                   });
    }
}

TEST_F(frmSnoozeTest, WritesNothingBeforeItWasShown) {
    ErrorState::set(ErrNo::Locked);
    { const frmSnooze dialog({settings, clock, false, {}}); }
    EXPECT_EQ(remembered(), "(none)");
    EXPECT_EQ(ErrorState::number(), ErrNo::Locked);
    ErrorState::clear();
}

}  // namespace
}  // namespace vl
