#include "FullRead.h"

#include <algorithm>
#include <bit>
#include <optional>

#include "RowReader.h"
#include "base/Text.h"

namespace vl {

namespace {

constexpr unsigned kRowBits = 16;

std::uint64_t placeOf(jet::RowId id) { return std::uint64_t{id.page} << kRowBits | id.row; }

std::vector<RecordSet::Field> fieldsOf(const sql::RowStream& stream) {
    std::vector<RecordSet::Field> fields;
    for (const sql::Field& field : stream.fields()) {
        fields.push_back(RecordSet::fieldOf(field));
    }
    return fields;
}

// The fingerprint of a row that was not read as a whole.
constexpr std::uint64_t kNotKnown = 0;

// What acts set in an event: it may not be in the row yet, or not any more.
std::uint64_t stateOf(const calEvent& event) {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
    std::uint64_t hash = std::hash<std::string>()(event.status);
    for (const double part : {event.NextReminder.days(), event.Dismissed.days()}) {
        hash = (hash ^ std::bit_cast<std::uint64_t>(part)) * kOdd;
        hash ^= hash >> 32;
    }
    return hash ^ (event.Hidden ? 1U : 0U);
}

// Their number where there is none of that name.
std::size_t fieldNamed(const std::vector<sql::Field>& fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const sql::Field& field) {
        return text::equalsNoCase(field.name, name);
    });
    return static_cast<std::size_t>(found - fields.begin());
}

/// Whether a finished event may have something to come, told from five of its row's fields.
class FinishedIn {
public:
    explicit FinishedIn(const std::vector<sql::Field>& fields)
        : deleted_(fieldNamed(fields, "Deleted")),
          status_(fieldNamed(fields, "status")),
          start_(fieldNamed(fields, "StartDateTime")),
          recurrence_(fieldNamed(fields, "recurrence")),
          reminders_(fieldNamed(fields, "reminders")),
          known_(std::max({deleted_, status_, start_, recurrence_, reminders_}) < fields.size()) {}

    // A reminder after the start of a single event has a negative number of minutes.
    bool mayGoOn(const sql::RowStream& row, DateTime now) const {
        if (!known_ || row.value(deleted_).isNull() || row.value(deleted_).toInt32() != 0 ||
            !text::equalsNoCase(textOf(row.value(status_)), "AllDone")) {
            return false;
        }
        const Variant start = row.value(start_);
        const auto* date = start.get<DateTime>();
        return (date != nullptr && *date > now) || !textOf(row.value(recurrence_)).empty() ||
               textOf(row.value(reminders_)).find('-') != std::string::npos;
    }

private:
    static std::string textOf(const Variant& value) {
        return value.isNull() ? std::string() : value.toText();
    }

    std::size_t deleted_;
    std::size_t status_;
    std::size_t start_;
    std::size_t recurrence_;
    std::size_t reminders_;
    bool known_;
};

/// Which start of which series a row has taken over, told from three of its fields.
class ReplacedIn {
public:
    explicit ReplacedIn(const std::vector<sql::Field>& fields)
        : state_(fieldNamed(fields, "RecurrenceState")),
          master_(fieldNamed(fields, "recurringEventId")),
          start_(fieldNamed(fields, "RExceptionStartTimeOrig")),
          known_(std::max({state_, master_, start_}) < fields.size()) {}

    std::optional<FullRead::PassedOver> of(const sql::RowStream& row) const {
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
        return FullRead::PassedOver{master.toText(), *date};
    }

private:
    std::size_t state_;
    std::size_t master_;
    std::size_t start_;
    bool known_;
};

}  // namespace

std::shared_ptr<calEvent> stillValid(const std::shared_ptr<calEvent>& known,
                                     const std::shared_ptr<calEvent>& fresh) {
    if (!known->sameRow(*fresh)) {
        fresh->dLastReminder = known->dLastReminder;
        return fresh;
    }
    return known;
}

