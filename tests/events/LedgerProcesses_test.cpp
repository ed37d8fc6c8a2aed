// Copies of the program that run at the same time: each a process of its own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <vector>

#include "events/Ledger.h"
#include "support/ManualClock.h"
#include "support/Support.h"

namespace vl {
namespace {

constexpr const char* kDb = "/data/Velmora.RemindDB";
constexpr int kCopies = 4;
constexpr int kActs = 60;

DateTime start(int n) { return DateTime::fromCivil(2026, 11, 20, 10, 0).addMinutes(n); }

pid_t inAProcess(const std::function<bool()>& body) {
    const pid_t process = fork();
    if (process == 0) {
        _exit(body() ? 0 : 1);
    }
    return process;
}

class LedgerProcesses : public testing::Test {
protected:
    Ledger open() { return Ledger(clock, path); }

    /// Acts on an event of its own and on one that all act upon, each time on another occurrence.
    /// True when all of it is on the disk.
    bool act(int copy) {
        Ledger ledger(clock, path);
        bool stored = true;
        for (int i = 0; i < kActs; ++i) {
            for (const std::string& GUID :
                 {std::string("{all}"), "{" + std::to_string(copy) + "}"}) {
                stored = note(ledger, GUID, start(copy * kActs + i));
            }
        }
        // Where others had the file too long, the next change writes what is owed.
        for (int i = 0; i < 100 && !stored; ++i) {
            stored = note(ledger, "{last}", start(copy * 100 + i));
        }
        return stored;
    }
    static bool note(Ledger& ledger, const std::string& GUID, DateTime at) {
        return ledger.change(kDb, GUID, "this",
                             [&](EventState& state) { state.at(at).handled = at; });
    }
    static std::size_t known(const Ledger& ledger, const std::string& GUID) {
        const EventState* state = ledger.find(kDb, GUID);
        return state != nullptr ? state->occurrences.size() : 0;
    }

    test::TempFolder folder;
    test::ManualClock clock{start(0)};
    std::string path = (folder / "VLReminders.ledger").string();
};

// There are enough acts for the file to be compacted by each of them now and then.
TEST_F(LedgerProcesses, NoneLosesWhatAnotherHasWritten) {
    std::vector<pid_t> copies;
    copies.reserve(kCopies);
    for (int copy = 0; copy < kCopies; ++copy) {
        copies.push_back(inAProcess([&] { return act(copy); }));
    }
    for (const pid_t copy : copies) {
        int status = -1;
        EXPECT_EQ(waitpid(copy, &status, 0), copy);
        EXPECT_EQ(status, 0) << "not everything is on the disk";
    }
    const Ledger ledger = open();
    EXPECT_EQ(known(ledger, "{all}"), std::size_t{kCopies} * kActs);
    for (int copy = 0; copy < kCopies; ++copy) {
        EXPECT_EQ(known(ledger, "{" + std::to_string(copy) + "}"), std::size_t{kActs});
    }
}

// At whatever moment one is killed, the others go on, and what it had noted stands.
TEST_F(LedgerProcesses, OneThatIsKilledTakesNothingWithIt) {
    for (int round = 0; round < 10; ++round) {
        SCOPED_TRACE(round);
        int noted[2];
        ASSERT_EQ(pipe(noted), 0);
        const pid_t victim = inAProcess([&] {
            Ledger ledger(clock, path);
            for (int i = 0;; ++i) {
                if (note(ledger, "{victim}", start(round * 1000 + i)) &&
                    write(noted[1], "x", 1) != 1) {
                    return false;
                }
            }
        });
        std::size_t acts = 0;
        char byte = 0;
        for (int i = 0; i <= round * 3; ++i) {
            acts += read(noted[0], &byte, 1) == 1 ? 1U : 0U;
        }
        kill(victim, SIGKILL);
        waitpid(victim, nullptr, 0);
        close(noted[1]);
        while (read(noted[0], &byte, 1) == 1) {
            ++acts;
        }
        close(noted[0]);
        Ledger other(clock, path);
        EXPECT_GE(known(other, "{victim}"), acts);
        EXPECT_TRUE(note(other, "{other}", start(round)));
        EXPECT_EQ(known(open(), "{other}"), static_cast<std::size_t>(round) + 1);
        other.forget(kDb, "{victim}", "reactivate", [](EventState&) {});
    }
}

}  // namespace
}  // namespace vl
