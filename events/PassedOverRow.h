// What a row still says of which a statement's condition is not true.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

#include "FullRead.h"
#include "db/sql/RowStream.h"

namespace vl {

/// What some of a finished event's fields tell of it. Methods throw `Error` as `RowStream::value`.
class FinishedIn {
public:
    explicit FinishedIn(const std::vector<sql::Field>& fields);

    /// Whether it is one, and not deleted.
    bool is(const sql::RowStream& row) const;
    /// Whether it may have a reminder later than `from`.
    bool mayGoOn(const sql::RowStream& row, DateTime from) const;
    /// Whether it is among these, by `guidHash`.
    bool isOneOf(const std::unordered_set<std::uint64_t>& asked, const sql::RowStream& row) const;

private:
    std::size_t guid_;
    std::size_t deleted_;
    std::size_t status_;
    std::size_t start_;
    std::size_t end_;
    std::size_t recurrence_;
    std::size_t reminders_;
    bool known_;
};

/// Which start of which series a row has taken over, told from four of its fields.
class ReplacedIn {
public:
    explicit ReplacedIn(const std::vector<sql::Field>& fields);

    /// Throws `Error` as `RowStream::value`.
    std::optional<FullRead::PassedOver> of(const sql::RowStream& row) const;

private:
    std::size_t state_;
    std::size_t master_;
    std::size_t start_;
    std::size_t base_;
    bool known_;
};

}  // namespace vl
