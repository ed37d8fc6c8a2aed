#include "Host.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vl::simulation {

namespace {

const std::array<std::vector<int>, 8> kReminders = {
    {{15}, {10, 60}, {0}, {-20}, {5, 30, 1440}, {1, -10, -60}, {120}, {30, 0, -5, 600, 2}}};

std::vector<int> remindersOf(int which) {
    return kReminders[static_cast<std::size_t>(which) % kReminders.size()];
}

// What a row cannot say: a time that clocks skip. What becomes of a series elsewhere, when it
// begins in the hour that they skip, nothing says.
void makeSayable(Plan& plan, Zone here) {
    plan.start = plan.toOwn(plan.toLocal(plan.start, here), here);
    if (!plan.zone && !plan.allDay && plan.start % kDay / kHour == 2) {
        plan.start += kHour;
    }
}

}  // namespace

Host::Kept* Host::chosen(int which, bool series) {
    std::vector<Kept*> fitting;
    for (Kept& kept : kept_) {
        if (!kept.gone && (kept.plan.isSeries() || !series)) {
            fitting.push_back(&kept);
        }
    }
    return fitting.empty() ? nullptr : fitting[static_cast<std::size_t>(which) % fitting.size()];
}

void Host::write(Kept& kept, const Plan& plan, const At& at) {
    file_.put(*rowOf(plan, kept.GUID, kept.id, at.now + clockOff, at.here));
    kept.plan = plan;
    oracles_.tell([&](Oracle& one) { one.written(kept.GUID, kept.id, plan, at.now + clockOff); });
}

void Host::writeAnew(Seconds now, Zone here) {
    for (Kept& kept : kept_) {
        if (!kept.gone && kept.plan.zone) {
            write(kept, kept.plan, {now, here});
        }
        // Rows that are marked as deleted say of which time they were, as long as they are there.
        if (kept.gone && kept.plan.replaces) {
            file_.change(kept.GUID,
                         {{"RExceptionStartTimeOrig",
                           Variant(dateTime(kept.plan.toLocal(*kept.plan.replaces, here)))}});
        }
    }
}

void Host::keepAsWritten(Zone there, Zone here) {
    for (Kept& kept : kept_) {
        kept.plan = kept.gone ? kept.plan : kept.plan.asWrittenIn(there, here);
    }
}

void Host::add(const Plan& plan, const At& at) {
    const std::string number = std::to_string(100 + kept_.size());
    Kept kept{"{A0000000-0000-0000-0000-000000000" + number + "}", "e" + number, {}, false};
    write(kept, plan, at);
    kept_.push_back(std::move(kept));
}

Plan Host::singleOf(const Step& step, const At& at) {
    Plan plan;
    const bool allDay = step.c % 9 == 1;
    plan.zone = step.c % 7 == 0 && !allDay ? std::optional(Zone::NewYork) : std::nullopt;
    plan.start = plan.toOwn(at.now + step.a * kMinute, at.here);
    plan.length = (step.c % 120) * kMinute;
    plan.reminders = remindersOf(step.b);
    if (allDay) {
        plan.allDay = true;
        plan.start = midnightOf(plan.start);
        plan.length = (1 + step.c % 3) * kDay;
    }
    return plan;
}

Plan Host::seriesOf(const Step& step, const At& at) {
    Plan plan;
    plan.zone = step.c % 3 == 0 ? std::optional(Zone::NewYork) : std::nullopt;
    plan.everyDays = std::array{1, 2, 7, 14}[static_cast<std::size_t>(step.c / 3) % 4];
    plan.count = step.c / 12 % 3 == 0 ? 1 + step.c / 36 % 10 : 0;
    const Seconds first = at.now + step.a * kMinute - (step.c / 100) * plan.everyDays * kDay;
    plan.start = plan.toOwn(first, at.here);
    makeSayable(plan, at.here);
    // Some last longer than it is from one to the next.
    plan.length = step.b % 11 == 3 ? 30 * kHour : (step.b % 90) * kMinute;
    plan.reminders = remindersOf(step.b);
    if (!plan.zone && step.b % 9 == 1) {
        plan.allDay = true;
        plan.start = midnightOf(plan.start);
        plan.length = kDay;
    }
    return plan;
}

