// What a check costs over a file of many events, beside the plain way: everything read and
// expanded again.
//
//   bench_check [events] [folder] [noindex]
//
// Times are of the processor, the system's part included: on a machine that others use, too, they
// say more than the clock on the wall. Each is the median of several, but for what happens once.
// What is compared takes turns, and of each turn's ratios the median is given: at another moment
// the machine may be a fifth slower. Memory is what the process holds for itself alone, from
// smaps_rollup.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CheckProgram.h"
#include "app/platform/Memory.h"
#include "db/jet/Database.h"
#include "support/EventFile.h"
#include "support/ManyEvents.h"

namespace {

namespace fs = std::filesystem;
using vl::calEvent;
using vl::CalEvents;
using vl::DateTime;
using vl::bench::kNow;
using vl::bench::Program;
using vl::bench::TurnedClock;

/// Of the processor, for this process alone.
double processorMilliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <class Step>
double milliseconds(Step&& step) {
    const double begin = processorMilliseconds();
    step();
    return processorMilliseconds() - begin;
}

double median(std::vector<double> all) {
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

template <class Step>
double typical(int runs, Step&& step) {
    std::vector<double> all;
    for (int i = 0; i < runs; ++i) {
        all.push_back(milliseconds(step));
    }
    return median(std::move(all));
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
            if (const auto* member = std::get_if<vl::SharedText calEvent::*>(&property.member)) {
                bytes += ((*event).*(*member)).size();
            }
        }
    }
    return bytes;
}

// In a process of its own: what it leaves behind would be taken for memory of the sets.
bool makeFile(const std::string& path, std::size_t count, bool indexed) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr std::size_t kBatch = 5000;
        vl::test::EventFile file(path, indexed);
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

/// Everything read by a set that knows nothing, with a connection of its own, and given back.
double fullRead(const std::string& path, const vl::Clock& clock) {
    return milliseconds([&] {
        vl::DBRemindUtils db;
        db.DBFullName = path;
        CalEvents set(db, clock);
        set.ReadDB(true, false);
    });
}

/// Two that took turns.
struct Pair {
    double first;
    double second;
    double ratio;  // the second of the first, in the same turn
};

Pair median(const std::vector<Pair>& all) {
    std::vector<double> firsts;
    std::vector<double> seconds;
    std::vector<double> ratios;
    for (const Pair& pair : all) {
        firsts.push_back(pair.first);
        seconds.push_back(pair.second);
        ratios.push_back(pair.ratio);
    }
    return {median(std::move(firsts)), median(std::move(seconds)), median(std::move(ratios))};
}

Pair scanAndRead(const std::string& path, const vl::Clock& clock, std::size_t count) {
    const std::size_t turns = std::clamp<std::size_t>(3'000'000 / count, 9, 31);
    std::vector<Pair> all;
    for (std::size_t i = 0; i < turns; ++i) {
        const double bare = milliseconds([&] { scan(path); });
        const double full = fullRead(path, clock);
        all.push_back({bare, full, full / bare});
    }
    return median(all);
}

struct Cost {
    double check;
    double next;  // of the next check, which finds nothing changed but gives back what was held
};

/// A check after the host has run the statement, which says NOW.
Cost checkAfter(Program& program, vl::DBRemindUtils& host, std::string statement) {
    program.clock.time = program.clock.time.addSeconds(10);
    statement.replace(statement.find("NOW"), 3,
                      vl::DBRemindUtils::ToSQLDateTime(program.clock.time, true));
    if (host.Execute(statement) < 1) {
        std::fprintf(stderr, "nothing changed: %s\n", statement.c_str());
    }
    const double check = milliseconds([&] { program.cycle.Tick(10000); });
    return {check, milliseconds([&] { program.tick(); })};
}

Cost median(const std::vector<Cost>& all) {
    std::vector<double> checks;
    std::vector<double> next;
    for (const Cost& cost : all) {
        checks.push_back(cost.check);
        next.push_back(cost.next);
    }
    return {median(std::move(checks)), median(std::move(next))};
}

/// Full reads, and checks that find one changed row.
Pair changeOneRow(Program& program, const std::string& path) {
    vl::DBRemindUtils host;
    host.DBFullName = path;
    std::vector<Pair> all;
    for (int i = 1; i <= 15; ++i) {
        const double full = fullRead(path, program.clock);
        const Cost cost =
            checkAfter(program, host,
                       "UPDATE Reminders SET Modified = NOW, EventID = " + std::to_string(i) +
                           " WHERE GUID = \"" + program.period.mCol->Key(1 + i * 7) + "\"");
        all.push_back({full, cost.check, cost.check / full});
    }
    return median(all);
}

