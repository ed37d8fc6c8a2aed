#include "events/HeldEvents.h"

#include "model/calEvent.h"

namespace vl {

const std::vector<HeldEvents::Held>& HeldEvents::of(const GenCollection& collection) {
    if (collection.Stamp() == stamp_ && stamp_ != 0) {
        return held_;
    }
    held_.clear();
    std::size_t position = 0;
    for (const Variant& item : collection) {
        ++position;
        const auto* object = item.get<ObjectRef>();
        if (auto* event = object ? dynamic_cast<calEvent*>(object->get()) : nullptr) {
            held_.push_back({event, position});
        }
    }
    stamp_ = collection.Stamp();
    return held_;
}

}  // namespace vl