std::optional<Occurrence> Host::oneOf(const Kept& series, int which, const At& at) {
    const auto next = series.plan.occurrences(at.now - kDay, at.now + 20 * kDay, at.here);
    return next.empty()
               ? std::nullopt
               : std::optional(
                     next[static_cast<std::size_t>(which) % std::min<std::size_t>(next.size(), 4)]);
}

void Host::except(const Step& step, bool cancelled, const At& at) {
    const Kept* series = chosen(step.a, true);
    const auto one = series != nullptr ? oneOf(*series, step.b, at) : std::nullopt;
    const bool taken = !one || std::any_of(kept_.begin(), kept_.end(), [&](const Kept& other) {
        return other.plan.master == series->id && other.plan.replaces == one->key;
    });
    if (taken) {
        return;
    }
    Plan plan = series->plan;
    plan.everyDays = 0;
    plan.count = 0;
    plan.excluded.clear();
    plan.start = one->key + (plan.allDay ? (step.c % 3) * kDay : step.c * kMinute);
    plan.replaces = one->key;
    plan.master = series->id;
    plan.cancelled = cancelled;
    add(plan, at);
}

void Host::exclude(const Step& step, const At& at) {
    Kept* series = chosen(step.a, true);
    if (const auto one = series != nullptr ? oneOf(*series, step.b, at) : std::nullopt) {
        Plan plan = series->plan;
        plan.excluded.insert(one->key);
        write(*series, plan, at);
    }
}

// What replaced occurrences of a series at other times would mean, only the host knows.
bool Host::isChanged(const Kept& series) const {
    return std::any_of(kept_.begin(), kept_.end(),
                       [&](const Kept& other) { return other.plan.master == series.id; });
}

void Host::retime(const Step& step, const At& at) {
    Kept* series = chosen(step.a, true);
    if (series == nullptr || isChanged(*series)) {
        return;
    }
    Plan plan = series->plan;
    plan.start += plan.allDay ? (step.b % 4) * kDay : step.b * kMinute;
    if (step.c % 3 == 0) {
        plan.everyDays = std::array{1, 2, 7, 14}[static_cast<std::size_t>(step.c / 3) % 4];
    }
    if (step.c % 5 == 0) {
        plan.count = step.c / 5 % 2 == 0 ? 0 : 1 + step.c / 10 % 30;
    }
    makeSayable(plan, at.here);
    write(*series, plan, at);
}

void Host::remind(const Step& step, const At& at) {
    if (Kept* kept = chosen(step.a)) {
        Plan plan = kept->plan;
        plan.reminders = remindersOf(step.b);
        write(*kept, plan, at);
    }
}

void Host::move(const Step& step, const At& at) {
    Kept* kept = chosen(step.a, false);
    if (kept != nullptr && !kept->plan.isSeries()) {
        Plan plan = kept->plan;
        plan.start += plan.allDay ? (1 + step.b % 2) * kDay : step.b * kMinute;
        write(*kept, plan, at);
    }
}

void Host::take(const Step& step, Seconds now, Zone here) {
    const At at{now, here};
    Kept* kept = chosen(step.a);
    switch (step.what) {
        case Do::AddSingle:
            return add(singleOf(step, at), at);
        case Do::AddSeries:
            return add(seriesOf(step, at), at);
        case Do::Move:
            return move(step, at);
        case Do::Retime:
            return retime(step, at);
        case Do::Remind:
            return remind(step, at);
        case Do::Except:
            return except(step, false, at);
        case Do::Cancel:
            return except(step, true, at);
        case Do::Exclude:
            return exclude(step, at);
        case Do::Touch:
            return kept != nullptr ? write(*kept, kept->plan, at) : void();
        case Do::Delete:
            if (kept != nullptr) {
                file_.change(kept->GUID, {{"Deleted", true}});
                kept->gone = true;
                oracles_.tell([&](Oracle& one) { one.deleted(kept->GUID); });
            }
            return;
        default:
            return;
    }
}

}  // namespace vl::simulation
