#include "PassedOverRow.h"

#include <algorithm>
#include <string>

#include "base/Text.h"
#include "events/Ledger.h"

namespace vl {

namespace {

// Their number where there is none of that name.
std::size_t fieldNamed(const std::vector<sql::Field>& fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const sql::Field& field) {
        return text::equalsNoCase(field.name, name);
    });
    return static_cast<std::size_t>(found - fields.begin());
}

std::string textOf(const Variant& value) { return value.isNull() ? std::string() : value.toText(); }

}  // namespace

FinishedIn::FinishedIn(const std::vector<sql::Field>& fields)
    : guid_(fieldNamed(fields, "GUID")),
      deleted_(fieldNamed(fields, "Deleted")),
      status_(fieldNamed(fields, "status")),
      start_(fieldNamed(fields, "StartDateTime")),
      end_(fieldNamed(fields, "EndDateTime")),
      recurrence_(fieldNamed(fields, "recurrence")),
      reminders_(fieldNamed(fields, "reminders")),
      known_(std::max({guid_, deleted_, status_, start_, end_, recurrence_, reminders_}) <
             fields.size()) {}

bool FinishedIn::is(const sql::RowStream& row) const {
    return known_ && !row.value(deleted_).isNull() && row.value(deleted_).toInt32() == 0 &&
           text::equalsNoCase(textOf(row.value(status_)), "AllDone");
}

bool FinishedIn::isOneOf(const std::unordered_set<std::uint64_t>& asked,
                         const sql::RowStream& row) const {
    return !asked.empty() && asked.contains(guidHash(textOf(row.value(guid_))));
}

// A reminder after the start of a single event has a negative number of minutes. What is of today,
// or goes on, is reminded of also when the host writes it after the time of its reminder.
bool FinishedIn::mayGoOn(const sql::RowStream& row, DateTime from) const {
    const auto isFrom = [&](const Variant& value) {
        const auto* date = value.get<DateTime>();
        return date != nullptr && *date >= from.date();
    };
    return isFrom(row.value(start_)) || isFrom(row.value(end_)) ||
           !textOf(row.value(recurrence_)).empty() ||
           textOf(row.value(reminders_)).find('-') != std::string::npos;
}

ReplacedIn::ReplacedIn(const std::vector<sql::Field>& fields)
    : state_(fieldNamed(fields, "RecurrenceState")),
      master_(fieldNamed(fields, "recurringEventId")),
      start_(fieldNamed(fields, "RExceptionStartTimeOrig")),
      base_(fieldNamed(fields, "VLBase")),
      known_(std::max({state_, master_, start_}) < fields.size()) {}

std::optional<FullRead::PassedOver> ReplacedIn::of(const sql::RowStream& row) const {
    constexpr int kException = 3;
    if (!known_ || row.value(state_) != Variant(kException)) {
        return std::nullopt;
    }
    const Variant master = row.value(master_);
    const Variant start = row.value(start_);
    const auto* date = start.get<DateTime>();
    if (date == nullptr || date->isZero() || master.isNull() || master.toText().empty()) {
        return std::nullopt;
    }
    const bool hasBase = base_ < row.fields().size();
    return FullRead::PassedOver{{master.toText(), hasBase ? textOf(row.value(base_)) : ""}, *date};
}

}  // namespace vl
