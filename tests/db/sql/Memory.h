// A table in memory, so that statements run without a file.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Parser.h"
#include "RowSource.h"
#include "SelectRows.h"
#include "UpdateRows.h"

namespace vl::sql::test {

using Row = std::vector<Variant>;

inline jet::Column column(const char* name, jet::ColumnType type, std::uint16_t length = 0) {
    jet::Column c;
    c.name = name;
    c.type = type;
    c.length = length;
    return c;
}

class MemoryRows final : public RowSource {
public:
    explicit MemoryRows(const std::vector<Row>& rows) : rows_(rows) {}
    bool next() override { return ++current_ <= rows_.size(); }
    Variant value(std::size_t column) const override {
        ++decoded;
        return rows_.at(current_ - 1).at(column);
    }
    std::size_t current() const { return current_ - 1; }

    mutable int decoded = 0;  // how often a value was asked for

private:
    const std::vector<Row>& rows_;
    std::size_t current_ = 0;
};

struct MemoryTable {
    TableShape shape;
    std::vector<Row> rows;

    Result select(std::string_view text) const {
        Statement statement = parse(text);
        MemoryRows source(rows);
        return sql::select(std::get<Select>(statement), shape, source);
    }

    /// Row number and new values of each row that would be written.
    std::vector<std::pair<std::size_t, Changes>> changes(std::string_view text) const {
        Statement statement = parse(text);
        MemoryRows source(rows);
        std::vector<std::pair<std::size_t, Changes>> all;
        findChanges(std::get<Update>(statement), shape, source,
                    [&](Changes found) { all.emplace_back(source.current(), std::move(found)); });
        return all;
    }
};

/// The number and text of the error that `step` throws; number `None` when it throws none.
struct Caught {
    ErrNo number = ErrNo::None;
    std::string text;
};

template <class Step>
Caught caught(Step&& step) {
    try {
        step();
    } catch (const Error& e) {
        return {e.number(), e.what()};
    }
    return {};
}

}  // namespace vl::sql::test
