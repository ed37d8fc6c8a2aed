// Random histories against the rule. VL_SIM_SEED (of the first), VL_SIM_HISTORIES, VL_SIM_SECONDS
// or VL_SIM_DECISIONS say where to begin and how long to go on; VL_SIM_HISTORY names a file with
// one to live through, step by step.
#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "History.h"
#include "support/Support.h"

namespace vl::simulation {
namespace {

namespace fs = std::filesystem;

std::uint64_t number(const char* variable, std::uint64_t otherwise) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? std::strtoull(value, nullptr, 10) : otherwise;
}

std::string failureOf(std::uint64_t seed, const History& history) {
    const History least = shortened(history);
    std::ostringstream out;
    out << "VL_SIM_SEED=" << seed << "\n" << least << live(least).wrong;
    return out.str();
}

/// How much is to be tried: the first limit that is reached counts.
struct Limits {
    std::uint64_t histories = number("VL_SIM_HISTORIES", UINT64_MAX);
    std::uint64_t decisions = number("VL_SIM_DECISIONS", UINT64_MAX);
    std::chrono::steady_clock::time_point end;

    explicit Limits(std::uint64_t unlessSaid) {
        constexpr std::uint64_t kSeconds = 50;
        constexpr std::uint64_t kYear = 31'536'000;
        const bool limited = histories != UINT64_MAX || decisions != UINT64_MAX;
        end = std::chrono::steady_clock::now() +
              std::chrono::seconds(number("VL_SIM_SECONDS", limited ? kYear : kSeconds));
        if (!limited && std::getenv("VL_SIM_SECONDS") == nullptr) {
            histories = unlessSaid;  // the same ones wherever the time suffices
        }
    }
    bool allow(std::uint64_t tried, std::uint64_t decided) const {
        return tried < histories && decided < decisions && std::chrono::steady_clock::now() < end;
    }
};

struct Tried {
    std::uint64_t histories = 0;
    Outcome all;  // `wrong`: of the last
};

void add(const Outcome& one, Outcome& all) {
    all.decisions += one.decisions;
    all.acts += one.acts;
    all.copies += one.copies;
    all.lost += one.lost;
    all.torn += one.torn;
    all.clocks += one.clocks;
    all.wrong = one.wrong;
}

Tried liveSeeds(const Limits& limits, Trouble trouble) {
    const std::uint64_t first = number("VL_SIM_SEED", 1);
    Tried tried;
    for (; limits.allow(tried.histories, tried.all.decisions); ++tried.histories) {
        const History history = randomHistory(first + tried.histories, trouble);
        add(live(history), tried.all);
        if (!tried.all.wrong.empty()) {
            ADD_FAILURE() << failureOf(first + tried.histories, history);
            return tried;
        }
    }
    std::cout << "from seed " << first << ": " << tried.histories << " histories, "
              << tried.all.decisions << " decisions, " << tried.all.acts << " acts";
    EXPECT_GT(tried.all.decisions, tried.histories / 2);
    return tried;
}

TEST(Simulation, EveryReminderComesAndNoneComesBack) {
    liveSeeds(Limits(1000), Trouble::None);
    std::cout << '\n';
}

TEST(Simulation, SoItIsWithTwoCopiesOfTheProgram) {
    const Tried tried = liveSeeds(Limits(200), Trouble::Copies);
    std::cout << ", " << tried.all.copies << " checks of a second copy\n";
    EXPECT_GT(tried.all.copies, tried.histories);
}

TEST(Simulation, SoItIsWithALedgerThatIsLostOrTorn) {
    const Tried tried = liveSeeds(Limits(200), Trouble::Ledger);
    std::cout << ", " << tried.all.lost << " ledgers lost, " << tried.all.torn << " torn\n";
    EXPECT_GT(tried.all.lost + tried.all.torn, tried.histories / 2);
}

TEST(Simulation, SoItIsUnderAClockThatIsDaysWrong) {
    const Tried tried = liveSeeds(Limits(200), Trouble::Clock);
    std::cout << ", " << tried.all.clocks << " checks by a clock that was days wrong\n";
    EXPECT_GT(tried.all.clocks, tried.histories);
}

// What once went wrong.
TEST(Simulation, KeptHistoriesGoWell) {
    const fs::path folder = test::repoFile("tests/data/histories");
    int lived = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path().filename().string());
        std::ifstream text(entry.path());
        EXPECT_EQ(live(readHistory(text)).wrong, "");
        ++lived;
    }
    EXPECT_GT(lived, 0);
}

TEST(Simulation, AHistoryIsReadAsItWasWritten) {
    std::ostringstream text;
    text << randomHistory(7);
    std::istringstream again("# a remark\n" + text.str());
    std::ostringstream second;
    second << readHistory(again);
    EXPECT_EQ(second.str(), text.str());
    std::istringstream wrong("2026 11 20 0 Europe/Berlin\nWander 1 2 3\n");
    EXPECT_THROW(readHistory(wrong), std::runtime_error);
}

// For who looks into one that goes wrong.
int liveThrough(const char* path) {
    std::ifstream text(path);
    const Outcome outcome = live(readHistory(text), &std::cout);
    std::cout << outcome.wrong;
    return outcome.wrong.empty() ? 0 : 1;
}

}  // namespace
}  // namespace vl::simulation

int main(int argc, char** argv) {
    // Nothing is to outlive this: what is flushed need not reach a disk.
    if (std::filesystem::is_directory("/dev/shm")) {
        setenv("TMPDIR", "/dev/shm", 0);
    }
    // Who may write everything finds no file that is protected.
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
        return 1;
    }
    testing::InitGoogleTest(&argc, argv);
    const char* one = std::getenv("VL_SIM_HISTORY");
    return one != nullptr ? vl::simulation::liveThrough(one) : RUN_ALL_TESTS();
}
