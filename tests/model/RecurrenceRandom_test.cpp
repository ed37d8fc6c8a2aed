// Properties of the engine over made-up rules. VL_RECURRENCE_RULES in the environment sets how many
// (the long run by hand: 200000), VL_SEED which.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>
#include <set>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

#include "PlainRule.h"
#include "RecurrenceCase.h"

namespace vl {
namespace {

using test::PlainRule;

constexpr std::int64_t kDay = 86'400;

int rulesToTry(int usual) {
    const char* wanted = std::getenv("VL_RECURRENCE_RULES");
    return wanted != nullptr ? std::atoi(wanted) : usual;
}

std::mt19937 seeded() {
    const char* wanted = std::getenv("VL_SEED");
    const unsigned seed =
        wanted != nullptr ? static_cast<unsigned>(std::atoll(wanted)) : std::random_device{}();
    std::cout << "VL_SEED=" << seed << '\n';
    return std::mt19937(seed);
}

DateTime time(std::int64_t seconds) { return DateTime::fromMilliseconds(seconds * 1000); }

std::vector<std::int64_t> seconds(const std::vector<DateTime>& times) {
    std::vector<std::int64_t> out;
    out.reserve(times.size());
    for (const DateTime t : times) {
        out.push_back(t.milliseconds() / 1000);
    }
    return out;
}

std::string readable(const std::vector<std::int64_t>& times) {
    std::string out;
    for (std::size_t i = 0; i < times.size() && i < 12; ++i) {
        out += ' ' + test::isoText(time(times[i]));
    }
    return out + (times.size() > 12 ? " ..." : "");
}

std::int64_t randomStart(std::mt19937& random) {
    std::uniform_int_distribution<std::int64_t> day(daysFromCivil(1990, 1, 1),
                                                    daysFromCivil(2040, 12, 31));
    std::uniform_int_distribution<std::int64_t> second(0, kDay - 1);
    return day(random) * kDay + second(random);
}

/// A made-up rule with its start, the text it is loaded from and what is expected of it.
struct Sample {
    PlainRule rule;
    std::int64_t start;
    std::int64_t end;  // up to here `expected` is known
    std::string text;
    std::vector<std::int64_t> expected;  // with the start

    explicit Sample(std::mt19937& random, bool noise = true)
        : rule(PlainRule::random(random)), start(randomStart(random)) {
        const std::int64_t horizon = rule.horizon();
        if (rule.count == 0 && random() % 5 == 0) {
            rule.until = start + static_cast<std::int64_t>(random() % 1000) * horizon / 1000;
        }
        end = start + horizon;
        text = rule.text(random, noise);
        expected = rule.expand(start, end);
        if (expected.empty() || expected.front() != start) {
            expected.insert(expected.begin(), start);
        }
    }
    Recurrence load(std::string* RRULE = nullptr) const {
        return Recurrence::load({"RRULE:" + text, time(start), false, ""}, TimeZone::utc(), RRULE);
    }
    std::string name() const { return test::isoText(time(start)) + ' ' + text; }
};

std::vector<std::int64_t> cut(const std::vector<std::int64_t>& all, std::int64_t from,
                              std::int64_t to) {
    std::vector<std::int64_t> out;
    std::copy_if(all.begin(), all.end(), std::back_inserter(out),
                 [&](std::int64_t t) { return t >= from && t <= to; });
    return out;
}

TEST(RecurrenceRandom, ExpandsAsTryingEveryDayDoes) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(3000);
    std::size_t instances = 0;
    int bare = 0;
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        const Recurrence r = s.load();
        const auto found = seconds(r.between(time(s.start - kDay), time(s.end)));
        ASSERT_EQ(found, s.expected)
            << s.name() << "\nfound   " << readable(found) << "\nexpected" << readable(s.expected);
        instances += found.size();
        bare += found.size() == 1 ? 1 : 0;
    }
    std::cout << count << " rules, " << instances << " instances, " << bare
              << " with the start alone\n";
    EXPECT_GT(instances, static_cast<std::size_t>(count));
}

TEST(RecurrenceRandom, AnyWindowIsAPartOfTheWhole) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500);
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        const Recurrence r = s.load();
        std::uniform_int_distribution<std::int64_t> moment(s.start - 5, s.end);
        for (int w = 0; w < 6; ++w) {
            std::int64_t from = moment(random);
            std::int64_t to = w == 0 ? from + kDay - 1 : moment(random);
            // Also windows whose ends are instances.
            from = w == 1 ? s.expected[random() % s.expected.size()] : from;
            to = std::min(w == 2 ? s.expected[random() % s.expected.size()] : to, s.end);
            const auto found = seconds(r.between(time(from), time(to)));
            ASSERT_EQ(found, cut(s.expected, from, to))
                << s.name() << " from " << test::isoText(time(from)) << " to "
                << test::isoText(time(to)) << "\nfound" << readable(found);
            const std::size_t some = random() % 4;
            const auto few = seconds(r.between(time(from), time(to), some));
            ASSERT_EQ(few.size(), std::min(found.size(), some)) << s.name();
            ASSERT_TRUE(std::equal(few.begin(), few.end(), found.begin())) << s.name();
        }
    }
}

