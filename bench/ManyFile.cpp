// Makes a database of so many events around now, of which none wants to be reminded of today or
// in the next hours: on it the program has nothing to say.
//
//   many_file FILE EVENTS
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <unordered_set>
#include <vector>

#include "base/Clock.h"
#include "events/CalEvents.h"
#include "support/EventFile.h"
#include "support/ManyEvents.h"

namespace {

using vl::calEvent;
using Events = std::vector<std::shared_ptr<calEvent>>;

constexpr int kQuietMinutes = 8 * 60;

// By the question that the program's first check asks.
std::unordered_set<std::string> dueSoon(const Events& events, const vl::Clock& clock) {
    vl::DBRemindUtils db;
    vl::CalEvents set(db, clock);
    for (const auto& event : events) {
        set.Add(event, event->GUID);
    }
    std::unordered_set<std::string> GUIDs;
    const vl::DateTime now = clock.now();
    const auto due = set.RemindCol(clock.today().addDays(-1), now.addMinutes(kQuietMinutes), true);
    for (const vl::Variant& item : *due) {
        GUIDs.insert(vl::objectIn<calEvent>(item)->GUID);
    }
    return GUIDs;
}

void make(const std::string& path, std::size_t count) {
    constexpr std::size_t kBatch = 5000;
    const vl::SystemClock clock;
    vl::test::EventFile file(path);
    vl::test::ManyEvents many(clock.now());
    for (std::size_t made = 0; made < count;) {
        Events events = many.next(kBatch);
        const auto due = dueSoon(events, clock);
        std::erase_if(events, [&](const auto& event) { return due.contains(event->GUID); });
        if (events.size() > count - made) {
            events.resize(count - made);
        }
        file.put(events);
        made += events.size();
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("many_file FILE EVENTS\n", stderr);
        return 2;
    }
    try {
        make(argv[1], std::strtoul(argv[2], nullptr, 10));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "many_file: %s\n", error.what());
        return 1;
    }
    return 0;
}
