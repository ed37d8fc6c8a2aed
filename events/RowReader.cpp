#include "RowReader.h"

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

// Type codes of the record set whose nulls read as 0.
constexpr int kTypeInteger = 3;
constexpr int kTypeDate = 7;

constexpr std::size_t kSubjectUnits = 50;
constexpr int kMaster = 1;

void clearExceptionFields(calEvent& master) {
    master.RExceptionStartTimeOrig = DateTime();
    master.RExceptionEndTimeOrig = DateTime();
    master.BeforeMoveStartDateTime = DateTime();
    master.ISRecurrenceExceptionDeleted = 0;
    master.recurringEventId.clear();
}

}  // namespace

RowReader::RowReader(std::span<const RecordSet::Field> fields, const TimeZone& local)
    : local_(local) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto& field = fields[i];
        if (const EventProperty* property = calEvent::findProperty(field.name)) {
            const bool zero = field.type == kTypeInteger || field.type == kTypeDate;
            columns_.push_back({i, property, zero});
        }
    }
}

void RowReader::fill(calEvent& event, const RecordSet& row) const {
    fill(event, [&row](std::size_t field) { return row.value(field); });
}

void RowReader::fill(calEvent& event, const ValueOf& valueOf) const {
    static const Variant kZero(0);
    static const Variant kNoText("");
    for (const Column& column : columns_) {
        const Variant value = valueOf(column.field);  // a row that cannot be read is none
        attempt([&] {
            const Variant& substitute = column.nullIsZero ? kZero : kNoText;
            event.setProperty(*column.property, value.isNull() ? substitute : value);
        });
    }
    if (!event.recurrence.empty()) {
        attempt([&] { event.LoadRecurrence(local_); });
        event.RecurrenceState = kMaster;
    }
    if (event.RecurrenceState == kMaster) {
        clearExceptionFields(event);
    }
    event.Subject.resize(text::leftUtf16(event.Subject, kSubjectUnits).size());
}

}  // namespace vl
