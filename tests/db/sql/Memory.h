// A table in memory, so that statements run without a file.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ChangeRows.h"
#include "Parser.h"
#include "SelectRows.h"

namespace vl::sql::test {

using Row = std::vector<Variant>;

inline jet::Column column(const char* name, jet::ColumnType type, std::uint16_t length = 0) {
    jet::Column c;
    c.name = name;
    c.type = type;
    c.length = length;
    return c;
}

/// Rows keep their number for life: a removed one leaves a gap.
using Rows = std::vector<std::optional<Row>>;

class MemoryRows final : public RowSource {
public:
    MemoryRows(const Rows& rows, std::vector<jet::RowId> ids, int* decoded = nullptr)
        : rows_(rows), ids_(std::move(ids)), decoded_(decoded) {}
    bool next() override { return ++current_ <= ids_.size(); }
    Variant value(std::size_t column) const override {
        if (decoded_ != nullptr) {
            ++*decoded_;
        }
        return rows_.at(id().row).value().at(column);
    }
    jet::RowId id() const override { return ids_.at(current_ - 1); }

private:
    const Rows& rows_;
    std::vector<jet::RowId> ids_;
    int* decoded_;
    std::size_t current_ = 0;
};

class MemoryTable final : public StoredTable {
public:
    MemoryTable(TableShape shape, const std::vector<Row>& rows)
        : shape_(std::move(shape)), rows_(rows.begin(), rows.end()) {}

    const TableShape& shape() const override { return shape_; }
    std::unique_ptr<RowSource> scan() const override {
        std::vector<jet::RowId> ids;
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (rows_[i]) {
                ids.push_back({0, static_cast<std::uint16_t>(i)});
            }
        }
        return rows(std::move(ids));
    }
    std::unique_ptr<RowSource> rows(std::vector<jet::RowId> ids) const override {
        return std::make_unique<MemoryRows>(rows_, std::move(ids), &decoded);
    }
    std::vector<jet::RowId> find(const IndexRange&) const override {
        throw Error(ErrNo::Unsupported, "memory: has no indexes");
    }

    void insert(const Changes& values) override {
        Row row(shape_.columns.size(), Null{});
        for (const auto& [place, value] : values) {
            row.at(place) = value;
        }
        ++writes;
        rows_.emplace_back(std::move(row));
    }
    void update(jet::RowId id, const Changes& values) override {
        ++writes;
        for (const auto& [place, value] : values) {
            rows_.at(id.row).value().at(place) = value;
        }
    }
    void remove(jet::RowId id) override {
        ++writes;
        rows_.at(id.row).reset();
    }

    Result select(std::string_view text, std::span<const Parameter> parameters = {}) const {
        Statement statement = parse(text);
        return sql::select(std::get<Select>(statement), *this, parameters);
    }

    /// INSERT, UPDATE and DELETE; a query in it reads this table. Gives the number of rows.
    std::int64_t run(std::string_view text, std::span<const Parameter> parameters = {}) {
        Statement statement = parse(text);
        if (auto* insert = std::get_if<Insert>(&statement)) {
            Result found;
            if (insert->rows) {
                found = sql::select(*insert->rows, *this, parameters);
            }
            return insertRows(*insert, *this, std::move(found), parameters);
        }
        if (auto* update = std::get_if<Update>(&statement)) {
            return updateRows(*update, *this, parameters);
        }
        return deleteRows(std::get<Delete>(statement), *this, parameters);
    }

    std::vector<Row> content() const {
        std::vector<Row> content;
        for (const auto& row : rows_) {
            if (row) {
                content.push_back(*row);
            }
        }
        return content;
    }

    mutable int decoded = 0;  ///< how often a value was asked for
    int writes = 0;

private:
    TableShape shape_;
    Rows rows_;
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
