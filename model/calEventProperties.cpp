// The table of properties and access by name.
#include <array>

#include "base/Text.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

namespace {

using E = calEvent;

constexpr std::array<EventProperty, 63> kProperties = {{
    {1, "BeforeMoveStartDateTime", &E::BeforeMoveStartDateTime, ""},
    {2, "Body", &E::Body, "description"},
    {3, "BusyStatus", &E::BusyStatus, ""},
    {4, "Created", &E::Created, "created"},
    {5, "CustomPropertiesXMLData", &E::CustomPropertiesXMLData, ""},
    {6, "DateID", &E::DateID, ""},
    {7, "EndDateTime", &E::EndDateTime, ""},
    {8, "EventID", &E::EventID, ""},
    {9, "FieldID", &E::FieldID, ""},
    {10, "GUID", &E::GUID, ""},
    {11, "VLBase", &E::VLBase, ""},
    {12, "ImportanceLevel", &E::ImportanceLevel, ""},
    {13, "IsAllDayEvent", &E::IsAllDayEvent, ""},
    {14, "IsUnScheduled", &E::IsUnScheduled, ""},
    {15, "IsAllLoaded", &E::IsAllLoaded, ""},
    {16, "ISRecurrenceExceptionDeleted", &E::ISRecurrenceExceptionDeleted, ""},
    {17, "ItemID", &E::ItemID, ""},
    {18, "LabelID", &E::LabelID, ""},
    {19, "Location", &E::Location, "location"},
    {20, "Modified", &E::Modified, "updated"},
    {21, "RExceptionEndTimeOrig", &E::RExceptionEndTimeOrig, ""},
    {22, "RExceptionStartTimeOrig", &E::RExceptionStartTimeOrig, ""},
    {23, "RecurrencePatternID", &E::RecurrencePatternID, ""},
    {24, "RecurrenceState", &E::RecurrenceState, ""},
    {25, "RemainderSoundFile", &E::RemainderSoundFile, ""},
    {26, "ReminderMinutesBeforeStart", &E::ReminderMinutesBeforeStart, ""},
    {27, "ShowItemDuration", &E::ShowItemDuration, ""},
    {28, "StartDateTime", &E::StartDateTime, ""},
    {29, "Subject", &E::Subject, "summary"},
    {30, "etag", &E::etag, "etag"},
    {31, "id", &E::id, "id"},
    {32, "Color", &E::Color, "color"},
    {33, "iCalUID", &E::iCalUID, "iCalUID"},
    {34, "recurrence", &E::recurrence, "recurrence"},
    {35, "recurringEventId", &E::recurringEventId, "recurringEventId"},
    {36, "CalendarID", &E::CalendarID, ""},
    {37, "JSON", &E::JSON, ""},
    {38, "reminders", &E::reminders, ""},
    {39, "ReadOnly", &E::ReadOnly, ""},
    {40, "status", &E::status, "status"},
    {41, "deleted", &E::deleted, ""},
    {42, "bModified", &E::bModified, ""},
    {43, "dLastReminder", &E::dLastReminder, ""},
    {44, "NextReminder", &E::NextReminder, ""},
    {45, "Dismissed", &E::Dismissed, ""},
    {46, "Hidden", &E::Hidden, ""},
    {47, "iRemMinutes", &E::iRemMinutes, ""},
    {48, "iRemMinutesNext", &E::iRemMinutesNext, ""},
    {49, "MasterEventID", &E::MasterEventID, ""},
    {50, "RepDates", &E::RepDates, ""},
    {51, "ExDates", &E::ExDates, ""},
    {52, "RDates", &E::RDates, ""},
    {53, "RRULE", &E::RRULE, ""},
    {54, "InstanceStart", &E::InstanceStart, ""},
    {55, "NextInstanceStart", &E::NextInstanceStart, ""},
    {56, "RemindersCol", &E::RemindersCol, ""},
    {57, "RemindersMinOffsetMin", &E::RemindersMinOffsetMin, ""},
    {58, "RemindersMaxOffsetMin", &E::RemindersMaxOffsetMin, ""},
    {59, "isRecurrenceLoaded", &E::isRecurrenceLoaded, ""},
    {60, "FieldName", &E::FieldName, ""},
    {61, "AllRemindersDone", &E::AllRemindersDone, ""},
    {62, "isNewException", &E::isNewException, ""},
    {63, "exEID", &E::exEID, ""},
}};

constexpr char lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr std::size_t hashOf(std::string_view name) noexcept {
    std::uint32_t hash = 2166136261U;
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(lower(c))) * 16777619U;
    }
    return hash ^ (hash >> 15);
}

