// The program as its user meets it, over rows that are held in memory.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "CheckParts.h"
#include "support/Events.h"
#include "support/Support.h"

namespace vl::test {

/// Rows, a clock, and a program that is started, checks and is acted upon. There is no database
/// file: what acts put into the events is taken over into the rows, as long as `rowsAreWritten`.
class Desk {
public:
    ManualClock clock{at(9, 0)};
    TempFolder folder;
    std::string ledgerPath = (folder / "VLReminders.ledger").string();
    std::map<std::string, std::shared_ptr<calEvent>> rows;
    bool rowsAreWritten = true;
    const ManualClock* ledgerClock = nullptr;  ///< that the ledger goes by; null: by `clock`

    /// The program and all that it forgets when it ends.
    using Program = CheckParts<>;
    std::unique_ptr<Program> program;

    /// The host writes a row, a new one or over the old one.
    void put(const std::shared_ptr<calEvent>& row) {
        rows[row->GUID] = row;
        if (program) {
            place(*program, row);
        }
    }
    /// The host changes a row.
    template <class Change>
    void change(const std::string& GUID, Change&& apply) {
        auto row = std::make_shared<calEvent>(*rows.at(GUID));
        apply(*row);
        row->SetRemindersCol();
        if (!row->recurrence.empty()) {
            row->LoadRecurrence();
        }
        put(row);
    }
    void remove(const std::string& GUID) {
        rows.erase(GUID);
        for (CalEvents* set : {&program->reminders, &program->period}) {
            set->mCol->Remove(GUID);
        }
    }

    void start() {
        program.reset();
        program = std::make_unique<Program>(clock, ledgerClock ? *ledgerClock : clock, ledgerPath);
        program->reminders.mCol = std::make_shared<GenCollection>();
        program->period.mCol = std::make_shared<GenCollection>();
        for (const auto& [GUID, row] : rows) {
            place(*program, row);
        }
    }
    void stop() { program.reset(); }

    /// One check at this time. What it took into the list: "A 20 10:00 (20 09:45)", an item a
    /// reminder, parted by commas: the occurrence's day and time, and in parentheses the
    /// reminder's.
    std::string check(DateTime when) {
        clock.time = when;
        return check();
    }
    std::string check() {
        if (!program) {
            start();
        }
        Program& p = *program;
        p.screen.forget();
        p.cycle.Tick(10000);
        std::string taken;
        for (const Variant& item : *p.state.NewReminders) {
            const auto event = objectIn<calEvent>(item);
            if (p.screen.count("AddItemR " + event->Subject + " 0") > 0) {
                listed[event->GUID] = {event, event->InstanceStart, event->RecordedReminderD()};
                taken += (taken.empty() ? "" : ", ") + said(listed.at(event->GUID));
            }
        }
        return taken;
    }
    /// Checks from now to `until`, one every `seconds`; what all of them took.
    std::string run(DateTime until, int seconds = 10) {
        std::string taken;
        while (clock.time < until) {
            clock.time = std::min(until, clock.time.addSeconds(seconds));
            const std::string now = check();
            taken += (taken.empty() || now.empty() ? "" : ", ") + now;
        }
        return taken;
    }
    bool rang() const { return program->screen.count("PlayReminderSound") > 0; }

    // Acts on the row that the list of new reminders shows, or showed last.
    void snooze(const std::string& GUID, int minutes) {
        program->acts.Snooze(listed.at(GUID), minutes);
        written(GUID);
    }
    void dismiss(const std::string& GUID, DismissMode mode = DismissMode::This,
                 bool markDone = false) {
        program->acts.Dismiss(listed.at(GUID), mode, markDone);
        written(GUID);
    }
    void reactivate(const std::string& GUID) {
        program->acts.Reactivate(listed.at(GUID));
        written(GUID);
    }
    std::map<std::string, ActRow> listed;

private:
    static void place(Program& p, const std::shared_ptr<calEvent>& row) {
        for (CalEvents* set : {&p.reminders, &p.period}) {
            if (set->mCol) {
                set->mCol->Remove(row->GUID);
            }
            set->Add(std::make_shared<calEvent>(*row), row->GUID);
        }
    }
    void written(const std::string& GUID) {
        const auto event = objectAt<calEvent>(*program->period.mCol, GUID);
        if (rowsAreWritten && event && rows.contains(GUID)) {
            calEvent& row = *rows.at(GUID);
            row.NextReminder = event->NextReminder;
            row.Dismissed = event->Dismissed;
            row.status = event->status;
            row.Hidden = event->Hidden;
        }
    }
    static std::string said(const ActRow& row) {
        const auto text = [](DateTime d) {
            return formatDateTime(d).substr(8, 2) + " " +
                   (d.hasTime() ? formatDateTime(d).substr(11, 5) : "00:00");
        };
        return row.event->GUID + " " + text(row.InstanceStart) + " (" + text(row.reminder) + ")";
    }
};

}  // namespace vl::test
