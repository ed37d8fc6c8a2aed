#include "notify/Periods.h"

#include <array>

#include "base/Text.h"

namespace vl {

namespace {

// What the ranges are counted from.
struct Moments {
    Moments(DateTime moment, double minute)
        : OneMin(minute),
          now(moment),
          today(moment.date()),
          WeekStart(today.addDays(1 - today.weekday())),
          WeekEnd(lastMinuteBefore(WeekStart.addDays(7))) {}

    DateTime lastMinuteBefore(DateTime midnight) const {
        return DateTime(midnight.days() - OneMin);
    }
    DateTime endOfDay(int day) const { return lastMinuteBefore(today.addDays(day + 1)); }

    double OneMin;
    DateTime now;
    DateTime today;
    DateTime WeekStart;
    DateTime WeekEnd;
};

struct Entry {
    Period period;
    PeriodRange (*range)(const Moments&);
};

PeriodRange thisWeek(const Moments& m) { return {m.WeekStart, m.WeekEnd}; }

constexpr std::array<Entry, 17> kEntries = {{
    {{"Previous 30 days", "D-30"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(-30), m.today};
     }},
    {{"Previous 14 days", "D-14"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(-14), m.today};
     }},
    {{"Previous Week", "W-1"},
     [](const Moments& m) -> PeriodRange {
         return {m.WeekStart.addDays(-7), m.WeekEnd.addDays(-7)};
     }},
    {{"Previous 7 days", "D-7"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(-7), m.today};
     }},
    {{"Yesterday", "D-1"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(-1), m.endOfDay(-1)};
     }},
    {{"Past Reminders", "R"},
     [](const Moments& m) -> PeriodRange {
         return {m.now.addDays(-1), m.now};
     }},
    {{"Next Reminders", "N"},
     [](const Moments& m) -> PeriodRange {
         return {m.now, m.now.addDays(1)};
     }},
    {{"Today", "T"},
     [](const Moments& m) -> PeriodRange {
         return {m.today, m.endOfDay(0)};
     }},
    {{"Tomorrow", "D+1"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(1), m.endOfDay(1)};
     }},
    {{"Today + Tomorrow", "T+D1"},
     [](const Moments& m) -> PeriodRange {
         return {m.today, m.endOfDay(1)};
     }},
    {{"This Week", "W0"}, thisWeek},
    {{"Next 7 days", "D+7"},
     [](const Moments& m) -> PeriodRange {
         return {m.today, m.today.addDays(7)};
     }},
    {{"Next Week", "W+1"},
     [](const Moments& m) -> PeriodRange {
         return {m.WeekStart.addDays(7), m.WeekEnd.addDays(7)};
     }},
    {{"Next 14 days", "D+14"},
     [](const Moments& m) -> PeriodRange {
         return {m.today, m.today.addDays(14)};
     }},
    {{"Next 30 days", "D+30"},
     [](const Moments& m) -> PeriodRange {
         return {m.today, m.today.addDays(30)};
     }},
    {{"Dismissed", "Di"},
     [](const Moments& m) -> PeriodRange {
         return {m.today.addDays(-7), m.today.addDays(7)};
     }},
    {{"Hidden", "H"}, thisWeek},
}};

constexpr auto kPeriods = [] {
    std::array<Period, kEntries.size()> list{};
    for (std::size_t i = 0; i < list.size(); ++i) {
        list[i] = kEntries[i].period;
    }
    return list;
}();

}  // namespace

std::span<const Period> periods() noexcept { return kPeriods; }

std::optional<std::size_t> periodIndex(std::string_view code) noexcept {
    for (std::size_t i = 0; i < kPeriods.size(); ++i) {
        if (text::equalsNoCase(kPeriods[i].code, code)) {
            return i;
        }
    }
    return std::nullopt;
}

std::shared_ptr<GenCollection> listPositions() {
    auto positions = std::make_shared<GenCollection>();
    for (const Period& period : periods()) {
        positions->Add(static_cast<std::int32_t>(positions->Count()) + 1, period.code);
    }
    return positions;
}

int listPosition(const GenCollection& positions, std::string_view code) {
    const Variant at = positions.Item(code);
    return at.isEmpty() ? positions.Item("T").toInt32() : at.toInt32();
}

PeriodRange periodRange(std::string_view code, DateTime now, double OneMin) {
    const Moments moments(now, OneMin);
    const auto index = periodIndex(code);
    return index ? kEntries[*index].range(moments) : thisWeek(moments);
}

}  // namespace vl