constexpr bool sameAscii(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

// Numbers of properties by the hash of their names, 0 for a free slot; the next slot is tried when
// one is taken. Four times as many slots as names keep the walks short.
constexpr std::size_t kSlots = 256;
constexpr std::array<std::uint8_t, kSlots> kByName = [] {
    std::array<std::uint8_t, kSlots> slots{};
    for (const EventProperty& p : kProperties) {
        std::size_t at = hashOf(p.name) % kSlots;
        while (slots[at] != 0) {
            at = (at + 1) % kSlots;
        }
        slots[at] = static_cast<std::uint8_t>(p.number);
    }
    return slots;
}();

const EventProperty* findAscii(std::string_view name) noexcept {
    for (std::size_t at = hashOf(name) % kSlots; kByName[at] != 0; at = (at + 1) % kSlots) {
        const EventProperty& p = kProperties[kByName[at] - 1U];
        if (sameAscii(p.name, name)) {
            return &p;
        }
    }
    return nullptr;
}

const EventProperty& known(std::string_view name) {
    const EventProperty* found = calEvent::findProperty(name);
    if (found == nullptr) {
        throw Error(ErrNo::NotFound, "an event has no property \"" + std::string(name) + "\"");
    }
    return *found;
}

void assign(bool& to, const Variant& value) { to = value.toBool(); }
void assign(std::int32_t& to, const Variant& value) { to = value.toInt32(); }
void assign(DateTime& to, const Variant& value) { to = value.toDateTime(); }
void assign(SharedText& to, const Variant& value) { to = value.toText(); }
void assign(std::shared_ptr<GenCollection>& to, const Variant& value) {
    const ObjectRef* object = value.get<ObjectRef>();
    auto collection = object ? std::dynamic_pointer_cast<GenCollection>(*object) : nullptr;
    const bool absent = value.isEmpty() || (object && !*object);
    if (!collection && !absent) {
        throw Error(ErrNo::TypeMismatch, "not a collection");
    }
    to = std::move(collection);
}

}  // namespace

std::span<const EventProperty> calEvent::properties() noexcept { return kProperties; }

const EventProperty* calEvent::findProperty(std::string_view name) {
    for (const char c : name) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            // Some characters beyond ASCII are equal to one in it but for their case.
            return findAscii(text::foldCase(name));
        }
    }
    return findAscii(name);
}

Variant calEvent::property(std::string_view name) const { return property(known(name)); }

Variant calEvent::property(const EventProperty& property) const {
    return std::visit(
        [this](auto member) -> Variant {
            if constexpr (std::is_same_v<decltype(member),
                                         std::shared_ptr<GenCollection> calEvent::*>) {
                return ObjectRef(this->*member);
            } else if constexpr (std::is_same_v<decltype(member), SharedText calEvent::*>) {
                return (this->*member).view();
            } else {
                return this->*member;
            }
        },
        property.member);
}

void calEvent::setProperty(std::string_view name, const Variant& value) {
    setProperty(known(name), value);
}

void calEvent::setProperty(const EventProperty& property, const Variant& value) {
    std::visit([&](auto member) { assign(this->*member, value); }, property.member);
}

bool calEvent::sameRow(const calEvent& other) const {
    for (const EventProperty& p : kProperties) {
        const auto equal = [&](auto member) { return this->*member == other.*member; };
        if (p.isColumn() && !std::visit(equal, p.member)) {
            return false;
        }
    }
    return true;
}

}  // namespace vl
