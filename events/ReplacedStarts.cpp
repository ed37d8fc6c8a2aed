#include "ReplacedStarts.h"

#include <algorithm>

#include "base/Text.h"

namespace vl {

void ReplacedStarts::say(const SeriesName& series, const Noted& start) {
    ids_[text::foldCase(series.id)].said.push_back({text::foldCase(series.VLBase), start});
}

void ReplacedStarts::settle(std::span<const calEvent* const> series, const TimeZone& here) {
    if (empty()) {
        return;
    }
    std::vector<std::pair<const calEvent*, OfId*>> meant;
    for (const calEvent* event : series) {
        const auto known = ids_.find(text::foldCase(event->id));
        if (known != ids_.end() && !event->id.empty()) {
            known->second.bases.insert(text::foldCase(event->VLBase));
            meant.emplace_back(event, &known->second);
        }
    }
    for (const auto& [event, known] : meant) {
        const std::string base = text::foldCase(event->VLBase);
        auto& starts = known->starts[base];
        for (const Said& said : known->said) {
            if (said.base.empty() || said.base == base || !known->bases.contains(said.base)) {
                starts.push_back(startIn(*event, said.start, here));
            }
        }
        std::sort(starts.begin(), starts.end());
        starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
    }
}

std::span<const DateTime> ReplacedStarts::of(const calEvent& event) const {
    if (empty() || event.id.empty() || !event.IsRepeating()) {
        return {};
    }
    const auto known = ids_.find(text::foldCase(event.id));
    if (known == ids_.end()) {
        return {};
    }
    const auto starts = known->second.starts.find(text::foldCase(event.VLBase));
    return starts != known->second.starts.end() ? std::span<const DateTime>(starts->second)
                                                : std::span<const DateTime>();
}

}  // namespace vl
