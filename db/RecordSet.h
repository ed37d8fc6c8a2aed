// The rows of a query, walked one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/Variant.h"
#include "db/sql/Sql.h"

namespace vl {

/// What a cursor type was asked for does not matter here: every record set is a copy of its rows,
/// which later writes do not change. One that was never opened, or is closed, holds no rows and no
/// fields.
class RecordSet {
public:
    /// `type` is the data access library's code: 2 small, 3 long, 4 single, 5 double, 6 currency,
    /// 7 date, 11 yes/no, 17 byte, 72 GUID, 128 binary, 131 numeric, 202 text, 203 memo, 205 OLE.
    struct Field {
        std::string name;
        int type = 0;
        std::size_t size = 0;  ///< most UTF-16 units of a text, most bytes of a binary; 0: no limit
    };

    /// As a field of the database's own stands in a record set.
    static Field fieldOf(sql::Field field);

    static constexpr int kStateClosed = 0;
    static constexpr int kStateOpen = 1;

    RecordSet() = default;
    /// Open, on the first row.
    explicit RecordSet(sql::Result result);

    int State() const noexcept { return open_ ? kStateOpen : kStateClosed; }
    bool isOpen() const noexcept { return open_; }
    void Close() noexcept;

    // The underscores keep the names apart from the C library's macro EOF.

    /// Before the first row: nothing moves there, so only a record set without rows stands there.
    bool BOF_() const noexcept { return rows_.empty(); }
    /// Behind the last row, from the beginning when there is none.
    bool EOF_() const noexcept { return current_ >= rows_.size(); }
    void MoveFirst();
    /// At the end nothing happens.
    void MoveNext();
    /// Moves to the row of that number, from 1. Throws `Error` (`ErrNo::NotFound`) when there is no
    /// such row, and stays.
    void setAbsolutePosition(std::size_t number);
    /// The number of the current row, from 1; behind the last one `kPositionEnd`, without rows
    /// `kPositionUnknown`.
    std::int64_t AbsolutePosition() const noexcept;
    static constexpr std::int64_t kPositionUnknown = -1;
    static constexpr std::int64_t kPositionEnd = -3;
    /// All rows, wherever the walk is.
    std::size_t RecordCount() const noexcept { return rows_.size(); }

    /// In the order of the statement; `*` gives the table's.
    const std::vector<Field>& fields() const noexcept { return fields_; }

    /// A field of the current row by its place (from 0) or its name, without regard to case. The
    /// reference lasts until the record set is closed.
    /// Throws `Error` (`ErrNo::NotFound`) when there is no current row or no such field.
    const Variant& value(std::size_t field) const;
    const Variant& value(std::string_view field) const;

    // What is changed here is in this copy only, until `DBRemindUtils::UpdateRS` saves it.

    /// Puts a new row behind the last one, all fields null, and makes it the current one.
    void AddNew();
    bool isNew() const noexcept { return new_; }

    /// Changes a field of the current row, converted to the field's type; null and `Empty` make it
    /// null. Throws `Error`: `ErrNo::NotFound` as `value`, `ErrNo::TypeMismatch` or
    /// `ErrNo::Overflow` for what the field cannot hold, and leaves it as it was.
    void setValue(std::size_t field, const Variant& value);
    void setValue(std::string_view field, const Variant& value);

    /// The fields of the current row that were changed since it was read or saved, ascending.
    const std::set<std::size_t>& changed() const noexcept { return changed_; }
    /// The value that the field had before.
    const Variant& valueBefore(std::size_t field) const;

    /// The current row has been saved as it is.
    void markSaved() noexcept;
    /// Takes the changes of the current row back; a new one goes. So does moving to another row.
    void CancelUpdate();

    /// Where that field stands, from 0. Throws `Error` (`ErrNo::NotFound`).
    std::size_t placeOf(std::string_view field) const;

private:
    bool open_ = false;
    std::vector<Field> fields_;
    std::vector<std::vector<Variant>> rows_;
    std::size_t current_ = 0;

    bool new_ = false;
    std::set<std::size_t> changed_;
    std::vector<Variant> before_;  // the current row as it was, while something is changed
};

}  // namespace vl
