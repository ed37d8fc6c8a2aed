// What the oracle says after a check.
#include <sstream>

#include "Oracle.h"
#include "base/Variant.h"

namespace vl::simulation {

namespace {

std::string text(Seconds time) { return formatDateTime(dateTime(time)); }

}  // namespace

void Oracle::judgeTaken(const Check& check, const Listing& row, std::ostream& wrong) {
    Event& event = events_.at(row.GUID);
    ++decisions_;
    const bool mustKnow = event.goneIsKnown || (check.readable && !check.disturbed);
    const bool isGone = event.gone && mustKnow;
    if (event.gone && !mustKnow) {
        return;
    }
    if (isGone || event.isDone || !mayShow(event, row, check.upTo)) {
        wrong << "at " << text(check.now) << " " << event.id << " was listed for "
              << text(row.start) << ", reminder " << text(row.reminder)
              << (isGone         ? ": it is deleted"
                  : event.isDone ? ": it is done"
                                 : ": that has been dealt with, or was never due")
              << '\n';
    }
    // From now on it stands there until it is acted upon.
    const Seconds key = keyAt(event, row.start);
    const auto minutes = static_cast<int>((row.start - row.reminder) / kMinute);
    event.open[key] = minutes;
    if (!event.listedSince) {
        event.listedSince = momentOf(std::min(mayAskFrom(check.now), row.reminder));
    }
    if (isLeft(event, event.plan, {key, minutes}, false)) {
        event.must.insert({key, minutes});
    }
}

void Oracle::judgeMissing(const Check& check, const Event& event, std::ostream& wrong) const {
    if (event.held.empty() || event.gone || event.isDone || event.mayBeDone) {
        return;
    }
    if (const Reminder* due = firstDue(event, check.upTo)) {
        const auto& [key, minutes] = *due;
        wrong << "at " << text(check.now) << " " << event.id
              << " is not listed, but has a reminder " << minutes << " minutes before "
              << text(event.plan.toLocal(key, here_)) << '\n';
    } else if (isSnoozeDue(event, check.upTo)) {
        wrong << "at " << text(check.now) << " " << event.id
              << " is not listed, but a snooze is due" << '\n';
    }
}

std::string Oracle::judge(const Check& check, const std::set<std::string>& listed) {
    now_ = check.now;
    for (auto& [GUID, event] : events_) {
        if (event.gone || event.isDone) {
            continue;
        }
        settle(event);
        event.forEachPlan([&, &event = event](const Plan& plan) {
            if (check.readable || !event.held.empty()) {
                gatherMay(event, plan, check);
            }
        });
        if (event.isSure) {
            gatherMust(event, check);
        }
        decisions_ += 1 + event.must.size();
    }
    std::ostringstream wrong;
    for (const Listing& row : check.taken) {
        judgeTaken(check, row, wrong);
    }
    for (const auto& [GUID, event] : events_) {
        if (!listed.contains(GUID)) {
            judgeMissing(check, event, wrong);
        }
    }
    read(check);
    return wrong.str();
}

}  // namespace vl::simulation
