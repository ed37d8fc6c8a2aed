// A reminders database as the host writes it.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>

#include "db/jet/Database.h"
#include "db/jet/Transaction.h"
#include "model/calEvent.h"

namespace vl::test {

/// Writes through an own opening of the file, which is closed again after each call, so that the
/// program sees a file that somebody else has written. Every method throws `Error`.
class EventFile {
public:
    /// Makes the file, with the table `Reminders` and the indexes that a host gives it, or none.
    explicit EventFile(std::string path, bool indexed = true);

    const std::string& path() const noexcept { return path_; }

    /// Adds the events' rows, in one transaction, or writes over those that are there, but for the
    /// columns that are the program's: next reminder, dismissed, hidden. Dates that are none are
    /// null.
    void put(std::span<const std::shared_ptr<calEvent>> events);
    void put(const calEvent& event);
    /// Columns of one row.
    using Values = std::vector<std::pair<std::string, Variant>>;
    void change(const std::string& GUID, const Values& values);
    /// One column of a row; none when the row is not there.
    std::optional<Variant> value(const std::string& GUID, std::string_view column);
    /// The row itself goes. It may be gone already.
    void remove(const std::string& GUID);
    bool has(const std::string& GUID) const { return rows_.contains(GUID); }

private:
    template <class Step>
    void write(Step&& step);
    std::optional<jet::RowId> find(const jet::Table& table, const std::string& GUID);

    std::string path_;
    std::unordered_map<std::string, jet::RowId> rows_;
};

}  // namespace vl::test
