// Copies rows of a record set into events.
#pragma once

#include <vector>

#include "app/TimeZone.h"
#include "db/RecordSet.h"
#include "model/calEvent.h"

namespace vl {

/// Knows which column of one record set goes into which property, so that each name is looked up
/// once however many rows there are. `rows` must outlive it.
class RowReader {
public:
    /// `local` is the zone of the rows' times.
    RowReader(const RecordSet& rows, const TimeZone& local);

    /// Copies the current row: a value that the property refuses leaves it as it was. A repeating
    /// event's recurrence is loaded.
    void fill(calEvent& event) const;

private:
    struct Column {
        std::size_t field;
        const EventProperty* property;
        bool nullIsZero;  // else null reads as an empty text
    };

    const RecordSet& rows_;
    const TimeZone& local_;
    std::vector<Column> columns_;
};

}  // namespace vl
