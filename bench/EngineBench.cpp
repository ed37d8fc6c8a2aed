// The file engine beside SQLite and mdb-export, over the same rows.
//
//   bench_engine [ROWS...]        1000 and 100000 when none are given
//
// Each figure is the median of several runs of both, taken in turns. SQLite works as it does by
// default (rollback journal, full synchronisation); its statements are prepared anew each time, as
// ours are parsed anew.
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "db/sql/Sql.h"

namespace {

using vl::DateTime;
using vl::Variant;
using vl::jet::Access;
using vl::jet::Database;
using vl::jet::RowCursor;
using vl::jet::Table;

std::string guidOf(int row) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-7A3C-4E19-9C41-0123456789AB}",
                  static_cast<unsigned>(row) * 2654435761U);
    return text;
}

// A calendar's row: what a host writes of a usual appointment.
std::vector<std::pair<const char*, Variant>> rowOf(int row) {
    const DateTime start =
        DateTime::fromCivil(2026, 1, 1, 8).addSeconds(std::int64_t{900} * (row % 100'000));
    const std::string n = std::to_string(row);
    return {{"GUID", guidOf(row)},
            {"id", "event" + n},
            {"VLBase", "C:\\Users\\Ann\\Documents\\Base.vldb"},
            {"Subject", "Appointment number " + n},
            {"Location", "Room " + std::to_string(row % 40)},
            {"StartDateTime", start},
            {"EndDateTime", start.addSeconds(1800)},
            {"Modified", start},
            {"EventID", row},
            {"status", "confirmed"},
            {"reminders", R"({"useDefault":false,"overrides":[{"method":"popup","minutes":10}]})"},
            {"JSON", R"({"id":"event)" + n + R"(","summary":"Appointment number )" + n + "\"}"}};
}

// ---- the three engines

class Sqlite {
public:
    explicit Sqlite(const std::string& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) {
            throw std::runtime_error("SQLite cannot open " + path);
        }
    }
    ~Sqlite() { sqlite3_close(db_); }
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    /// Runs a statement, looks at every value of its rows, and gives their number.
    std::size_t run(const std::string& statement, const std::vector<std::string>& values = {}) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare_v2(db_, statement.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
            throw std::runtime_error(statement + ": " + sqlite3_errmsg(db_));
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            sqlite3_bind_text(prepared, static_cast<int>(i + 1), values[i].c_str(), -1,
                              SQLITE_TRANSIENT);
        }
        std::size_t rows = 0;
        int result = SQLITE_ROW;
        for (; (result = sqlite3_step(prepared)) == SQLITE_ROW; ++rows) {
            for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
                look(prepared, i);
            }
        }
        sqlite3_finalize(prepared);
        if (result != SQLITE_DONE) {
            throw std::runtime_error(statement + ": " + sqlite3_errmsg(db_));
        }
        return rows;
    }

private:
    // As a reader of values does: texts as texts of one's own.
    void look(sqlite3_stmt* row, int column) {
        switch (sqlite3_column_type(row, column)) {
            case SQLITE_TEXT:
                text_.assign(reinterpret_cast<const char*>(sqlite3_column_text(row, column)),
                             static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
                break;
            case SQLITE_FLOAT:
                number_ += sqlite3_column_double(row, column);
                break;
            default:
                number_ += static_cast<double>(sqlite3_column_int64(row, column));
        }
    }

    sqlite3* db_ = nullptr;
    std::string text_;
    double number_ = 0;
};

std::size_t scanOurs(const std::string& path) {
    const Database db = Database::open(path, Access::Read);
    const Table table = db.table("Reminders");
    std::size_t rows = 0;
    for (RowCursor row = table.scan(); row.next(); ++rows) {
        for (std::size_t i = 0; i < table.columns().size(); ++i) {
            const Variant value = row.value(i);
            asm volatile("" : : "r"(&value) : "memory");
        }
    }
    return rows;
}

void exportWithMdb(const std::string& path) {
    std::fflush(stdout);  // else the child has it, too
    const pid_t child = fork();
    if (child == 0) {
        if (std::freopen("/dev/null", "w", stdout) != nullptr) {
            execlp("mdb-export", "mdb-export", path.c_str(), "Reminders", nullptr);
        }
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("mdb-export cannot be run (package mdbtools)");
    }
}

// ---- filling

