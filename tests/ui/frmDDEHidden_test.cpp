// The window before it is first shown: it has no controls, and nobody can tell afterwards.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include <QAbstractButton>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>

#include "WindowTest.h"
#include "notify/Periods.h"

namespace vl {
namespace {

using test::event;
using test::someFriday;

class frmDDEHidden : public test::WindowTest {
protected:
    std::size_t controls() const { return std::size_t(window->findChildren<QWidget*>().size()); }
    static bool hasPopUp() {
        const auto all = QApplication::topLevelWidgets();
        return std::any_of(all.begin(), all.end(),
                           [](const QWidget* each) { return each->objectName() == "Popup1"; });
    }

    /// Nothing has happened yet, and nothing is there.
    void beginAnew() {
        clock.time = someFriday();
        state = ReminderState();
        period.mCol = std::make_shared<GenCollection>();
    }
    static std::string cellsOf(const QAbstractItemModel& rows, int row) {
        std::string all;
        for (int column = 0; column < rows.columnCount(); ++column) {
            all += plainText(rows.index(row, column).data().toString()) + '|';
        }
        return all;
    }

    /// All that a user could tell one window from another by.
    std::string seen() {
        window->furnish();
        std::ostringstream out;
        out << plainText(window->GetIconText()) << '|' << plainText(list().currentText()) << '|'
            << state.sPeriod << '|' << child<QTabWidget>("tabs").currentIndex() << '\n';
        for (int i = 0; i < kGridCount; ++i) {
            out << tab(i) << '|' << plainText(grid(i).emptyText()) << '|'
                << grid(i).header()->sortIndicatorSection() << '\n';
            const QAbstractItemModel& shown = *grid(i).model();
            for (int row = 0; row < shown.rowCount(); ++row) {
                out << cellsOf(shown, row) << (grid(i).currentIndex().row() == row) << '\n';
            }
            for (const std::string& GUID : listed(i).SelectedGUIDs()) {
                out << GUID << ' ';
            }
            out << plainText(shown.headerData(3, Qt::Horizontal, Qt::DisplayRole).toString())
                << '\n';
        }
        for (const char* name : {"butSnooze", "butDismiss", "butOpen"}) {
            const auto& button = child<QAbstractButton>(name);
            out << plainText(button.text()) << button.isEnabled() << plainText(button.toolTip());
        }
        for (const char* name : {"lblStatus", "lblNotice", "lblTime"}) {
            out << '\n' << plainText(child<QLabel>(name).text());
        }
        out << '\n' << (state.curEvent ? state.curEvent->GUID : "-") << state.bIsDismiss;
        return out.str();
    }

    /// The rows, whichever is chosen, and the tray's tip.
    std::string rowsSeen() {
        std::string out = plainText(window->GetIconText());
        for (int i = 0; i < kGridCount; ++i) {
            out += "\n" + tab(i) + '|' + plainText(grid(i).emptyText()) + '|';
            for (int row = 0; row < grid(i).model()->rowCount(); ++row) {
                out += cellsOf(*grid(i).model(), row);
            }
        }
        return out;
    }

