// Copies rows of a record set into events.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "TextPool.h"
#include "app/TimeZone.h"
#include "db/RecordSet.h"
#include "db/jet/RowCells.h"
#include "db/sql/RowStream.h"
#include "model/RecurrenceText.h"
#include "model/calEvent.h"

namespace vl {

/// Knows which column goes into which property, so that each name is looked up once however many
/// rows there are.
class RowReader {
public:
    /// Gives the field at a place, from 0, of the current row.
    using ValueOf = std::function<Variant(std::size_t)>;

    /// `local`, the zone of the rows' times, and `pool`, where the events' equal texts meet, must
    /// outlive the reader.
    RowReader(std::span<const RecordSet::Field> fields, const TimeZone& local, TextPool& pool);

    /// Copies a row: a value that the property refuses leaves it as it was. A repeating event's
    /// recurrence is loaded.
    void fill(calEvent& event, const ValueOf& valueOf) const;
    void fill(calEvent& event, const RecordSet& row) const;
    /// The same without a `Variant` for each field; the event's own texts are one allocation. The
    /// event is a new one: what is nothing in the row is not looked at.
    void fill(calEvent& event, const sql::RowStream& row);

    /// The columns that could not be read.
    struct Lost {
        bool any = false;
        bool GUID = false;
    };
    /// The same of a row whose values may be damaged: the properties of these stay as they are.
    Lost fillReadable(calEvent& event, const sql::RowStream& row) const;

private:
    struct Column {
        std::size_t field;
        const EventProperty* property;
        bool nullIsZero;  // else null reads as an empty text
        bool pooled;      // other events may have the same text
        // What the last row had, or an earlier one, in the pool; null: nothing yet.
        const SharedText* latest = nullptr;
    };

    // A text of the row that is read which the pool is to know as soon as it is made.
    struct Remembered {
        SharedText* to;
        TextPool::Answer pooled;
    };

    void set(calEvent& event, const Column& column, const Variant& value) const;
    template <class T>
    bool take(T& to, Column& column, const jet::Cell& cell);
    void takeText(SharedText& to, Column& column, std::string_view text);
    void setOwnTexts();
    void finish(calEvent& event) const;
    std::shared_ptr<const RecurrenceText> textOf(const SharedText& recurrence) const;

    // Series that say it with the same block of text.
    struct Series {
        SharedText recurrence;
        std::shared_ptr<const RecurrenceText> text;
    };

    const TimeZone& local_;
    TextPool& pool_;
    mutable std::array<Series, 64> series_;  // read lately, by where the text stands
    std::vector<Column> columns_;
    jet::RowCells cells_;                        // of the row that is read
    std::vector<SharedText::Setting> settings_;  // its own texts
    std::vector<Remembered> remembered_;         // some of these
};

}  // namespace vl
