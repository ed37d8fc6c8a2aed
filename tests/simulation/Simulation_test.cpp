// Random histories against the rule: VL_SIM_SEED (of the first), VL_SIM_HISTORIES or VL_SIM_SECONDS
// say where to begin and how long to go on.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>

#include "History.h"

namespace vl::simulation {
namespace {

std::uint64_t number(const char* variable, std::uint64_t otherwise) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? std::strtoull(value, nullptr, 10) : otherwise;
}

std::string failureOf(std::uint64_t seed, const History& history) {
    const History least = shortened(history);
    std::ostringstream out;
    out << "VL_SIM_SEED=" << seed << ":\n" << least << "\n" << live(least).wrong;
    return out.str();
}

TEST(Simulation, EveryReminderComesAndNoneComesBack) {
    constexpr std::uint64_t kSeconds = 50;
    const std::uint64_t first = number("VL_SIM_SEED", 1);
    const std::uint64_t most = number("VL_SIM_HISTORIES", UINT64_MAX);
    const auto end =
        std::chrono::steady_clock::now() +
        std::chrono::seconds(number("VL_SIM_SECONDS", most == UINT64_MAX ? kSeconds : 86400 * 365));
    std::uint64_t tried = 0;
    std::uint64_t decisions = 0;
    std::uint64_t acts = 0;
    for (; tried < most && std::chrono::steady_clock::now() < end; ++tried) {
        const History history = randomHistory(first + tried);
        const Outcome outcome = live(history);
        decisions += outcome.decisions;
        acts += outcome.acts;
        if (!outcome.wrong.empty()) {
            FAIL() << failureOf(first + tried, history);
        }
    }
    std::cout << tried << " histories, " << decisions << " decisions, " << acts << " acts\n";
    EXPECT_GT(decisions, 0U);
}

}  // namespace
}  // namespace vl::simulation

int main(int argc, char** argv) {
    setenv("TZ", "Europe/Berlin", 1);
    // Nothing is to outlive this: what is flushed need not reach a disk.
    if (std::filesystem::is_directory("/dev/shm")) {
        setenv("TMPDIR", "/dev/shm", 0);
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
