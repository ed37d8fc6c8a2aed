// A full read of the table that decodes only rows it does not know yet.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TextPool.h"
#include "app/TimeZone.h"
#include "db/DBRemindUtils.h"
#include "events/Damage.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

class RowReader;

/// Remembers the rows of the last read by place and fingerprint, and the event that each of them
/// gave. Costs 40 bytes a row.
class FullRead {
public:
    using Fill = std::function<void(calEvent&)>;
    /// A new event, filled by what it is given.
    using Make = std::function<std::shared_ptr<calEvent>(const Fill&)>;

    /// Reads all rows of `statement` into a new collection, by GUID, in the order of the rows; of
    /// rows with the same GUID the last one counts. The event of a row that is as it was is the
    /// same object. `before` is what the set held. Null when the rows could not be read to their
    /// end.
    ///
    /// Where the table is damaged, what can be read of it counts: a row without the values that
    /// cannot be read, and of a row that cannot be read at all the event that it gave before.
    std::shared_ptr<GenCollection> read(DBRemindUtils& db, const std::string& statement,
                                        const GenCollection& before, DateTime now,
                                        const Make& make);

    /// An exception to the series `master` (its id) that the condition of a statement passed over:
    /// it is finished or deleted, and `start` is no occurrence of the series all the same.
    struct PassedOver {
        std::string master;
        DateTime start;
    };
    /// Those that the reads have met since the last call.
    std::vector<PassedOver> takePassedOver() { return std::exchange(passedOver_, {}); }

    /// Told of each event with the status "AllDone" that the condition passes over and that may
    /// have a reminder ahead of `now`: true takes it in all the same, without that status. Events
    /// with nothing to come are not decoded.
    using IsOpenAgain = std::function<bool(const calEvent&)>;
    void takeBack(IsOpenAgain isOpenAgain) { isOpenAgain_ = std::move(isOpenAgain); }
    /// The `GUID`s of those that were taken in since the last call.
    std::vector<std::string> takeTakenBack() { return std::exchange(takenBack_, {}); }
    /// The next read looks at those again that the condition passed over.
    void forgetPassedOver();

    /// What the last read could not read.
    const Damage& damage() const noexcept { return damage_; }

    /// The next read decodes every row.
    void forget() { rows_.clear(); }

    /// Where the events' equal texts meet.
    TextPool& pool() noexcept { return pool_; }

private:
    struct Row {
        std::uint64_t place = 0;
        std::uint64_t fingerprint = 0;
        std::uint64_t state = 0;          // of the event, as the row gave it
        std::shared_ptr<calEvent> event;  // null: the condition is not true of the row
    };
    using Rows = std::vector<Row>;

    Rows stream(sql::RowStream& stream, const GenCollection& before, const Make& make);
    Rows streamDamaged(sql::RowStream& stream, const GenCollection& before, const Make& make);
    Row damagedRow(sql::RowStream& stream, const RowReader& reader, const GenCollection& before,
                   const Make& make);
    bool readDamaged(DBRemindUtils& db, const GenCollection& before, const Make& make, Rows& rows);
    std::shared_ptr<calEvent> eventAt(std::uint64_t place) const;
    std::shared_ptr<calEvent> openAgain(const std::function<std::shared_ptr<calEvent>()>& make);
    std::shared_ptr<GenCollection> changed(const Rows& rows, const GenCollection& before) const;
    static std::shared_ptr<GenCollection> collected(const Rows& rows);

    TextPool pool_;
    std::string statement_;
    Rows rows_;
    IsOpenAgain isOpenAgain_;
    DateTime now_;  // of the read
    std::vector<PassedOver> passedOver_;
    std::vector<std::string> takenBack_;
    Damage damage_;
    std::uint64_t stamp_ = 0;  // of the collection that they filled
};

/// Of an event that was read again the object that is known, as long as its row says the same.
std::shared_ptr<calEvent> stillValid(const std::shared_ptr<calEvent>& known,
                                     const std::shared_ptr<calEvent>& fresh);

}  // namespace vl
