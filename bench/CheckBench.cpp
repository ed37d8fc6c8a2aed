// What a check costs over a file of many events, beside the plain way: everything read and
// expanded again.
//
//   bench_check [events] [folder]
//
// Figures are of this process on an idle machine; each is the best of several, but for the first
// read. Memory is what the process holds for itself alone, from smaps_rollup.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/Clock.h"
#include "db/jet/Database.h"
#include "notify/CheckCycle.h"
#include "support/EventFile.h"
#include "support/ManyEvents.h"

namespace {

namespace fs = std::filesystem;
using vl::calEvent;
using vl::CalEvents;
using vl::DateTime;

const DateTime kNow = DateTime::fromCivil(2026, 11, 20, 14, 0);

class TurnedClock final : public vl::Clock {
public:
    DateTime now() const override { return time; }
    DateTime time = kNow;
};

/// Asks what the window asks for its views, and shows nothing.
class Views final : public vl::ReminderScreen {
public:
    explicit Views(CalEvents& period) : period_(period) {}
    void AddItemR(const std::shared_ptr<calEvent>&, int) override { ++listed; }
    void UpdateItemR(const std::shared_ptr<calEvent>&, int) override {}
    void RemoveGUID(std::string_view, int) override {}
    void FirstNewRowCurrent() override {}
    void ShowNewReminders(std::string_view) override {}
    void ShowPopUp(const vl::PopUpRequest&) override {}
    void ShowSystem(const std::string&, const std::string&, int) override {}
    void PlayReminderSound() override {}
    void DoPeriod() override {
        if (!shows) {
            return;
        }
        const DateTime today = kNow.date();
        shown = period_.RemindCol(today, today.addMinutes(1439))->Count() +
                period_.EventCol(today, today.addMinutes(1439))->Count();
    }
    void SetIcon() override {}
    void ShowTime() override {}
    void UpdateUI() override {}
    void UpdateG1() override {}
    bool GetHasFocus() const override { return false; }
    bool IsWindowVisible() const override { return true; }
    int CheckInterval() const override { return 10000; }
    void SetCheckInterval(int) override {}

    bool shows = true;
    std::size_t listed = 0;
    std::size_t shown = 0;

private:
    CalEvents& period_;
};

template <class Step>
double milliseconds(Step&& step) {
    const auto begin = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

template <class Step>
double best(int runs, Step&& step) {
    double least = milliseconds(step);
    for (int i = 1; i < runs; ++i) {
        least = std::min(least, milliseconds(step));
    }
    return least;
}

/// KiB that no other process has.
long privateKiB() {
    std::ifstream in("/proc/self/smaps_rollup");
    long sum = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("Private_", 0) == 0) {
            sum += std::strtol(line.c_str() + line.find(':') + 1, nullptr, 10);
        }
    }
    return sum;
}

std::size_t textsOf(const CalEvents& set) {
    std::size_t bytes = 0;
    for (const vl::Variant& item : *set.mCol) {
        const auto event = vl::objectIn<calEvent>(item);
        for (const auto& property : calEvent::properties()) {
            if (const auto* member = std::get_if<std::string calEvent::*>(&property.member)) {
                bytes += ((*event).*(*member)).size();
            }
        }
    }
    return bytes;
}

// In a process of its own: what it leaves behind would be taken for memory of the sets.
bool makeFile(const std::string& path, std::size_t count) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr std::size_t kBatch = 5000;
        vl::test::EventFile file(path);
        vl::test::ManyEvents events(kNow);
        for (std::size_t made = 0; made < count; made += kBatch) {
            file.put(events.next(std::min(kBatch, count - made)));
        }
        _exit(0);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

std::size_t scan(const std::string& path) {
    const auto db = vl::jet::Database::open(path, vl::jet::Access::Read);
    const auto table = db.table("Reminders");
    std::size_t values = 0;
    for (auto row = table.scan(); row.next();) {
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            values += row.value(i).isNull() ? 0U : 1U;
        }
    }
    return values;
}