void fillOurs(const std::string& path, int rows) {
    std::filesystem::copy_file(VL_BENCH_EMPTY, path);
    Database db = Database::open(path, Access::ReadWrite);
    vl::sql::execute(db, "DELETE * FROM Reminders");
    for (const std::string column : {"id", "VLBase", "Modified"}) {
        vl::sql::execute(db, "CREATE INDEX by" + column + " ON Reminders (" + column + ")");
    }
    vl::jet::Transaction filling(db);
    Table table = db.table("Reminders");
    const auto place = [&](const std::string& name) {
        const auto& columns = table.columns();
        return static_cast<std::size_t>(
            std::find_if(columns.begin(), columns.end(),
                         [&](const auto& column) { return column.name == name; }) -
            columns.begin());
    };
    std::vector<std::size_t> places;
    for (const auto& [name, value] : rowOf(0)) {
        places.push_back(place(name));
    }
    for (int row = 0; row < rows; ++row) {
        std::vector<Table::Change> values;
        std::size_t next = 0;
        for (auto& [name, value] : rowOf(row)) {
            values.emplace_back(places[next++], std::move(value));
        }
        table.insert(values);
    }
    filling.commit();
}

// The same columns, keys and indexes as ours.
void fillSqlite(const std::string& path, int rows) {
    const Database ours = Database::open(VL_BENCH_EMPTY, Access::Read);
    std::string columns;
    for (const vl::jet::Column& column : ours.table("Reminders").columns()) {
        const bool text =
            column.type == vl::jet::ColumnType::Text || column.type == vl::jet::ColumnType::Memo;
        columns += (columns.empty() ? "" : ", ") + column.name + (text ? " TEXT" : " REAL") +
                   (column.name == "GUID" ? " PRIMARY KEY" : "");
    }
    Sqlite db(path);
    db.run("CREATE TABLE Reminders (" + columns + ")");
    for (const char* column : {"id", "VLBase", "Modified"}) {
        db.run(std::string("CREATE INDEX by_") + column + " ON Reminders (" + column + ")");
    }
    std::string names;
    std::string marks;
    for (const auto& [name, value] : rowOf(0)) {
        names += (names.empty() ? "" : ", ") + std::string(name);
        marks += marks.empty() ? "?" : ", ?";
    }
    db.run("BEGIN");
    for (int row = 0; row < rows; ++row) {
        std::vector<std::string> values;
        for (const auto& [name, value] : rowOf(row)) {
            const auto* date = value.get<DateTime>();
            values.push_back(date != nullptr ? std::to_string(date->days()) : value.toText());
        }
        db.run("INSERT INTO Reminders (" + names + ") VALUES (" + marks + ")", values);
    }
    db.run("COMMIT");
}

// ---- measuring

double cpuSeconds() {
    double total = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& t : {usage.ru_utime, usage.ru_stime}) {
            total += static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
        }
    }
    return total;
}

double wallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

struct Runner {
    const char* name;
    std::function<void()> run;
};

void compare(const char* what, int times, double (*clock)(), double perRun,
             const std::vector<Runner>& runners) {
    std::vector<std::vector<double>> taken(runners.size());
    for (int i = 0; i < times; ++i) {
        for (std::size_t r = 0; r < runners.size(); ++r) {
            const double before = clock();
            runners[r].run();
            taken[r].push_back((clock() - before) / perRun);
        }
    }
    const double ours = median(taken[0]);
    std::printf("  %-28s ours %10.1f us", what, ours * 1e6);
    for (std::size_t r = 1; r < runners.size(); ++r) {
        const double theirs = median(taken[r]);
        std::printf(", %s %10.1f us (ours x %.2f)", runners[r].name, theirs * 1e6, ours / theirs);
    }
    std::printf("\n");
    std::fflush(stdout);
}

// What needs memory, by the name that a process of its own is started with.
void runForMemory(const std::string& what, const std::string& path) {
    if (what == "opening") {
        const Database db = Database::open(path, Access::Read);
        const Table table = db.table("Reminders");
    } else if (what == "scan") {
        scanOurs(path);
    } else {
        Database db = Database::open(path, Access::ReadWrite);
        vl::sql::execute(db, what);
    }
}

long peakKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            return std::atol(line.c_str() + 6);
        }
    }
    return 0;
}

// In a process of its own, so that nothing else counts, above what it takes to stand there.
void showMemory(const std::string& label, const std::string& what, const std::string& path) {
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "bench_engine", "--memory", label.c_str(), what.c_str(),
              path.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("the memory of \"" + what + "\" cannot be measured");
    }
}

