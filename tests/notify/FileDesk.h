// The program as its user meets it, over a file that a host writes.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "CheckParts.h"
#include "support/EventFile.h"
#include "support/Events.h"
#include "support/Support.h"

namespace vl::test {

class FileDesk {
public:
    ManualClock clock{at(9, 0)};
    TempFolder folder;
    EventFile file{(folder / "Velmora.RemindDB").string()};

    /// Keeps the rows of the list as they are filled: the check's own reading resets what its
    /// question has left in the events.
    class Screen final : public RecordingScreen {
    public:
        explicit Screen(FileDesk& desk) : desk_(desk) {}
        void AddItemR(const std::shared_ptr<calEvent>& event, int grid) override {
            RecordingScreen::AddItemR(event, grid);
            if (grid == kNewRemindersGrid) {
                desk_.noteRow(event);
            }
        }
        void UpdateItemR(const std::shared_ptr<calEvent>& event, int grid) override {
            RecordingScreen::UpdateItemR(event, grid);
            if (grid == kNewRemindersGrid) {
                desk_.listed[event->GUID] = {event, event->InstanceStart,
                                             event->RecordedReminderD()};
            }
        }

    private:
        FileDesk& desk_;
    };

    /// The program and all that it forgets when it ends.
    struct Program : CheckParts<Screen> {
        Program(FileDesk& desk, const ManualClock& clock, const std::string& ledgerPath)
            : CheckParts(clock, ledgerPath, desk) {
            db.DBFullName = desk.file.path();
            db.Patience = std::chrono::milliseconds(0);
        }
    };
    std::unique_ptr<Program> program;

    void start() {
        program.reset();
        program = std::make_unique<Program>(*this, clock, (folder / "VLReminders.ledger").string());
        program->cycle.ReadAtStart();
    }

    /// The host writes a row now.
    void put(const std::shared_ptr<calEvent>& event) {
        event->Modified = clock.time;
        file.put(*event);
    }

    /// One check at this time; what it took into the list, by GUID and the reminder's time:
    /// "A 09:45".
    std::string check(DateTime when) {
        clock.time = when;
        if (!program) {
            start();
        }
        taken_.clear();
        program->cycle.Tick(10000);
        return taken_;
    }

    /// The rows of the list as they were filled.
    std::map<std::string, ActRow> listed;

    /// In the file's place stands something that cannot be read or written.
    void takeFileAway() {
        std::filesystem::rename(file.path(), folder / "away");
        std::filesystem::create_directory(file.path());
    }
    void bringFileBack() {
        std::filesystem::remove(file.path());
        std::filesystem::rename(folder / "away", file.path());
    }

private:
    void noteRow(const std::shared_ptr<calEvent>& event) {
        const DateTime reminder = event->RecordedReminderD();
        listed[event->GUID] = {event, event->InstanceStart, reminder};
        const std::string time = formatDateTime(reminder);
        taken_ += (taken_.empty() ? "" : ", ") + event->GUID + " " +
                  (reminder.hasTime() ? time.substr(11, 5) : "00:00");
    }

    std::string taken_;
};

}  // namespace vl::test