void measure(std::size_t count, const fs::path& folder) {
    const std::string path = (folder / "Velmora.RemindDB").string();
    if (!makeFile(path, count)) {
        std::fprintf(stderr, "the file could not be made\n");
        return;
    }
    std::printf("%zu events, a file of %.1f MB\n", count,
                static_cast<double>(fs::file_size(path)) / 1e6);
    std::size_t values = 0;
    const double bare = best(3, [&] { values = scan(path); });

    TurnedClock clock;
    vl::DBRemindUtils db;
    db.DBFullName = path;
    CalEvents reminders(db, clock);
    CalEvents period(db, clock);
    vl::ReminderState state;
    state.sNotifType = "T";
    Views screen(period);
    vl::Ledger ledger(clock, (folder / "VLReminders.ledger").string());
    vl::Acts acts(reminders, period, db, clock, ledger, state);
    vl::CheckCycle cycle(reminders, period, db, clock, state, screen, ledger, acts);

    const long before = privateKiB();
    const double first = milliseconds([&] { period.ReadDB(true, false); });
    reminders.Adopt(period);
    const double firstCheck = milliseconds([&] { cycle.Tick(10000); });
    const double held = static_cast<double>(privateKiB() - before) * 1024;
    const auto events = static_cast<double>(period.mCol->Count());
    const auto texts = static_cast<double>(textsOf(period));

    const auto tick = [&] {
        clock.time = clock.time.addSeconds(10);
        cycle.Tick(10000);
    };
    const double idle = best(20, tick);
    screen.shows = false;
    const double hidden = best(20, tick);
    vl::DBRemindUtils host;
    host.DBFullName = path;
    int step = 0;
    double changed = 1e9;
    for (int i = 0; i < 5; ++i) {
        clock.time = clock.time.addSeconds(10);
        host.Execute("UPDATE Reminders SET EventID = " + std::to_string(++step) +
                     ", Modified = " + vl::DBRemindUtils::ToSQLDateTime(clock.time, true) +
                     " WHERE GUID = \"" + period.mCol->Key(1 + i * 7) + "\"");
        changed = std::min(changed, milliseconds([&] { cycle.Tick(10000); }));
    }
    const double full = best(3, [&] {
        CalEvents again(db, clock);
        again.ReadDB(true, false);
    });
    const double plain = best(3, [&] {
        CalEvents again(db, clock);
        again.ReadDB(true, false);
        again.RemindCol(clock.time, clock.time.addSeconds(20));
        CalEvents views(db, clock);
        views.ReadDB(true, false);
        views.RemindCol(kNow.date(), kNow.date().addDays(1));
        views.EventCol(kNow.date(), kNow.date().addDays(1));
    });
    std::printf("engine's bare scan       %9.2f ms (%zu values)\n", bare, values);
    std::printf("full read                %9.2f ms, first %.2f ms; of the scan %.2f\n", full, first,
                full / bare);
    std::printf("first check              %9.2f ms\n", firstCheck);
    std::printf("check, nothing changed   %9.3f ms, %.3f ms without the views' questions\n", idle,
                hidden);
    std::printf("check, one row changed   %9.2f ms; of a full read %.3f\n", changed,
                changed / full);
    std::printf("the plain way            %9.2f ms; ratio to an idle check %.0f\n", plain,
                plain / idle);
    std::printf("memory of both sets      %9.0f bytes an event, %.0f beside its texts\n",
                held / events, (held - texts) / events);
    std::printf("(%zu listed, %zu shown, %.0f held)\n", screen.listed, screen.shown, events);
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10'000;
    const fs::path parent = argc > 2 ? fs::path(argv[2]) : fs::temp_directory_path();
    const fs::path folder = parent / ("bench_check" + std::to_string(std::time(nullptr)));
    fs::create_directories(folder);
    measure(count, folder);
    fs::remove_all(folder);
    return 0;
}
