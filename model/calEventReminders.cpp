// The reminders of an event: from JSON, and in time.
#include <algorithm>
#include <vector>

#include <nlohmann/json.hpp>

#include "JsonDepth.h"
#include "base/Clock.h"
#include "base/Text.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"

namespace vl {

namespace {

using Json = nlohmann::ordered_json;
using ReminderList = std::vector<std::shared_ptr<clsReminder>>;

// The member's number; 0 when there is none. Throws when it stands for no 32-bit number.
std::int32_t minutesOf(const Json& anOverride) {
    const auto member = anOverride.find("minutes");
    if (member == anOverride.end() || member->is_null()) {
        return 0;
    }
    if (member->is_number()) {
        return text::toInt32(member->get<double>());
    }
    if (member->is_string()) {
        return Variant(member->get<std::string>()).toInt32();
    }
    throw Error(ErrNo::TypeMismatch, "\"minutes\" of a reminder is no number");
}

std::shared_ptr<clsReminder> reminderOf(const Json& anOverride) {
    if (!anOverride.is_object()) {
        throw Error(ErrNo::TypeMismatch, "a reminder in \"overrides\" is no object");
    }
    auto reminder = std::make_shared<clsReminder>();
    const auto method = anOverride.find("method");
    if (method != anOverride.end() && method->is_string()) {
        reminder->Method = method->get<std::string>();
    }
    reminder->Minutes = minutesOf(anOverride);
    return reminder;
}

// A reminder that cannot be read is left out, the others stay.
ReminderList overridesOf(const Json& settings) {
    ReminderList list;
    const auto overrides = settings.find("overrides");
    if (overrides != settings.end() && overrides->is_array()) {
        for (const Json& one : *overrides) {
            attempt([&] { list.push_back(reminderOf(one)); });
        }
    }
    return list;
}

ReminderList defaultsOf(std::int32_t minutesBeforeStart, std::string_view shortTexts) {
    ReminderList list;
    if (minutesBeforeStart > 0) {
        list.push_back(std::make_shared<clsReminder>());
        list.back()->Minutes = minutesBeforeStart;
        return list;
    }
    for (const std::string_view piece : text::split(shortTexts, ",")) {
        const std::string_view shortText = text::trimBlanks(piece);
        auto reminder = std::make_shared<clsReminder>();
        if (!shortText.empty() && attempt([&] { reminder->FromText(shortText); })) {
            list.push_back(std::move(reminder));
        }
    }
    return list;
}

bool sameReminder(const clsReminder& a, const clsReminder& b) {
    return a.Minutes == b.Minutes && text::equalsNoCase(a.Method, b.Method);
}

// Ascending by minutes, each only once. The sort keeps one value a key, so each reminder gets a key
// of its own: its place in the list.
ReminderList sorted(const ReminderList& list) {
    GenCollection minutes;
    for (std::size_t i = 0; i < list.size(); ++i) {
        minutes.Add(list[i]->Minutes, std::to_string(i));
    }
    minutes.SortByItem("N", "ASC", false);
    ReminderList result;
    for (std::size_t position = 1; position <= minutes.Count(); ++position) {
        const auto& reminder = list[std::stoul(minutes.Key(static_cast<std::int64_t>(position)))];
        const bool known = std::any_of(result.begin(), result.end(), [&](const auto& other) {
            return sameReminder(*reminder, *other);
        });
        if (!known) {
            result.push_back(reminder);
        }
    }
    return result;
}

template <class Visit>
void forEachReminder(const GenCollection* reminders, Visit&& visit) {
    if (reminders == nullptr) {
        return;
    }
    for (const Variant& item : *reminders) {
        const ObjectRef* object = item.get<ObjectRef>();
        if (const auto* r = object ? dynamic_cast<const clsReminder*>(object->get()) : nullptr) {
            visit(*r);
        }
    }
}

std::int32_t negated(std::int32_t minutes) { return text::toInt32(-static_cast<double>(minutes)); }

// Minutes of the reminder that `better(candidate, best)` leaves over, negated; 0 without any.
template <class Better>
std::int32_t bestOffset(const GenCollection* reminders, Better&& better) {
    const ErrScope scope;
    bool found = false;
    std::int32_t best = 0;
    forEachReminder(reminders, [&](const clsReminder& r) {
        if (!found || better(r.Minutes, best)) {
            best = r.Minutes;
        }
        found = true;
    });
    std::int32_t result = 0;
    attempt([&] { result = negated(best); });
    return result;
}

}  // namespace

void calEvent::SetRemindersCol(std::string_view defaultReminders) {
    const ErrScope scope;
    Json settings;
    if (!reminders.empty()) {
        attempt([&] {
            refuseDeepJson(reminders);
            settings = Json::parse(reminders.view());
        });
    }
    const auto useDefault = settings.find("useDefault");
    const bool isDefault =
        useDefault != settings.end() && useDefault->is_boolean() && useDefault->get<bool>();
    ReminderList list;
    attempt([&] {
        list = sorted(isDefault ? defaultsOf(ReminderMinutesBeforeStart, defaultReminders)
                                : overridesOf(settings));
    });
    auto collection = std::make_shared<GenCollection>();
    for (const auto& reminder : list) {
        collection->Add(ObjectRef(reminder));
    }
    RemindersMinOffsetMin = list.empty() ? 0 : list.front()->Minutes;
    RemindersMaxOffsetMin = list.empty() ? 0 : list.back()->Minutes;
    RemindersCol = std::move(collection);
}

std::int32_t calEvent::FirstReminder() const {
    return bestOffset(RemindersCol.get(), [](auto minutes, auto best) { return minutes > best; });
}

std::int32_t calEvent::LastReminder() const {
    return bestOffset(RemindersCol.get(), [](auto minutes, auto best) { return minutes < best; });
}

DateTime calEvent::FirstReminderD() const { return InstanceStart.addMinutes(FirstReminder()); }

DateTime calEvent::LastReminderD() const { return InstanceStart.addMinutes(LastReminder()); }

std::int32_t calEvent::GetNextReminder(DateTime dDate) const {
    const std::int64_t distance = minutesBetween(dDate, InstanceStart);
    std::int32_t best = -kNoNextReminder;
    forEachReminder(RemindersCol.get(), [&](const clsReminder& r) {
        if (r.Minutes < distance) {
            best = std::max(best, r.Minutes);
        }
    });
    return -best;  // never below -10000000: no overflow
}

DateTime calEvent::NextReminderD(DateTime dDate) const {
    const std::int32_t offset = GetNextReminder(dDate);
    return offset == kNoNextReminder ? DateTime() : InstanceStart.addMinutes(offset);
}

std::int32_t calEvent::PrevReminder(DateTime dDate) const {
    const ErrScope scope;
    const std::int64_t distance = minutesBetween(dDate, InstanceStart);
    std::int32_t best = -kNoPrevReminder;
    forEachReminder(RemindersCol.get(), [&](const clsReminder& r) {
        if (r.Minutes >= distance) {
            best = std::min(best, r.Minutes);
        }
    });
    std::int32_t result = kNoPrevReminder;
    attempt([&] { result = negated(best); });
    return result;
}

DateTime calEvent::PrevReminderD(DateTime dDate, DateTime now) const {
    const std::int32_t offset = PrevReminder(dDate);
    if (offset == kNoPrevReminder) {
        return FirstReminderD();
    }
    const DateTime computed = InstanceStart.addMinutes(offset);
    const bool snoozed = !NextReminder.isZero() && NextReminder > computed && NextReminder <= now;
    return snoozed ? NextReminder : computed;
}

DateTime calEvent::PrevReminderD(DateTime dDate, const Clock& clock) const {
    return PrevReminderD(dDate, clock.now());
}

DateTime calEvent::RecordedReminderD() const {
    // Also where it honestly is as many minutes as stand for none, and of a snooze without a date.
    if (!dReminder.isZero() && minutesBetween(dReminder, InstanceStart) == iRemMinutes) {
        return dReminder;
    }
    return InstanceStart.isZero() || iRemMinutes == kNoReminder
               ? DateTime()
               : InstanceStart.addMinutes(-static_cast<std::int64_t>(iRemMinutes));
}

DateTime calEvent::FirstReminderAfterEventStart() const {
    bool found = false;
    std::int32_t best = 0;
    forEachReminder(RemindersCol.get(), [&](const clsReminder& r) {
        if (r.Minutes < 0 && (!found || r.Minutes > best)) {
            found = true;
            best = r.Minutes;
        }
    });
    return found ? InstanceStart.addMinutes(-static_cast<std::int64_t>(best)) : DateTime();
}

}  // namespace vl
