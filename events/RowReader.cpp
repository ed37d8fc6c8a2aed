#include "RowReader.h"

#include <type_traits>
#include <variant>

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
    for (const Column& column : columns_) {
        set(event, column, valueOf(column.field));  // a row that cannot be read is none
    }
    finish(event);
}

void RowReader::fill(calEvent& event, const sql::RowStream& row) const {
    using Read = jet::RowCursor::Read;
    for (const Column& column : columns_) {
        const auto read = [&](auto member) {
            if constexpr (std::is_same_v<decltype(member),
                                         std::shared_ptr<GenCollection> calEvent::*>) {
                return Read::Other;
            } else {
                auto& to = event.*member;
                const Read result = row.read(column.field, to);
                constexpr bool isText = std::is_same_v<decltype(member), std::string calEvent::*>;
                if (result == Read::Null && isText != column.nullIsZero) {
                    to = {};
                    return Read::Value;
                }
                return result;
            }
        };
        switch (std::visit(read, column.property->member)) {
            case Read::Value:
                break;
            case Read::Null:
                set(event, column, Null{});
                break;
            case Read::Other:
                set(event, column, row.value(column.field));
                break;
        }
    }
    finish(event);
}

void RowReader::set(calEvent& event, const Column& column, const Variant& value) const {
    static const Variant kZero(0);
    static const Variant kNoText("");
    attempt([&] {
        const Variant& substitute = column.nullIsZero ? kZero : kNoText;
        event.setProperty(*column.property, value.isNull() ? substitute : value);
    });
}

void RowReader::finish(calEvent& event) const {
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
