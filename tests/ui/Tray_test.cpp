#include "ui/Tray.h"

#include <gtest/gtest.h>

#include <QActionGroup>
#include <QSignalSpy>

#include "ui/QtText.h"
#include "ui/TrayPictures.h"

namespace vl {
namespace {

class TrayTest : public testing::Test {
protected:
    QAction& entry(const char* name) {
        auto* found = tray.menu().findChild<QAction*>(name);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    /// The names of the checked entries, as the menu shows them when it opens.
    std::string checked() {
        emit tray.menu().aboutToShow();
        std::string names;
        for (const char* name : {"mnuMute", "mnuSilent", "mnuOnTop", "mnuTypeDialog",
                                 "mnuTypeEmail", "mnuTypeTray", "mnuTypePopup", "mnuTypeSystem"}) {
            if (entry(name).isChecked()) {
                names += (names.empty() ? "" : " ") + std::string(name);
            }
        }
        return names;
    }

    ReminderState state;
    Tray tray{quietPicture(), newPicture(), state};
};

TEST_F(TrayTest, ChecksExactlyTheTypeInForce) {
    struct Case {
        const char* type;
        const char* checked;
    };
    static constexpr Case cases[] = {{"D", "mnuTypeDialog"},
                                     {"E", "mnuTypeEmail"},
                                     {"T", "mnuTypeTray"},
                                     {"P", "mnuTypePopup"},
                                     {"S", "mnuTypeSystem"},
                                     {"d", "mnuTypeDialog"},
                                     {"s", "mnuTypeSystem"},
                                     {"S:", ""},
                                     {"", ""},
                                     {"p", "mnuTypePopup"}};
    for (const Case& c : cases) {
        state.sNotifType = c.type;
        EXPECT_EQ(checked(), c.checked) << c.type;
    }
}

TEST_F(TrayTest, ChecksTheFlagsAsTheyAreWhenItOpens) {
    EXPECT_EQ(checked(), "mnuTypeDialog");
    state.bMuted = true;
    EXPECT_EQ(checked(), "mnuMute mnuTypeDialog");
    state.bMuted = false;
    state.bSilent = state.bOnTop = true;
    EXPECT_EQ(checked(), "mnuSilent mnuOnTop mnuTypeDialog");
}

// A checkable entry turns its own mark when it is chosen; what holds is the state.
TEST_F(TrayTest, AnEntryOnlySaysThatItWasChosen) {
    QSignalSpy muted(&tray, &Tray::mute);
    QSignalSpy type(&tray, &Tray::notifType);
    entry("mnuMute").trigger();
    entry("mnuTypePopup").trigger();
    EXPECT_EQ(muted.count(), 1);
    ASSERT_EQ(type.count(), 1);
    EXPECT_EQ(type[0][0].toString(), "P");
    EXPECT_EQ(checked(), "mnuTypeDialog");
}

TEST_F(TrayTest, TheFirstEntryCarriesTheTip) {
    struct Case {
        const char* tip;
        const char* caption;
    };
    static constexpr Case cases[] = {{"0 New reminder", "0 New reminder"},
                                     {"2 Events\r\n1 new reminder", "2 Events: 1 new reminder"},
                                     {"1 Reminder\r\n3 new reminders\r\n(click to show/hide)",
                                      "1 Reminder: 3 new reminders: (click to show/hide)"}};
    for (const Case& c : cases) {
        tray.setToolTip(c.tip);
        EXPECT_EQ(tray.menu().actions().first()->text(), c.caption);
        EXPECT_EQ(tray.menu().actions().first()->objectName(), "mnuShowHide");
    }
}

TEST_F(TrayTest, TheMenuIsFilledBeforeAnybodyAsksForIt) {
    // Some panels show it by themselves, and ask over the bus what is in it.
    for (const char* name :
         {"mnuAbout", "mnuCleanUp", "mnuDeleteAll", "mnuExit", "mnuRefresh", "mnuShowHide"}) {
        EXPECT_TRUE(tray.menu().actions().contains(&entry(name))) << name;
    }
    EXPECT_TRUE(entry("mnuTypeDialog").actionGroup()->isExclusive());
}

TEST_F(TrayTest, HasTwoPictures) {
    const auto* icon = tray.findChild<QSystemTrayIcon*>();
    ASSERT_NE(icon, nullptr);
    const auto shown = [icon] { return icon->icon().pixmap(32, 32).toImage(); };
    const QImage normal = quietPicture().pixmap(32, 32).toImage();
    const QImage withDot = newPicture().pixmap(32, 32).toImage();
    ASSERT_NE(normal, withDot);
    EXPECT_EQ(shown(), normal);
    for (int i = 0; i < 2; ++i) {
        tray.setNew(true);
        EXPECT_EQ(shown(), withDot);
        tray.setNew(false);
        EXPECT_EQ(shown(), normal);
    }
}

}  // namespace
}  // namespace vl