void measureMemory(const std::string& label, const std::string& what, const std::string& path) {
    const long before = peakKilobytes();
    const double start = cpuSeconds();
    runForMemory(what, path);
    std::printf("  memory of %-18s %.1f MiB above the %.1f MiB before, %.2f s of a processor\n",
                label.c_str(), static_cast<double>(peakKilobytes() - before) / 1024,
                static_cast<double>(before) / 1024, cpuSeconds() - start);
    std::fflush(stdout);
}

std::string quoted(const std::string& guid) { return "\"" + guid + "\""; }

void measure(const std::filesystem::path& folder, int rows) {
    const std::string ours = (folder / ("rows" + std::to_string(rows) + ".mdb")).string();
    const std::string theirs = (folder / ("rows" + std::to_string(rows) + ".sqlite")).string();
    std::printf("%d rows\n", rows);
    compare("filling, a row", 1, cpuSeconds, rows,
            {{"", [&] { fillOurs(ours, rows); }}, {"SQLite", [&] { fillSqlite(theirs, rows); }}});
    const auto size = [](const std::string& path) {
        return static_cast<double>(std::filesystem::file_size(path)) / 1048576;
    };
    std::printf("  %-28s ours %.1f MiB, SQLite %.1f MiB\n", "file", size(ours), size(theirs));
    Sqlite sqlite(theirs);
    const int scans = rows > 500'000 ? 3 : 7;
    compare("full scan, a row", scans, cpuSeconds, rows,
            {{"", [&] { scanOurs(ours); }},
             {"SQLite", [&] { sqlite.run("SELECT * FROM Reminders"); }},
             {"mdb-export", [&] { exportWithMdb(ours); }}});
    showMemory("opening", "opening", ours);
    showMemory("a scan", "scan", ours);
    constexpr int kFinds = 500;
    Database db = Database::open(ours, Access::ReadWrite);
    int next = 0;
    const auto guid = [&] { return guidOf(static_cast<int>(next++ * 7919LL % rows)); };
    const auto expectOne = [](std::size_t found) {
        if (found != 1) {
            throw std::runtime_error("found " + std::to_string(found) + " rows, not one");
        }
    };
    compare("one row by GUID", 7, cpuSeconds, kFinds,
            {{"",
              [&] {
                  for (int i = 0; i < kFinds; ++i) {
                      expectOne(vl::sql::execute(
                                    db, "SELECT * FROM Reminders WHERE GUID=" + quoted(guid()))
                                    .rows.size());
                  }
              }},
             {"SQLite", [&] {
                  for (int i = 0; i < kFinds; ++i) {
                      expectOne(sqlite.run("SELECT * FROM Reminders WHERE GUID=?", {guid()}));
                  }
              }}});
    constexpr int kUpdates = 50;
    compare("durable change of one row", 7, wallSeconds, kUpdates,
            {{"",
              [&] {
                  for (int i = 0; i < kUpdates; ++i) {
                      const auto result = vl::sql::execute(
                          db, "UPDATE Reminders SET NextReminder = #2026-11-20 09:30:" +
                                  std::to_string(10 + i) + "# WHERE (GUID=" + quoted(guid()) +
                                  ");");
                      expectOne(static_cast<std::size_t>(result.affected));
                  }
              }},
             {"SQLite", [&] {
                  for (int i = 0; i < kUpdates; ++i) {
                      sqlite.run("UPDATE Reminders SET NextReminder = ? WHERE GUID = ?",
                                 {std::to_string(46346.0 + i), guid()});
                  }
              }}});
    showMemory("changing all rows", "UPDATE Reminders SET Location = Location & \", 2nd floor\"",
               ours);
    showMemory("removing half",
               "DELETE * FROM Reminders WHERE EventID >= " + std::to_string(rows / 2), ours);
}

}  // namespace

int main(int argc, char** argv) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("bench_engine." + std::to_string(getpid()));
    int code = 0;
    try {
        if (argc == 5 && std::string(argv[1]) == "--memory") {
            measureMemory(argv[2], argv[3], argv[4]);
            return 0;
        }
        std::filesystem::create_directory(folder);
        std::vector<int> sizes;
        for (int i = 1; i < argc; ++i) {
            sizes.push_back(std::atoi(argv[i]));
        }
        for (const int rows : sizes.empty() ? std::vector<int>{1000, 100'000} : sizes) {
            measure(folder, rows);
        }
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench_engine: %s\n", e.what());
        code = 1;
    }
    std::filesystem::remove_all(folder);
    return code;
}
