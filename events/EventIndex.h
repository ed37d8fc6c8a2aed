// When which events of a collection have something to say, without looking at them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

/// Both ends are inside.
struct Window {
    DateTime from;
    DateTime to;
    bool holds(DateTime d) const { return d >= from && d <= to; }
};

/// The events of a collection in its order, each with two stretches of time: of its reminders and
/// of its starts. Most events are nowhere near a window, and are told from the others without
/// touching their objects: 17 bytes an event are read for a question. An event's stretches are
/// found out when it is first asked about; a series' hold around the last windows.
///
/// Who changes an event in place, or leaves in it what queries leave there, says so by `look`; it
/// is then looked at again. Objects that stand in for others are noticed.
class EventIndex {
public:
    /// Takes over what the collection holds now; what is known of objects that it held before
    /// stays. Keeps the collection's objects alive until the next call.
    void bring(const GenCollection& collection);

    /// As of the last `bring`, at the collection's positions less one; null for what is no event.
    std::span<calEvent* const> events() const noexcept { return events_; }

    /// Whether an event may have a reminder in the window, by its schedule or by its stored next
    /// reminder, or has something left in it by an earlier query. False: surely not.
    bool mayRemind(std::size_t i, const Window& window);

    /// Whether an occurrence of the event may start in the window. False: surely not.
    bool mayStart(std::size_t i, const Window& window);

    /// Has a query left something in the event?
    void noteLeft(std::size_t i, bool left);

    /// The first event of the collection with this id, without regard to case; null when there is
    /// none. Cost: four bytes an event are read; the ids themselves once.
    calEvent* firstWithId(std::string_view id);

    /// The event has been changed in place. Nothing happens when it is not there.
    void look(std::string_view GUID);

    /// Takes out of all events of the collection what queries have left in them.
    void forgetQueries(const GenCollection& collection);

    /// Grows with every change: of the collection, and those told by `look`.
    std::uint64_t version() const noexcept { return version_; }

    /// Where queries may have left something in the events.
    std::span<const std::uint32_t> left() const noexcept { return left_; }

private:
    enum class Kind : std::uint8_t {
        Unknown,  ///< its stretches are not found out yet
        Single,   ///< nothing lies outside its stretches
        Series,   ///< nothing lies inside them: they are the quiet ones around the last windows
        Near,     ///< may always have something to say
    };
    // Days. Of a single event both ends belong to it, of a series' the first alone.
    struct Stretch {
        double from = 0;
        double to = 0;
    };
    struct State {
        Kind reminders = Kind::Unknown;
        Kind starts = Kind::Unknown;
        bool left = true;     // a query has left something in it, or it is new
        bool listed = false;  // in `left_`
    };

    void bringValues(const GenCollection& collection);
    void bringAll(const GenCollection& collection);
    void findOut(std::size_t i);
    void noteListed(std::size_t i);
    bool seriesMayRemind(std::size_t i, const Window& window);
    bool seriesMayStart(std::size_t i, const Window& window);

    GenCollection collection_;
    std::vector<calEvent*> events_;
    std::vector<State> states_;
    std::vector<Stretch> reminders_;
    std::vector<Stretch> starts_;
    std::vector<std::uint32_t> left_;  // where `State::left`, and others
    std::vector<std::uint32_t> ids_;   // hashes; 0: not known. Empty before the first question
    std::uint64_t version_ = 0;
};

/// When the last reminder of all comes; 0 for a series without an end, and without a start.
DateTime lastReminderOf(const calEvent& event);

/// Takes out of an event what queries have left in it.
void forgetQuery(calEvent& event);
/// Whether there is nothing to take out.
bool isForgotten(const calEvent& event);

}  // namespace vl
