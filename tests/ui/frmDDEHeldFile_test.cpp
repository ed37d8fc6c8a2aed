// What the window says and does while another process is in the middle of a change of the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "Dialogs.h"
#include "WindowTest.h"
#include "support/EventFile.h"
#include "support/HoldingProcess.h"
#include "ui/SplitButton.h"
#include "ui/frmDismiss.h"
#include "ui/frmSnooze.h"

namespace vl {
namespace {

using test::someFriday;

class HeldFileWindow : public testing::Test {
protected:
    /// The program with its window, and all that it forgets when it ends.
    struct Program {
        explicit Program(const HeldFileWindow& test)
            : reminders(db, test.clock),
              period(db, test.clock),
              ledger(test.clock, (test.folder / "VLReminders.ledger").string()) {
            db.DBFullName = test.file.path();
            db.Patience = std::chrono::milliseconds(0);  // nobody lets go while it waits
            settings.filename = (test.folder / "VLReminders.ini").string();
            window = std::make_unique<frmDDE>(WindowParts{.reminders = reminders,
                                                          .period = period,
                                                          .db = db,
                                                          .settings = settings,
                                                          .clock = test.clock,
                                                          .state = state,
                                                          .ledger = ledger,
                                                          .sound = sound,
                                                          .gridUtils = gridUtils,
                                                          .HelpBase = {},
                                                          .hasTray = [] { return true; },
                                                          .Version = "1.4.27",
                                                          .boxes = &boxes});
        }
        DBRemindUtils db;
        Settings settings;
        CalEvents reminders;
        CalEvents period;
        ReminderState state;
        Ledger ledger;
        SoundPlayer sound;
        GridUtils gridUtils;
        test::Boxes boxes;
        std::unique_ptr<frmDDE> window;
    };

    /// Up to its first check, with the window shown.
    void start() {
        program.reset();
        program = std::make_unique<Program>(*this);
        program->settings.SaveIni("Reminders", "NotifType", "T");
        program->window->Load();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !program->state.dLastUpdated.isZero(); }));
        program->window->ShowHide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(program->window.get()));
    }
    void stop() { program->window->Unload(); }

    template <class T>
    T& child(const char* name) const {
        return test::childOf<T>(*program->window, name);
    }
    /// What stands at the end of the status line; empty when it is not seen.
    std::string notice() const {
        const auto& label = child<QLabel>("lblNotice");
        return label.isVisible() ? plainText(label.text()) : std::string();
    }
    std::string inGrid(int i) const {
        std::string GUIDs;
        program->window->fillPeriod();
        for (const GridRow& row : program->window->list(i).rows().rows()) {
            GUIDs += plainText(row.GUID);
        }
        std::sort(GUIDs.begin(), GUIDs.end());
        return GUIDs;
    }
    std::string listed() const { return inGrid(kNewRemindersGrid); }
    void choose(const char* GUID, int tab = 0) {
        child<QTabWidget>("tabs").setCurrentIndex(tab);
        ASSERT_TRUE(program->window->SelectGUID(GUID)) << GUID;
    }
    void inDismissDialog(const std::function<void(frmDismiss&)>& answer) {
        test::whileOpen<frmDismiss>(
            [this] { emit child<SplitButton>("butDismiss").chooseChosen(); },
            [&](frmDismiss& dialog) {
                answer(dialog);
                test::childOf<QPushButton>(dialog, "butOK").click();
            });
    }
    void refresh() {
        program->window->activateWindow();  // it may be behind the pop-up
        ASSERT_TRUE(QTest::qWaitForWindowActive(program->window.get()));
        QTest::keyClick(program->window.get(), Qt::Key_F5);
    }
    void checkNow() {
        ASSERT_TRUE(QMetaObject::invokeMethod(&child<QTimer>("TimerCheck"), "timeout"));
    }

    /// What somebody else reads in the file; null where the row is gone.
    std::shared_ptr<calEvent> stored(const char* GUID) const {
        DBRemindUtils other;
        other.DBFullName = file.path();
        return CalEvents(other, clock).EventByGUID(GUID);
    }

    test::TempFolder folder;
    test::ManualClock clock{someFriday()};
    test::EventFile file{(folder / "Velmora.RemindDB").string()};
    std::unique_ptr<Program> program;
};