Cost changeAllRows(Program& program, const std::string& path) {
    vl::DBRemindUtils host;
    host.DBFullName = path;
    std::vector<Cost> all;
    for (int i = 1; i <= 3; ++i) {
        all.push_back(checkAfter(
            program, host,
            "UPDATE Reminders SET Modified = NOW, ItemID = " + std::to_string(1000 + i)));
    }
    return median(all);
}

void measure(std::size_t count, const fs::path& folder, bool indexed) {
    const std::string path = (folder / "Velmora.RemindDB").string();
    if (!makeFile(path, count, indexed)) {
        std::fprintf(stderr, "the file could not be made\n");
        return;
    }
    std::printf("%zu events, a file of %.1f MB\n", count,
                static_cast<double>(fs::file_size(path)) / 1e6);
    const std::size_t values = scan(path);

    Program program(path, folder);
    CalEvents& period = program.period;
    const TurnedClock& clock = program.clock;
    const long before = privateKiB();
    const double start = milliseconds([&] {
        period.ReadDB(true, false);
        program.reminders.Adopt(period);
    });
    const double firstCheck = milliseconds([&] { program.cycle.Tick(10000); });
    const double held = static_cast<double>(privateKiB() - before) * 1024;
    const auto events = static_cast<double>(period.mCol->Count());
    const auto texts = static_cast<double>(textsOf(period));

    const double idle = typical(31, [&] { program.tick(); });
    program.screen.shows = false;
    const double hidden = typical(31, [&] { program.tick(); });
    const Pair changed = changeOneRow(program, path);
    int days = 0;
    const double refill = typical(9, [&] {
        const DateTime from = kNow.date().addDays(++days);
        period.RemindCol(from, from.addDays(30));
        period.EventCol(from, from.addDays(30));
    });
    const Pair full = scanAndRead(path, clock, count);
    const double plain = typical(3, [&] {
        CalEvents again(program.db, clock);
        again.ReadDB(true, false);
        again.RemindCol(clock.time, clock.time.addSeconds(20));
        CalEvents views(program.db, clock);
        views.ReadDB(true, false);
        views.RemindCol(kNow.date(), kNow.date().addDays(1));
        views.EventCol(kNow.date(), kNow.date().addDays(1));
    });
    // On a file of its own, since it writes: most of the events are long past.
    const fs::path other = folder / "first";
    fs::create_directory(other);
    const std::string untouched = (other / "Velmora.RemindDB").string();
    fs::copy_file(path, untouched);
    const Cost allChanged = changeAllRows(program, path);
    Program first(untouched, other);
    const double firstStart = milliseconds([&] { first.cycle.ReadAtStart(); });
    Program later(untouched, other);
    const double laterStart = milliseconds([&] { later.cycle.ReadAtStart(); });
    std::printf("engine's bare scan       %9.2f ms (%zu values)\n", full.first, values);
    std::printf("full read                %9.2f ms; of the scan %.2f\n", full.second, full.ratio);
    std::printf("at start                 %9.2f ms to read, %.2f ms first check\n", start,
                firstCheck);
    std::printf("start of the program     %9.2f ms, %.2f ms the very first (%zu finished)\n",
                laterStart, firstStart, period.mCol->Count() - later.period.mCol->Count());
    std::printf("check, nothing changed   %9.3f ms, %.3f ms without the views' questions\n", idle,
                hidden);
    std::printf("check, one row changed   %9.2f ms; of a full read %.3f\n", changed.second,
                changed.ratio);
    std::printf("check, all rows changed  %9.2f ms; of the plain way %.2f; the next %.2f ms\n",
                allChanged.check, allChanged.check / plain, allChanged.next);
    std::printf("another 30 days shown    %9.2f ms\n", refill);
    std::printf(
        "the plain way            %9.2f ms; ratio to an idle check %.0f, to one with a "
        "changed row %.1f\n",
        plain, plain / idle, plain / changed.second);
    std::printf("memory of both sets      %9.0f bytes an event, %.0f beside its texts\n",
                held / events, (held - texts) / events);
    std::printf("(%zu listed, %zu shown, %.0f held)\n", program.screen.listed, program.screen.shown,
                events);
}

}  // namespace

int main(int argc, char** argv) {
    vl::platform::joinWhatIsFreed();  // as the program does
    const std::size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10'000;
    const fs::path parent = argc > 2 ? fs::path(argv[2]) : fs::temp_directory_path();
    const bool indexed = argc <= 3 || std::string(argv[3]) != "noindex";
    const fs::path folder = parent / ("bench_check" + std::to_string(std::time(nullptr)));
    fs::create_directories(folder);
    measure(count, folder, indexed);
    fs::remove_all(folder);
    return 0;
}