TEST(RecurrenceRandom, SteppingForwardsAndBackwardsMeetsEveryInstance) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500);
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        const Recurrence r = s.load();
        DateTime at = time(s.start - 1);
        for (std::size_t n = 0; n < s.expected.size() && n < 40; ++n) {
            const DateTime next = r.next(at);
            ASSERT_EQ(test::isoOrNull(next), test::isoText(time(s.expected[n])))
                << s.name() << " after " << test::isoText(at);
            ASSERT_EQ(test::isoOrNull(r.previous(next)),
                      n == 0 ? "null" : test::isoText(time(s.expected[n - 1])))
                << s.name();
            at = next;
        }
        ASSERT_EQ(test::isoOrNull(r.previous(time(s.end + 1))),
                  test::isoText(time(s.expected.back())))
            << s.name();
    }
}

TEST(RecurrenceRandom, TheLastIsTheLastOfAll) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(3000);
    int ended = 0;
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        const Recurrence r = s.load();
        if (s.rule.count == 0 && s.rule.until < 0) {
            ASSERT_TRUE(r.last().isZero()) << s.name();
            continue;
        }
        const auto matches = s.rule.expand(s.start, s.end);
        if (s.rule.until >= 0 || matches.size() == static_cast<std::size_t>(s.rule.count)) {
            ASSERT_EQ(test::isoOrNull(r.last()), test::isoText(time(s.expected.back())))
                << s.name();
            ASSERT_TRUE(r.next(r.last()).isZero()) << s.name();
            ++ended;
        }
    }
    std::cout << ended << " rules with an end\n";
    EXPECT_GT(ended, count / 10);
}

TEST(RecurrenceRandom, FarWindowsAgreeWithSteppingThere) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500) / 10;
    for (int i = 0; i < count; ++i) {
        Sample s(random);
        s.rule.count = 0;
        s.rule.until = -1;
        const std::int64_t span = s.rule.horizon() * 5;
        const Recurrence r = Recurrence::load(
            {s.rule.text(random, false), time(s.start), false, ""}, TimeZone::utc());
        const std::vector<DateTime> all = r.between(time(s.start), time(s.start + span));
        for (std::size_t k = 0; k < all.size(); k += 1 + all.size() / 7) {
            const std::vector<DateTime> rest = r.between(all[k], time(s.start + span));
            ASSERT_TRUE(std::equal(rest.begin(), rest.end(),
                                   all.begin() + static_cast<std::ptrdiff_t>(k), all.end()))
                << s.name();
        }
    }
}

TEST(RecurrenceRandom, OneMoreInCountAddsOneInstance) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500);
    const DateTime end = DateTime::fromCivil(2300, 1, 1);
    for (int i = 0; i < count; ++i) {
        Sample s(random);
        s.rule.until = -1;
        const auto instances = [&](int n) {
            s.rule.count = n;
            return Recurrence::load({s.rule.text(random, false), time(s.start), false, ""},
                                    TimeZone::utc())
                .between(time(s.start), end);
        };
        const int n = 1 + static_cast<int>(random() % 150);
        const std::vector<DateTime> less = instances(n);
        const std::vector<DateTime> more = instances(n + 1);
        ASSERT_LE(more.size(), less.size() + 1) << s.name();
        ASSERT_TRUE(more.size() == less.size() + 1 ||
                    more.back() > DateTime::fromCivil(2200, 1, 1) || more == less)
            << s.name();
        ASSERT_TRUE(std::equal(less.begin(), less.end(), more.begin())) << s.name();
    }
}

TEST(RecurrenceRandom, AnExcludedDateRemovesJustThatOne) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500);
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        const std::int64_t out = s.expected[random() % s.expected.size()];
        std::string stamp = test::isoText(time(out));
        std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
        const Recurrence r = Recurrence::load(
            {"RRULE:" + s.text + "\r\nEXDATE:" + stamp, time(s.start), false, ""}, TimeZone::utc());
        std::vector<std::int64_t> expected = s.expected;
        std::erase(expected, out);
        ASSERT_EQ(seconds(r.between(time(s.start), time(s.end))), expected) << s.name();
        ASSERT_EQ(r.ExDates().size(), 1U);
        ASSERT_EQ(r.ExDates().front(), time(out));
    }
}

TEST(RecurrenceRandom, FoldingAnywhereChangesNothing) {
    std::mt19937 random = seeded();
    const int count = rulesToTry(1500);
    for (int i = 0; i < count; ++i) {
        const Sample s(random);
        std::string line = "RRULE:" + s.text;
        // From the back, so that no fold is put inside another.
        std::set<std::size_t, std::greater<>> places;
        for (int f = 0; f < 3; ++f) {
            places.insert(1 + random() % (line.size() - 1));
        }
        for (const std::size_t at : places) {
            line.insert(at, random() % 2 == 0 ? "\r\n " : "\n\t");
        }
        std::string folded;
        std::string whole;
        const Recurrence r = Recurrence::load(
            {nlohmann::json{line}.dump(), time(s.start), false, ""}, TimeZone::utc(), &folded);
        ASSERT_EQ(seconds(r.between(time(s.start), time(s.end))), s.expected) << line;
        s.load(&whole);
        ASSERT_EQ(folded, whole);
    }
}

}  // namespace
}  // namespace vl
