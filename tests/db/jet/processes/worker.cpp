// A process that writes and reads the shared table until it is told the time is up, or killed.
//
//   jet_worker FILE WRITER SECONDS    WRITER 0 only reads
//
// Writes "start N", then "N" after each statement that has returned, then "reads COUNT".
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <random>

#include "SharedTable.h"
#include "base/ErrorState.h"

namespace {

using vl::jet::Access;
using vl::jet::Database;
using vl::test::SharedTable;
using Clock = std::chrono::steady_clock;

// Not through a buffer: what was said must not go with the process.
void say(const std::string& line) {
    const std::string text = line + "\n";
    if (::write(STDOUT_FILENO, text.data(), text.size()) != static_cast<::ssize_t>(text.size())) {
        std::exit(4);
    }
}

void work(const std::string& file, int writer, Clock::time_point end) {
    std::mt19937 random(std::random_device{}());
    std::optional<Database> db;
    const auto reopen = [&] {
        db.reset();
        vl::jet::OpenOptions options;
        if (random() % 2 == 0) {
            options.mostChangedPages = 3;  // a statement is in the file long before its end
        }
        db = Database::open(file, writer == 0 ? Access::Read : Access::ReadWrite, options);
    };
    reopen();
    int number = writer == 0 ? 0 : SharedTable::join(*db, writer);
    say("start " + std::to_string(number));
    std::map<int, int> seen;
    long reads = 0;
    while (Clock::now() < end) {
        if (random() % 8 == 0) {
            reopen();
        }
        if (writer != 0) {
            SharedTable::write(*db, writer, number + 1, static_cast<int>(random() >> 1U));
            say(std::to_string(++number));
        }
        const std::map<int, int> now = SharedTable::read(*db);
        for (const auto& [who, last] : seen) {
            if (now.count(who) == 0 || now.at(who) < last) {
                throw std::logic_error("a statement was lost");
            }
        }
        if (writer != 0 && now.at(writer) != number) {
            throw std::logic_error("my last statement is not there");
        }
        seen = now;
        ++reads;
    }
    say("reads " + std::to_string(reads));
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        return 2;
    }
    try {
        work(arguments[1], std::atoi(arguments[2]),
             Clock::now() + std::chrono::seconds(std::atoi(arguments[3])));
    } catch (const std::exception& e) {
        say(std::string("wrong: ") + e.what());
        return 3;
    }
    return 0;
}