void FullRead::forgetPassedOver() {
    std::erase_if(rows_, [](const Row& row) { return !row.event; });
    stamp_ = 0;
}

// Null where it stays finished.
std::shared_ptr<calEvent> FullRead::openAgain(
    const std::function<std::shared_ptr<calEvent>()>& make) {
    auto event = make();
    if (!isOpenAgain_(*event)) {
        return nullptr;
    }
    event->status.clear();
    takenBack_.push_back(event->GUID);
    return event;
}

// Both the rows that come and those that are known are in the order of their places.
FullRead::Rows FullRead::stream(sql::RowStream& stream, const GenCollection& before,
                                const Make& make) {
    const TimeZone local = TimeZone::local();
    const RowReader reader(fieldsOf(stream), local, pool_);
    const auto fill = [&](calEvent& event) { reader.fill(event, stream); };
    const ReplacedIn exceptions(stream.fields());
    const FinishedIn finished(stream.fields());
    Rows rows;
    rows.reserve(rows_.size());
    auto known = rows_.begin();
    while (stream.next()) {
        Row row{placeOf(stream.id()), stream.fingerprint(), 0, nullptr};
        while (known != rows_.end() && known->place < row.place) {
            ++known;
        }
        const bool isKnown = known != rows_.end() && known->place == row.place &&
                             known->fingerprint == row.fingerprint;
        if (isKnown && (!known->event || known->state == stateOf(*known->event))) {
            row.event = known->event;
            row.state = known->state;
        } else if (stream.matches()) {
            row.event = make(fill);
            if (const auto held = objectAt<calEvent>(before, row.event->GUID)) {
                row.event = stillValid(held, row.event);
            }
            row.state = stateOf(*row.event);
        } else {
            if (auto replaced = exceptions.of(stream)) {
                passedOver_.push_back(std::move(*replaced));
            }
            if (isOpenAgain_ && finished.mayGoOn(stream, now_)) {
                row.event = openAgain([&] { return make(fill); });
                row.state = row.event ? stateOf(*row.event) : 0;
            }
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::shared_ptr<calEvent> FullRead::eventAt(std::uint64_t place) const {
    const auto known =
        std::lower_bound(rows_.begin(), rows_.end(), place,
                         [](const Row& row, std::uint64_t wanted) { return row.place < wanted; });
    return known != rows_.end() && known->place == place ? known->event : nullptr;
}

// An event that has been read as a whole and not changed since is better than what is left of it.
FullRead::Row FullRead::damagedRow(sql::RowStream& stream, const RowReader& reader,
                                   const GenCollection& before, const Make& make) {
    Row row{placeOf(stream.id()), kNotKnown, 0, nullptr};
    bool matches = false;
    RowReader::Lost lost;
    if (!isReadable([&] { matches = stream.matches(); })) {
        lost = {true, true};
    } else if (matches) {
        row.event = make([&](calEvent& event) { lost = reader.fillReadable(event, stream); });
    }
    if (lost.any) {
        ++damage_.rows;
    }
    if (lost.GUID) {
        row.event = eventAt(row.place);
    } else if (row.event) {
        const std::string key = text::foldCase(row.event->GUID);
        const auto held = objectAt<calEvent>(before, row.event->GUID);
        const bool asWhole = lost.any && held && held->Modified == row.event->Modified &&
                             !damage_.inPart.contains(key);
        if (held) {
            row.event = asWhole ? held : stillValid(held, row.event);
        }
        if (lost.any && !asWhole) {
            damage_.inPart.insert(key);
        } else if (!lost.any) {
            damage_.inPart.erase(key);
        }
    }
    if (row.event) {
        row.state = stateOf(*row.event);
    }
    return row;
}

FullRead::Rows FullRead::streamDamaged(sql::RowStream& stream, const GenCollection& before,
                                       const Make& make) {
    const TimeZone local = TimeZone::local();
    const RowReader reader(fieldsOf(stream), local, pool_);
    const ReplacedIn exceptions(stream.fields());
    Rows rows;
    for (bool more = true; more;) {
        if (isReadable([&] { more = stream.next(); })) {
            if (more) {
                rows.push_back(damagedRow(stream, reader, before, make));
                isReadable([&] {
                    if (auto replaced = exceptions.of(stream); replaced && !rows.back().event) {
                        passedOver_.push_back(std::move(*replaced));
                    }
                });
            }
            continue;
        }
        const auto lost = stream.passOver();
        if (!lost) {
            throw Error(ErrNo::Corrupt, "the rows cannot be passed over");
        }
        ++damage_.rows;
        std::copy_if(rows_.begin(), rows_.end(), std::back_inserter(rows), [&](const Row& row) {
            return lost->row ? row.place == placeOf({lost->page, *lost->row})
                             : row.place >> kRowBits == lost->page;
        });
    }
    return rows;
}

// Not where somebody writes: what looks damaged then is only torn.
bool FullRead::readDamaged(DBRemindUtils& db, const GenCollection& before, const Make& make,
                           Rows& rows) {
    const DBRemindUtils::Look look = db.TakeLook();
    const Damage known = std::exchange(damage_, Damage());
    const bool isRead = db.ForRows(statement_, [&](sql::RowStream& rowStream) {
        damage_ = Damage();
        damage_.inPart = known.inPart;  // which of those that are held are no whole ones
        rows = streamDamaged(rowStream, before, make);
    });
    return isRead && look.same(db.TakeLook());
}

// What was held, with the events that are different now; null when others were held or there are
// others now.
std::shared_ptr<GenCollection> FullRead::changed(const Rows& rows,
                                                 const GenCollection& before) const {
    if (before.Stamp() != stamp_ || stamp_ == 0 || rows.size() != rows_.size()) {
        return nullptr;
    }
    std::vector<const Row*> different;
    std::size_t held = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& now = rows[i].event;
        const auto& was = rows_[i].event;
        if (rows[i].place != rows_[i].place || (now == nullptr) != (was == nullptr) ||
            (now && now->GUID != was->GUID)) {
            return nullptr;
        }
        held += now ? 1U : 0U;
        if (now != was) {
            different.push_back(&rows[i]);
        }
    }
    if (held != before.Count()) {
        return nullptr;
    }
    auto collection = std::make_shared<GenCollection>(before);
    for (const Row* row : different) {
        collection->UpdateItem(row->event->GUID, Variant(row->event));
    }
    return collection;
}

std::shared_ptr<GenCollection> FullRead::collected(const Rows& rows) {
    auto collection = std::make_shared<GenCollection>();
    for (const Row& row : rows) {
        if (row.event) {
            const std::size_t count = collection->Count();
            collection->Add(Variant(row.event), row.event->GUID);
            if (collection->Count() == count) {
                collection->Remove(row.event->GUID);
                collection->Add(Variant(row.event), row.event->GUID);
            }
        }
    }
    return collection;
}

std::shared_ptr<GenCollection> FullRead::read(DBRemindUtils& db, const std::string& statement,
                                              const GenCollection& before, DateTime now,
                                              const Make& make) {
    if (statement != statement_) {
        rows_.clear();
        statement_ = statement;
    }
    now_ = now;
    takenBack_.clear();
    Rows rows;
    const bool isRead = db.ForRows(
        statement, [&](sql::RowStream& rowStream) { rows = stream(rowStream, before, make); });
    if (isRead) {
        damage_ = Damage();
    } else if (db.LastError() != ErrNo::Corrupt || !readDamaged(db, before, make, rows)) {
        return nullptr;
    }
    auto collection = changed(rows, before);
    if (!collection) {
        collection = collected(rows);
    }
    rows_ = std::move(rows);
    stamp_ = collection->Stamp();
    return collection;
}

}  // namespace vl
