// How the index follows its collection.
#include "EventIndex.h"
#include "PlaceIn.h"

namespace vl {

namespace {

calEvent* eventIn(const Variant& item) {
    const auto* object = item.get<ObjectRef>();
    return object != nullptr ? dynamic_cast<calEvent*>(object->get()) : nullptr;
}

}  // namespace

void EventIndex::bring(const GenCollection& collection) {
    if (collection.Stamp() == collection_.Stamp() && collection.Count() == events_.size()) {
        return;
    }
    if (collection.HasSameOrder(collection_)) {
        bringValues(collection);
    } else {
        bringAll(collection);
    }
    collection_ = collection;
    ++version_;
}

void EventIndex::bringValues(const GenCollection& collection) {
    for (const auto place : collection.PlacesThatDiffer(collection_)) {
        const std::size_t i = collection.PositionOfPlace(place) - 1;
        const bool listed = states_[i].listed;
        events_[i] = eventIn(collection.AtPlace(place));
        states_[i] = State();
        states_[i].listed = listed;
        reminders_[i] = starts_[i] = {};
        if (!ids_.empty()) {
            ids_[i] = 0;
        }
        noteListed(i);
    }
}

void EventIndex::bringAll(const GenCollection& collection) {
    const std::size_t count = collection.Count();
    std::vector<calEvent*> events;
    std::vector<State> states;
    std::vector<Stretch> reminders;
    std::vector<Stretch> starts;
    std::vector<std::uint32_t> ids(ids_.empty() ? 0 : count);
    events.reserve(count);
    states.reserve(count);
    reminders.reserve(count);
    starts.reserve(count);
    left_ = {};
    std::size_t at = 0;
    for (const Variant& item : collection) {
        const auto* object = item.get<ObjectRef>();
        const std::size_t known = placeIn(events_, at, object != nullptr ? object->get() : nullptr,
                                          [](const calEvent* event) { return event; });
        const bool isKnown = known < events_.size();
        events.push_back(isKnown ? events_[known] : eventIn(item));
        states.push_back(isKnown ? states_[known] : State());
        reminders.push_back(isKnown ? reminders_[known] : Stretch());
        starts.push_back(isKnown ? starts_[known] : Stretch());
        if (isKnown && !ids_.empty()) {
            ids[events.size() - 1] = ids_[known];
        }
        at = isKnown ? known + 1 : at;
        states.back().listed = states.back().left;
        if (states.back().left) {
            left_.push_back(static_cast<std::uint32_t>(states.size() - 1));
        }
    }
    events_ = std::move(events);
    states_ = std::move(states);
    reminders_ = std::move(reminders);
    starts_ = std::move(starts);
    ids_ = std::move(ids);
}

}  // namespace vl