    /// What comes from below while nobody looks.
    void happen(std::mt19937& random) {
        const auto pick = [&random](int n) { return static_cast<int>(random() % unsigned(n)); };
        const std::string GUID = "{" + std::to_string(pick(6)) + "}";
        switch (pick(7)) {
            case 0:
            case 1:
                takeIn(event(GUID, "Subject of " + GUID, clock.now().addMinutes(pick(90) - 30),
                             pick(30)));
                break;
            case 2:
                window->RemoveGUID(GUID, pick(kGridCount));
                break;
            case 3:
                window->FirstNewRowCurrent();
                break;
            case 4:
                add(event(GUID, "Of the period " + GUID, clock.now().addMinutes(pick(600) - 200),
                          pick(30)));
                window->DoPeriod();
                break;
            case 5:
                clock.time = clock.time.addMinutes(pick(400));
                window->ShowTime();
                break;
            default:
                window->SelectGUID(GUID);
                window->SetIcon();
        }
        window->UpdateUI();
    }
};

TEST_F(frmDDEHidden, ControlsAreMadeWhenItIsFirstShown) {
    haveDatabase();
    load();
    takeIn(event("{1}", "Tea", clock.now(), 5));
    window->DoPeriod();
    window->UpdateUI();
    window->UpdateG1();
    emit trayMenu()->aboutToShow();
    window->SaveSettings();
    window->HideMe();
    EXPECT_EQ(controls(), 0U);
    EXPECT_FALSE(hasPopUp());
    window->ShowHide();
    EXPECT_GT(controls(), 10U);
    EXPECT_EQ(tab(0), "&New Reminders: 1");
    EXPECT_TRUE(grid(0).hasFocus() || window->focusWidget() == &grid(0));
    window->ShowHide();
    EXPECT_GT(controls(), 10U) << "and stay";
}

TEST_F(frmDDEHidden, NobodyCanTellWhenTheControlsWereMade) {
    haveDatabase();
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::string told[2];
        for (const bool early : {false, true}) {
            beginAnew();
            std::mt19937 random(seed);
            settings.SaveIni("Reminders", "Period", periods()[random() % periods().size()].code);
            load();
            if (early) {
                window->furnish();
            }
            for (int step = 0; step < 25; ++step) {
                happen(random);
            }
            EXPECT_EQ(controls() > 0, early);
            told[early] = seen();
        }
        ASSERT_EQ(told[0], told[1]);
    }
}

TEST_F(frmDDEHidden, TheSavedOrderOfTheRowsHoldsBeforeAnybodySeesThem) {
    settings.SaveIni(kColumnsSection, "NewRemindersSort", "-Subject");
    load();
    for (const char* subject : {"b", "c", "a"}) {
        takeIn(event(std::string("{") + subject + "}", subject, clock.now(), 5));
    }
    window->FirstNewRowCurrent();
    EXPECT_EQ(plainText(listed(0).currentRow()->summary), "c");
    EXPECT_EQ(grid(0).header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(plainText(listed(0).currentRow()->summary), "c");
    EXPECT_EQ(settings.GetIniSection(kColumnsSection),
              std::string("NewRemindersSort=-Subject\0", 26));
}

TEST_F(frmDDEHidden, NobodyCanTellHowOftenItWasHidden) {
    haveDatabase();
    for (unsigned seed = 1; seed <= 25; ++seed) {
        SCOPED_TRACE(seed);
        std::string told[2];
        for (const bool hides : {false, true}) {
            beginAnew();
            std::mt19937 random(seed);
            load();
            window->show();
            for (int step = 0; step < 60; ++step) {
                if (random() % 3 == 0) {
                    child<QTabWidget>("tabs").setCurrentIndex(int(random() % kGridCount));
                }
                if (random() % 8 == 0) {
                    child<QLineEdit>("txtSearch").setText(random() % 2 ? "{1}" : "");
                }
                if (random() % 4 == 0) {
                    period.mCol->Remove("{" + std::to_string(random() % 6) + "}");
                    window->DoPeriod();
                }
                if (random() % 2 && hides) {
                    window->isVisible() ? window->hide() : window->show();
                }
                happen(random);
            }
            window->show();
            window->DoPeriod();
            told[hides] = rowsSeen();
        }
        ASSERT_EQ(told[0], told[1]);
    }
}

// A window that nobody has opened all day leaves the settings as one that was.
TEST_F(frmDDEHidden, WritesTheSameSettings) {
    settings.SaveIni("Window", "Left", "60");
    settings.SaveIni("Window", "Top", "70");
    settings.SaveIni("Window", "Width", "640");
    settings.SaveIni("Window", "Height", "420");
    settings.SaveIni("Reminders", "Period", "D+7");
    std::string written[2];
    for (const bool early : {false, true}) {
        load();
        if (early) {
            window->furnish();
        }
        window->Unload();
        written[early] = settings.GetIniSection("Window") + settings.GetIniSection("Reminders");
    }
    EXPECT_EQ(written[0], written[1]);
    EXPECT_TRUE(written[0].starts_with(std::string("Left=60\0Top=70\0Width=640", 24)));
    EXPECT_NE(written[0].find("Period=D+7"), std::string::npos);
}

TEST_F(frmDDEHidden, APopUpNeedsNoWindow) {
    load();
    state.EvCol = std::make_shared<GenCollection>();
    window->ShowPopUp({"Title", "Text", 5000, false, 250, 100, 100});
    EXPECT_TRUE(hasPopUp());
    EXPECT_EQ(controls(), 0U);
    window->HidePopUp();
    EXPECT_EQ(controls(), 0U);
}

}  // namespace
}  // namespace vl
