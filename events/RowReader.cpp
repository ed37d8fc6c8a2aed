#include "RowReader.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
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

// Texts that tell one event from another: hardly any other event has them.
bool isOwn(std::string_view name) {
    static constexpr std::array<std::string_view, 5> kNames = {"GUID", "id", "etag", "iCalUID",
                                                               "Subject"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

// What a host has worked out may have parts of a second, or lack them; what is noted of an event
// has none.
void toWholeSeconds(calEvent& event) {
    for (DateTime calEvent::*const time :
         {&calEvent::StartDateTime, &calEvent::EndDateTime, &calEvent::RExceptionStartTimeOrig,
          &calEvent::NextReminder, &calEvent::Dismissed}) {
        event.*time = (event.*time).nearestSecond();
    }
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
            columns_.push_back({i, property, zero, !isOwn(property->name), nullptr});
        }
    }
    // What is done alike is done together, which processors foresee.
    std::stable_sort(columns_.begin(), columns_.end(), [](const Column& a, const Column& b) {
        return a.property->member.index() < b.property->member.index();
    });
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

// False: only `set` knows what becomes of such a value, or refuses it.
template <class T>
bool RowReader::take(T& to, Column& column, const jet::Cell& cell) {
    using Kind = jet::Cell::Kind;
    constexpr bool isText = std::is_same_v<T, SharedText>;
    if (cell.kind == Kind::Null && isText != column.nullIsZero) {
        return true;  // which the new event has there
    }
    if constexpr (isText) {
        if (cell.kind == Kind::Text) {
            takeText(to, column, cell.text);
            return true;
        }
    } else if constexpr (std::is_same_v<T, bool>) {
        if (cell.kind == Kind::Flag) {
            to = cell.flag;
            return true;
        }
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        if (cell.kind == Kind::Whole) {
            to = cell.whole;
            return true;
        }
    } else if constexpr (std::is_same_v<T, DateTime>) {
        if (cell.kind == Kind::Date) {
            to = cell.date;
            return true;
        }
    }
    return false;
}

// What others may have, too, is looked up; the rest waits for `setOwnTexts`. So does what is seen
// for the first time, which then serves those that come after it.
void RowReader::takeText(SharedText& to, Column& column, std::string_view text) {
    constexpr std::size_t kLongest = 512;  // a long text would be kept by who shares a short one
    if (text.empty()) {
        return;
    }
    if (text.size() > kLongest) {
        to = text;
        return;
    }
    if (column.latest != nullptr && *column.latest == text) {
        to = *column.latest;
        return;
    }
    const TextPool::Answer pooled = column.pooled ? pool_.ask(text) : TextPool::Answer();
    if (pooled.known != nullptr) {
        column.latest = pooled.known;
        to = *pooled.known;
        return;
    }
    settings_.push_back({&to, text});
    if (pooled.keep) {
        remembered_.push_back({&to, pooled});
    }
}

void RowReader::setOwnTexts() {
    SharedText::setTogether(settings_);
    for (const Remembered& text : remembered_) {
        pool_.keep(text.pooled, *text.to);
    }
}

void RowReader::fill(calEvent& event, const sql::RowStream& row) {
    settings_.clear();
    remembered_.clear();
    row.readAll(cells_);
    for (Column& column : columns_) {
        const auto takeCell = [&](auto member) {
            return take(event.*member, column, cells_[column.field]);
        };
        if (!std::visit(takeCell, column.property->member)) {
            set(event, column, row.value(column.field));
        }
    }
    setOwnTexts();
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

std::shared_ptr<const RecurrenceText> RowReader::textOf(const SharedText& recurrence) const {
    const char* const block = recurrence.view().data();
    Series& known = series_[std::hash<const void*>()(block) / sizeof(void*) % series_.size()];
    if (!known.text || !known.recurrence.sharesWith(recurrence)) {
        auto text = std::make_shared<RecurrenceText>(RecurrenceText::ofColumn(recurrence));
        text->shareRRULE(pool_.of(text->RRULE()));
        known = {recurrence, std::move(text)};
    }
    return known.text;
}

void RowReader::finish(calEvent& event) const {
    toWholeSeconds(event);
    if (!event.recurrence.empty()) {
        attempt([&] { event.LoadRecurrence(local_, *textOf(event.recurrence)); });
        event.RecurrenceState = kMaster;
    }
    if (event.RecurrenceState == kMaster) {
        clearExceptionFields(event);
    }
    if (event.Subject.size() <= kSubjectUnits) {
        return;
    }
    const std::string_view subject = text::leftUtf16(event.Subject, kSubjectUnits);
    if (subject.size() < event.Subject.size()) {
        event.Subject = subject;
    }
}

}  // namespace vl
