#include "RowReader.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <variant>

#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/Damage.h"

namespace vl {

namespace {

// Type codes of the record set whose nulls read as 0.
constexpr int kTypeInteger = 3;
constexpr int kTypeDate = 7;

constexpr std::size_t kSubjectUnits = 50;
constexpr int kMaster = 1;

// Texts that tell one event from another.
bool isOwn(std::string_view name) {
    static constexpr std::array<std::string_view, 4> kNames = {"GUID", "id", "etag", "iCalUID"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

void clearExceptionFields(calEvent& master) {
    master.RExceptionStartTimeOrig = DateTime();
    master.RExceptionEndTimeOrig = DateTime();
    master.BeforeMoveStartDateTime = DateTime();
    master.ISRecurrenceExceptionDeleted = 0;
    master.recurringEventId.clear();
}

}  // namespace

RowReader::RowReader(std::span<const RecordSet::Field> fields, const TimeZone& local,
                     TextPool& pool)
    : local_(local), pool_(pool) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const auto& field = fields[i];
        if (const EventProperty* property = calEvent::findProperty(field.name)) {
            const bool zero = field.type == kTypeInteger || field.type == kTypeDate;
            columns_.push_back({i, property, zero, !isOwn(property->name)});
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
    std::string text;
    for (const Column& column : columns_) {
        const auto read = [&](auto member) {
            using Type = std::remove_reference_t<decltype(event.*member)>;
            constexpr bool isText = std::is_same_v<Type, SharedText>;
            if constexpr (std::is_same_v<Type, std::shared_ptr<GenCollection>>) {
                return Read::Other;
            } else {
                auto& to = event.*member;
                Read result = Read::Other;
                if constexpr (isText) {
                    result = row.read(column.field, text);
                    if (result == Read::Value) {
                        to = column.pooled ? pool_.of(text) : SharedText(text);
                    }
                } else {
                    result = row.read(column.field, to);
                }
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

RowReader::Lost RowReader::fillReadable(calEvent& event, const sql::RowStream& row) const {
    Lost lost;
    for (const Column& column : columns_) {
        Variant value;
        if (isReadable([&] { value = row.value(column.field); })) {
            set(event, column, value);
        } else {
            lost.any = true;
            lost.GUID = lost.GUID || column.property->name == "GUID";
        }
    }
    finish(event);
    return lost;
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
        event.RRULE = pool_.of(event.RRULE);
        event.RecurrenceState = kMaster;
    }
    if (event.RecurrenceState == kMaster) {
        clearExceptionFields(event);
    }
    const std::string_view subject = text::leftUtf16(event.Subject, kSubjectUnits);
    if (subject.size() < event.Subject.size()) {
        event.Subject = subject;
    }
}

}  // namespace vl
