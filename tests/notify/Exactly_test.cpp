// Which of several reminders a check takes, of which occurrence and at what time, in random
// histories against the rule alone. VL_EXACT_SEED (of the first) and VL_EXACT_HISTORIES say where
// to begin and how many to try.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "../model/ZoneForTest.h"
#include "ExactHistory.h"

namespace vl::exact {
namespace {

unsigned number(const char* variable, unsigned otherwise) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0'
               ? static_cast<unsigned>(std::strtoul(value, nullptr, 10))
               : otherwise;
}

/// Nothing is to outlive the test: what is flushed need not reach a disk.
class WithoutDisk {
public:
    WithoutDisk() {
#ifndef _WIN32
        if (std::filesystem::is_directory("/dev/shm")) {
            const char* before = std::getenv("TMPDIR");
            before_ = before != nullptr ? std::optional<std::string>(before) : std::nullopt;
            isSet_ = setenv("TMPDIR", "/dev/shm", 1) == 0;
        }
#endif
    }
    ~WithoutDisk() {
#ifndef _WIN32
        if (isSet_) {
            before_ ? setenv("TMPDIR", before_->c_str(), 1) : unsetenv("TMPDIR");
        }
#endif
    }
    WithoutDisk(const WithoutDisk&) = delete;
    WithoutDisk& operator=(const WithoutDisk&) = delete;

private:
    std::optional<std::string> before_;
    bool isSet_ = false;
};

TEST(Exactly, EachCheckTakesWhatTheRuleSays) {
    constexpr int kFailuresTold = 5;
    const WithoutDisk withoutDisk;
    const test::ZoneForTest zone("Europe/Berlin");
    const unsigned first = number("VL_EXACT_SEED", 1);
    const unsigned histories = number("VL_EXACT_HISTORIES", 100);
    Tried tried;
    int failures = 0;
    std::string seeds;
    for (unsigned seed = first; seed - first < histories; ++seed) {
        const std::string wrong = ExactHistory(seed, tried).live();
        if (wrong.empty()) {
            continue;
        }
        seeds += " " + std::to_string(seed);
        if (++failures <= kFailuresTold) {
            ADD_FAILURE() << "VL_EXACT_SEED=" << seed << " VL_EXACT_HISTORIES=1\n" << wrong;
        }
    }
    EXPECT_EQ(seeds, "") << "as many as " << failures << " go wrong";
    std::cout << "from seed " << first << ": " << tried.histories << " histories, " << tried.checks
              << " checks, " << tried.decisions << " decisions, " << tried.taken
              << " reminders taken, " << tried.either << " with two answers, " << tried.acts
              << " acts\n";
    EXPECT_GT(tried.taken, tried.histories);
    EXPECT_GT(tried.acts, tried.histories);
}

}  // namespace
}  // namespace vl::exact
