// Several processes that write and read one file, some of them killed at any moment.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "Mdb.h"
#include "SharedTable.h"
#include "db/jet/check/Check.h"
#include "support/Support.h"

namespace vl {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using test::SharedTable;

/// How long each part runs, in seconds: VL_PROCESSES_SECONDS, or a few.
int seconds() {
    const char* wanted = std::getenv("VL_PROCESSES_SECONDS");
    return wanted != nullptr ? std::max(1, std::atoi(wanted)) : 4;
}

class Worker {
public:
    Worker(const fs::path& file, int writer, int duration, fs::path output)
        : output_(std::move(output)) {
        const std::string who = std::to_string(writer);
        const std::string time = std::to_string(duration);
        const std::string name = file.string();
        pid_ = ::fork();
        if (pid_ == 0) {
            const int out = ::open(output_.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
            ::dup2(out, STDOUT_FILENO);
            ::execl(VL_WORKER, VL_WORKER, name.c_str(), who.c_str(), time.c_str(), nullptr);
            ::_exit(5);
        }
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        if (pid_ > 0) {
            kill();
        }
    }

    /// Returns when it has ended by itself.
    void expectGood() {
        int status = 0;
        ::waitpid(pid_, &status, 0);
        pid_ = -1;
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << test::readFile(output_);
    }
    void kill() {
        ::kill(pid_, SIGKILL);
        int status = 0;
        ::waitpid(pid_, &status, 0);
        pid_ = -1;
        EXPECT_TRUE(WIFSIGNALED(status)) << test::readFile(output_);
    }

private:
    fs::path output_;
    ::pid_t pid_ = -1;
};

/// What a writer said, over all his lives.
struct Told {
    int last = 0;  // statement that returned
    int lives = 0;
    long reads = 0;
};

Told toldBy(const fs::path& output) {
    Told told;
    std::istringstream lines(test::readFile(output));
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("start ", 0) == 0) {
            const int found = std::stoi(line.substr(6));
            // What had returned is there; what was about to may be.
            EXPECT_TRUE(found == told.last || (told.lives > 0 && found == told.last + 1))
                << found << " after " << told.last;
            told.last = found;
            ++told.lives;
        } else if (line.rfind("reads ", 0) == 0) {
            told.reads += std::stol(line.substr(6));
        } else {
            EXPECT_EQ(std::stoi(line), told.last + 1);
            told.last = std::stoi(line);
        }
    }
    return told;
}

class Processes : public testing::Test {
protected:
    void SetUp() override {
        test::writeFile(file_, test::readFile(test::repoFile("data/first-light.RemindDB")));
        // One stamp in all rows, as every statement leaves them.
        auto db = jet::Database::open(file_.string(), jet::Access::ReadWrite);
        SharedTable::join(db, 1);
        SharedTable::write(db, 1, 1, 1);
    }

    fs::path outputOf(int worker) { return output_ / ("worker-" + std::to_string(worker)); }

    /// Everything fits, for us, for the check and for another reader; nothing is left behind.
    void expectWhole(int writers) {
        {
            auto db = jet::Database::open(file_.string(), jet::Access::ReadWrite);
            const std::map<int, int> last = SharedTable::read(db);
            for (int w = 1; w <= writers; ++w) {
                const Told told = toldBy(outputOf(w));
                EXPECT_TRUE(last.at(w) == told.last ||
                            (told.lives > 1 && last.at(w) == told.last + 1))
                    << last.at(w) << " of writer " << w << ", who said " << told.last;
            }
            SharedTable::write(db, 1, last.at(1) + 1, 7);
            for (const jet::Finding& finding : checkDatabase(db)) {
                ADD_FAILURE() << "page " << finding.page << ": " << finding.what;
            }
            EXPECT_EQ(test::mdbRows(file_, "Reminders").size(), db.table("Reminders").rowCount());
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1);
    }

    test::TempFolder folder_;
    test::TempFolder output_;
    const fs::path file_ = folder_ / "shared.RemindDB";
};

TEST_F(Processes, TwoWriteAndReadAndNothingIsLost) {
    test::writeFile(outputOf(1), "start 0\n1\n");  // what SetUp has written
    {
        Worker one(file_, 1, seconds(), outputOf(3));
        Worker two(file_, 2, seconds(), outputOf(2));
        one.expectGood();
        two.expectGood();
    }
    test::writeFile(outputOf(1), test::readFile(outputOf(1)) + test::readFile(outputOf(3)));
    expectWhole(2);
    std::cout << "2 processes, " << seconds() << " s: " << toldBy(outputOf(1)).last << " and "
              << toldBy(outputOf(2)).last << " statements\n";
}

// Alone it is mostly in the middle of a statement when it dies.
TEST_F(Processes, OneIsKilledAgainAndAgain) {
    std::mt19937 random(20261121);
    test::writeFile(outputOf(1), "start 0\n1\n");  // what SetUp has written
    int kills = 0;
    int brokenOff = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
    while (std::chrono::steady_clock::now() < end) {
        Worker victim(file_, 1, 3600, outputOf(1));
        std::this_thread::sleep_for(milliseconds(20 + random() % 150));
        victim.kill();
        ++kills;
        brokenOff += test::readFile(file_.string() + ".journal").rfind("VLJRNL1", 0) == 0 ? 1 : 0;
    }
    expectWhole(1);
    std::cout << seconds() << " s: killed " << kills << " times, " << brokenOff
              << " times in the middle of writing; " << toldBy(outputOf(1)).last << " statements\n";
    EXPECT_GT(brokenOff, 0);
}

TEST_F(Processes, EightWriteAndReadWhileSomeAreKilled) {
    constexpr int kWriters = 5;
    constexpr int kProcesses = 8;
    std::mt19937 random(20261121);
    test::writeFile(outputOf(1), "start 0\n1\n");
    std::vector<std::unique_ptr<Worker>> workers;
    for (int w = 2; w <= kProcesses; ++w) {
        workers.push_back(
            std::make_unique<Worker>(file_, w <= kWriters ? w : 0, seconds(), outputOf(w)));
    }
    int kills = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
    while (std::chrono::steady_clock::now() < end) {
        Worker victim(file_, 1, 3600, outputOf(1));
        std::this_thread::sleep_for(milliseconds(20 + random() % 200));
        victim.kill();
        ++kills;
    }
    for (const auto& worker : workers) {
        worker->expectGood();
    }
    expectWhole(kWriters);
    long statements = 0;
    long reads = 0;
    for (int w = 1; w <= kProcesses; ++w) {
        const Told told = toldBy(outputOf(w));
        statements += told.last;
        reads += told.reads;
    }
    std::cout << kProcesses << " processes, " << seconds() << " s, " << kills
              << " killed: " << statements << " statements, " << reads << " readings\n";
    EXPECT_GT(kills, 3);
}

}  // namespace
}  // namespace vl
