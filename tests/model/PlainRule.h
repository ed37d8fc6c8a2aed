// A second reading of recurrence rules, as slow and plain as can be: a day belongs to the candidate
// set when it lies in the period and satisfies every day part present. Nothing of it is shared with
// the engine.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace vl::test {

struct PlainRule {
    enum class Freq { Secondly, Minutely, Hourly, Daily, Weekly, Monthly, Yearly };
    Freq freq = Freq::Daily;
    int interval = 1;
    int count = 0;            // 0: none
    std::int64_t until = -1;  // seconds since 1899-12-30; -1: none
    int weekStart = 0;        // 0 = Monday
    std::vector<int> months, monthDays, yearDays, weeks, positions, hours, minutes, seconds;
    std::vector<std::pair<int, int>> days;  // number (0: none), weekday

    static PlainRule random(std::mt19937& random);

    /// RRULE value: parts in random order, lists shuffled, with `noise` also doubled values, mixed
    /// case and blanks.
    std::string text(std::mt19937& random, bool noise) const;

    /// Instances of the rule alone from `start` to `end`, by trying every day or period.
    std::vector<std::int64_t> expand(std::int64_t start, std::int64_t end) const;

    /// How long a stretch is worth expanding, in seconds.
    std::int64_t horizon() const;
};

}  // namespace vl::test
