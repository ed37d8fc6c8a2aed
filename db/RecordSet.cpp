#include "db/RecordSet.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

using jet::ColumnType;

int codeOf(ColumnType type) noexcept {
    static constexpr std::array<std::pair<ColumnType, int>, 16> kCodes = {{
        {ColumnType::Boolean, 11},
        {ColumnType::Byte, 17},
        {ColumnType::Integer, 2},
        {ColumnType::Long, 3},
        {ColumnType::Money, 6},
        {ColumnType::Single, 4},
        {ColumnType::Double, 5},
        {ColumnType::Date, 7},
        {ColumnType::Binary, 128},
        {ColumnType::Text, 202},
        {ColumnType::Ole, 205},
        {ColumnType::Memo, 203},
        {ColumnType::Guid, 72},
        {ColumnType::Numeric, 131},
        {ColumnType::Block, 128},
        {ColumnType::Complex, 3},  // a reference to rows elsewhere, kept as a long
    }};
    const auto* hit = std::find_if(kCodes.begin(), kCodes.end(),
                                   [type](const auto& entry) { return entry.first == type; });
    return hit == kCodes.end() ? 0 : hit->second;
}

}  // namespace

RecordSet::Field RecordSet::fieldOf(sql::Field field) {
    return {std::move(field.name), codeOf(field.type)};
}

RecordSet::RecordSet(sql::Result result) : open_(true), rows_(std::move(result.rows)) {
    for (sql::Field& field : result.fields) {
        fields_.push_back(fieldOf(std::move(field)));
    }
}

void RecordSet::Close() noexcept {
    open_ = false;
    fields_.clear();
    rows_.clear();
    current_ = 0;
}

void RecordSet::MoveNext() noexcept {
    if (!EOF_()) {
        ++current_;
    }
}

const Variant& RecordSet::value(std::size_t field) const {
    if (EOF_()) {
        throw Error(ErrNo::NotFound, "record set: no current row");
    }
    if (field >= fields_.size()) {
        throw Error(ErrNo::NotFound, "record set: no field " + std::to_string(field) + " of " +
                                         std::to_string(fields_.size()));
    }
    return rows_[current_][field];
}

const Variant& RecordSet::value(std::string_view field) const {
    const auto hit = std::find_if(fields_.begin(), fields_.end(), [field](const Field& f) {
        return text::equalsNoCase(f.name, field);
    });
    if (hit == fields_.end()) {
        throw Error(ErrNo::NotFound, "record set: no field " + std::string(field));
    }
    return value(static_cast<std::size_t>(hit - fields_.begin()));
}

}  // namespace vl
