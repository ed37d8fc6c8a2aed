// The main window over sets and settings of a test's own.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QTabWidget>

#include "Rows.h"
#include "app/Settings.h"
#include "app/Sound.h"
#include "support/ManualClock.h"
#include "support/Support.h"
#include "ui/QtText.h"
#include "ui/frmDDE.h"

namespace vl::test {

inline std::shared_ptr<calEvent> event(const std::string& GUID, const std::string& subject,
                                       DateTime start, int minutesBefore) {
    auto e = std::make_shared<calEvent>();
    e->GUID = GUID;
    e->Subject = subject;
    e->StartDateTime = start;
    e->EndDateTime = start.addMinutes(60);
    e->reminders = R"({"useDefault":false,"overrides":[{"method":"popup","minutes":)" +
                   std::to_string(minutesBefore) + "}]}";
    e->SetRemindersCol();
    return e;
}

/// Answers message boxes.
class Boxes : public MessageScreen {
public:
    BoxAnswer ShowBox(const BoxRequest& box) override {
        shown.push_back(box);
        return answer;
    }

    std::vector<BoxRequest> shown;
    BoxAnswer answer = BoxAnswer::Ok;
};

/// A window over sets that are filled by hand: there is no database to read.
class WindowTest : public testing::Test {
protected:
    WindowTest() { settings.filename = (folder / "VLReminders.ini").string(); }

    WindowParts parts(GridUtils& utils) {
        return {.reminders = reminders,
                .period = period,
                .db = db,
                .settings = settings,
                .clock = clock,
                .state = state,
                .ledger = ledger,
                .sound = sound,
                .gridUtils = utils,
                .DebugMode = DebugMode,
                .HelpBase = HelpBase,
                .hasTray = [this] { return hasTray; },
                .keysRest = keysRest,
                .openDocument =
                    [this](std::string_view address) {
                        opened.emplace_back(address);
                        return opens;
                    },
                .startProgram =
                    [this](const std::vector<std::string>& command) {
                        started.push_back(command);
                        return starts;
                    },
                .Version = "1.4.27",
                .boxes = &boxes};
    }
    frmDDE& load() {
        window.reset();
        window = std::make_unique<frmDDE>(parts(gridUtils));
        window->Load();
        return *window;
    }
    /// A database that can be read; the sets stay as they are.
    void haveDatabase() {
        db.DBFullName = (folder / "Sample.RemindDB").string();
        writeFile(db.DBFullName, readFile(repoFile("data/first-light.RemindDB")));
        EXPECT_TRUE(db.OpenRS("SELECT GUID FROM Reminders")->isOpen());
        db.CloseDB();
    }
    void add(const std::shared_ptr<calEvent>& e) { period.Add(e, e->GUID); }

    /// A control is looked for when the window has been shown, or would have it if it were.
    template <class T>
    T& child(const char* name) const {
        if constexpr (std::is_base_of_v<QWidget, T>) {
            window->furnish();
        }
        T* found = window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    Grid& grid(int i) const { return child<Grid>(("G" + std::to_string(i)).c_str()); }
    /// The rows of a grid, which need no control.
    const GridList& listed(int i) const {
        window->fillPeriod();
        return window->list(i);
    }
    QComboBox& list() const { return child<QComboBox>("cboPeriod"); }
    std::string tab(int i) const { return plainText(child<QTabWidget>("tabs").tabText(i)); }
    std::string ini(const char* section, const char* key) const {
        return settings.GetIni(section, key, "(none)");
    }
    static QMenu* trayMenu() {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "mnuTray") {
                return qobject_cast<QMenu*>(top);
            }
        }
        return nullptr;
    }
    void takeIn(const std::shared_ptr<calEvent>& e) {
        e->InstanceStart = e->StartDateTime;
        state.NewReminders->Add(Variant(ObjectRef(e)), e->GUID);
        window->AddItemR(e, kNewRemindersGrid);
    }

    test::TempFolder folder;
    test::ManualClock clock{someFriday()};
    DBRemindUtils db;
    Settings settings;
    CalEvents reminders{db, clock};
    CalEvents period{db, clock};
    ReminderState state;
    Ledger ledger{clock};
    SoundPlayer sound;
    GridUtils gridUtils;
    bool DebugMode = false;
    std::chrono::milliseconds keysRest{0};
    std::string HelpBase = "file:///help/index.html#";
    std::vector<std::string> opened;                // documents and addresses
    std::vector<std::vector<std::string>> started;  // programs, with their arguments
    bool starts = true;
    bool opens = true;
    Boxes boxes;
    bool hasTray = true;
    std::unique_ptr<frmDDE> window;
};

}  // namespace vl::test
