// What a row still says of which a statement's condition is not true.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "FullRead.h"
#include "db/sql/RowStream.h"

namespace vl {

/// Whether a finished event may have something to come, told from five of its row's fields.
class FinishedIn {
public:
    explicit FinishedIn(const std::vector<sql::Field>& fields);

    /// Throws `Error` as `RowStream::value`.
    bool mayGoOn(const sql::RowStream& row, DateTime now) const;

private:
    std::size_t deleted_;
    std::size_t status_;
    std::size_t start_;
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
