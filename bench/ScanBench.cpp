// Reading every value of 5,000 rows, beside the same work done by mdb-export.
//
// Last line: how many times the CPU time of ours the other takes. mdb-export is a program of its
// own, so that its figure holds its start and its writing of text; ours holds opening the file.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

#include <benchmark/benchmark.h>

#include "db/jet/Database.h"

namespace {

using vl::jet::Access;
using vl::jet::Database;
using vl::jet::RowCursor;
using vl::jet::Table;

constexpr int kRuns = 20;

double seconds(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
}

double cpuSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::size_t scanAll() {
    const Database db = Database::open(VL_BENCH_FILE, Access::Read);
    const Table table = db.table("Reminders");
    std::size_t values = 0;
    RowCursor row = table.scan();
    while (row.next()) {
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            benchmark::DoNotOptimize(row.value(i));
            ++values;
        }
    }
    return values;
}

// Its output goes nowhere. False when it cannot be run.
bool exportAll() {
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stdout) == nullptr) {
            _exit(127);
        }
        execlp("mdb-export", "mdb-export", VL_BENCH_FILE, "Reminders", nullptr);
        _exit(127);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

void ScanEveryValue(benchmark::State& state) {
    std::size_t values = 0;
    for (auto _ : state) {
        values += scanAll();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(values));
}
BENCHMARK(ScanEveryValue)->Unit(benchmark::kMillisecond);

void ScanOneColumn(benchmark::State& state) {
    for (auto _ : state) {
        const Database db = Database::open(VL_BENCH_FILE, Access::Read);
        RowCursor row = db.table("Reminders").scan();
        while (row.next()) {
            benchmark::DoNotOptimize(row.value(9));
        }
    }
}
BENCHMARK(ScanOneColumn)->Unit(benchmark::kMillisecond);

int compare() {
    double ours = std::numeric_limits<double>::max();
    double theirs = ours;
    for (int i = 0; i < kRuns; ++i) {
        const double before = cpuSeconds(RUSAGE_SELF);
        scanAll();
        ours = std::min(ours, cpuSeconds(RUSAGE_SELF) - before);
        const double childrenBefore = cpuSeconds(RUSAGE_CHILDREN);
        if (!exportAll()) {
            std::fprintf(stderr, "mdb-export cannot be run (package mdbtools)\n");
            return 1;
        }
        theirs = std::min(theirs, cpuSeconds(RUSAGE_CHILDREN) - childrenBefore);
    }
    std::printf("CPU time, best of %d: ours %.1f ms, mdb-export %.1f ms, ratio %.1f\n", kRuns,
                ours * 1e3, theirs * 1e3, theirs / ours);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return compare();
}