TEST_F(HeldFileWindow, SaysThatActsWaitAndWritesThemInOrderWhenTheOtherProcessIsGone) {
    for (const char* GUID : {"S", "D", "H", "O", "X"}) {
        const auto e =
            test::event(GUID, std::string("Event ") + GUID, someFriday().addMinutes(10), 15);
        e->Modified = someFriday();
        file.put(*e);
    }
    start();
    ASSERT_EQ(listed().size(), 5U);
    EXPECT_EQ(notice(), "");
    {
        const test::HoldingProcess other(file.path());
        choose("S");
        test::whileOpen<frmSnooze>(
            [this] { child<QPushButton>("butSnooze").click(); },
            [](frmSnooze& dialog) {
                test::childOf<QComboBox>(dialog, "cboSnooze").setEditText("20m");
                test::childOf<QPushButton>(dialog, "butSnooze").click();
            });
        EXPECT_EQ(notice(), "1 change waits until the database can be written");
        choose("D");
        QTest::keyClick(&child<Grid>("G0"), Qt::Key_Delete);
        EXPECT_EQ(notice(), "2 changes wait until the database can be written");
        choose("H", kEventsGrid);
        child<QPushButton>("butSnooze").click();  // "&Hide" on this tab
        EXPECT_EQ(notice(), "3 changes wait until the database can be written");
        choose("O");
        inDismissDialog([](frmDismiss& dialog) {
            test::childOf<QRadioButton>(dialog, "radAll").click();
            test::childOf<QCheckBox>(dialog, "chkDone").click();
        });
        EXPECT_EQ(notice(), "5 changes wait until the database can be written");
        choose("X");
        inDismissDialog([](frmDismiss& dialog) {
            test::childOf<QRadioButton>(dialog, "radDeleteItem").click();
        });
        EXPECT_EQ(notice(), "6 changes wait until the database can be written");
        EXPECT_EQ(listed(), "H") << "each act holds at once";
        const std::string shown = inGrid(kAllRemindersGrid);
        EXPECT_EQ(shown.find('X'), std::string::npos) << shown;
        for (const bool byCheck : {false, true}) {
            byCheck ? checkNow() : refresh();
            EXPECT_EQ(notice(), "6 changes wait until the database can be written");
            EXPECT_EQ(inGrid(kAllRemindersGrid), shown);
        }

        stop();
        clock.time = someFriday().addMinutes(1);
        start();
        EXPECT_EQ(notice(), "6 changes wait until the database can be written");
        EXPECT_EQ(listed(), "H");
        for (const char* GUID : {"S", "D", "H", "O", "X"}) {
            const auto row = stored(GUID);
            ASSERT_TRUE(row) << GUID;
            EXPECT_TRUE(row->NextReminder.isZero() && row->Dismissed.isZero() && !row->Hidden &&
                        row->status.empty())
                << GUID;
        }
    }
    checkNow();
    EXPECT_EQ(notice(), "");
    EXPECT_EQ(stored("S")->NextReminder, someFriday().addMinutes(20));
    EXPECT_EQ(stored("D")->Dismissed, someFriday());
    EXPECT_TRUE(stored("H")->Hidden);
    EXPECT_EQ(stored("O")->Dismissed, someFriday());
    EXPECT_EQ(stored("O")->status, "AllDone");
    EXPECT_FALSE(stored("X"));
    EXPECT_EQ(listed(), "H");
    EXPECT_TRUE(program->boxes.shown.empty()) << "nobody was asked anything";
}

}  // namespace
}  // namespace vl
