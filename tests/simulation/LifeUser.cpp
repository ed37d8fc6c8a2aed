// What the user does, here or in another program.
#include <array>
#include <utility>
#include <vector>

#include "Life.h"
#include "base/Variant.h"

namespace vl::simulation {

std::optional<Listing> Life::listedRow(int which) const {
    std::vector<Listing> rows;
    for (const auto& [GUID, row] : program_->rows()) {
        if (program_->listed().contains(GUID)) {
            rows.push_back(row);
        }
    }
    return rows.empty() ? std::nullopt
                        : std::optional(rows[static_cast<std::size_t>(which) % rows.size()]);
}

// An occurrence of these days, of an event that the views show.
std::optional<Listing> Life::viewRow(int which, int occurrence) {
    const Host::Kept* kept = host_.chosen(which);
    if (kept == nullptr || !program_->shows(kept->GUID)) {
        return std::nullopt;
    }
    const auto all = kept->plan.occurrences(now() - 2 * kDay, now() + 4 * kDay, here_);
    if (all.empty()) {
        return std::nullopt;
    }
    // What the host has moved in this second is shown as it was.
    const Seconds shown = program_->startShown(kept->GUID);
    const bool isMoved = shown != kept->plan.toLocal(kept->plan.start, here_);
    if (isMoved && kept->plan.isSeries()) {
        return std::nullopt;
    }
    const Occurrence& one = all[static_cast<std::size_t>(occurrence) % all.size()];
    const Seconds start = isMoved ? shown : one.start;
    return Listing{kept->GUID, start, start - kept->plan.reminders.front() * kMinute};
}

void Life::snooze(const std::optional<Listing>& row, int minutes) {
    if (row) {
        act([&] { program_->snooze(*row, minutes); },
            [&] {
                const Seconds until = now() + minutes * kMinute;
                oracles_.tellAct(row->GUID,
                                 [&](Oracle& one) { one.acted(*row, Act::Snooze, now(), until); });
                said_[row->GUID].next = until;
            });
    }
}

void Life::dismiss(const std::optional<Listing>& row, const Step& step) {
    if (!row) {
        return;
    }
    static constexpr std::array kActs = {
        std::pair{Act::DismissThis, DismissMode::This},
        std::pair{Act::DismissAllButAfter, DismissMode::AllButAfter},
        std::pair{Act::DismissAll, DismissMode::All}};
    const auto& [how, mode] = kActs.at(static_cast<std::size_t>(step.b) % kActs.size());
    const bool done = step.c % 8 == 0;
    act([&, mode = mode] { program_->dismiss(*row, mode, done); },
        [&, how = how] {
            oracles_.tellAct(row->GUID, [&, how = how](Oracle& one) {
                one.acted(*row, how, now());
                if (done) {
                    one.acted(*row, Act::Done, now());
                }
            });
            said_[row->GUID].dismissed = now();
            said_[row->GUID].next.reset();
        });
}

// On the event as a whole.
void Life::other(const Step& step) {
    Host::Kept* kept = host_.chosen(step.a);
    if (kept == nullptr || !program_->shows(kept->GUID)) {
        return;
    }
    const Listing row{kept->GUID, kept->plan.toLocal(kept->plan.start, here_), 0};
    if (step.what == Do::Reactivate) {
        act([&] { program_->reactivate(row); },
            [&] {
                oracles_.tellAct(kept->GUID,
                                 [&](Oracle& one) { one.reactivated(kept->GUID, now()); });
                said_[kept->GUID].next = said_[kept->GUID].dismissed = 0;
            });
    } else if (step.what == Do::HideEvent) {
        act([&] { program_->hide(row); }, [&] { said_[kept->GUID].hidden = true; });
    } else {
        bool isOff = false;
        act([&] { isOff = program_->deleteItem(row) || isDying_; },
            [&] {
                if (isOff) {
                    kept->gone = true;
                    oracles_.tellAct(kept->GUID, [&](Oracle& one) { one.itemDeleted(kept->GUID); });
                }
            });
    }
}

// Another program puts an act of its own into the row; a moment later, so that nobody could
// take it for ours. The next check reads it.
void Life::foreign(const Step& step) {
    const Host::Kept* kept = host_.chosen(step.a);
    if (!mayDie() || kept == nullptr || !program_->shows(kept->GUID) ||
        file_.value(kept->GUID, "status") == Variant("AllDone")) {
        return;
    }
    pass(1);
    Said& said = said_[kept->GUID];
    const auto date = [](Seconds time) { return Variant(dateTime(time)); };
    if (step.c % 2 == 0 && oracles_.used.canSnoozeElsewhere(kept->GUID, now() + step.b * kMinute)) {
        said.next = now() + step.b * kMinute;
        file_.change(kept->GUID, {{"NextReminder", date(*said.next)}});
    } else {
        said.next = 0;
        said.dismissed = now();
        file_.change(kept->GUID, {{"NextReminder", date(0)}, {"Dismissed", date(now())}});
    }
    // What of ours has waited is none any more.
    const Seconds dismissed = inRow(kept->GUID, "Dismissed");
    said.dismissed = said.dismissed ? std::optional(dismissed) : std::nullopt;
    oracles_.tell([&](Oracle& one) { one.actedElsewhere(kept->GUID, *said.next, dismissed); });
    wait(kInterval);
}

}  // namespace vl::simulation
