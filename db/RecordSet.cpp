#include "db/RecordSet.h"

#include <algorithm>
#include <array>
#include <utility>

#include "FieldValue.h"
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

std::size_t sizeOf(const sql::Field& field) noexcept {
    constexpr std::size_t kUnit = 2;  // bytes of a UTF-16 unit
    if (field.type == ColumnType::Text) {
        return field.length / kUnit;
    }
    return field.type == ColumnType::Binary ? field.length : 0;
}

}  // namespace

RecordSet::Field RecordSet::fieldOf(sql::Field field) {
    return {std::move(field.name), codeOf(field.type), sizeOf(field)};
}

RecordSet::RecordSet(sql::Result result) : open_(true), rows_(std::move(result.rows)) {
    for (sql::Field& field : result.fields) {
        fields_.push_back(fieldOf(std::move(field)));
    }
}

void RecordSet::Close() noexcept {
    open_ = false;
    markSaved();
    fields_.clear();
    rows_.clear();
    current_ = 0;
}

void RecordSet::MoveFirst() {
    CancelUpdate();
    current_ = 0;
}

void RecordSet::MoveNext() {
    CancelUpdate();
    if (!EOF_()) {
        ++current_;
    }
}

void RecordSet::setAbsolutePosition(std::size_t number) {
    if (number < 1 || number > rows_.size()) {
        throw Error(ErrNo::NotFound, "record set: no row " + std::to_string(number) + " of " +
                                         std::to_string(rows_.size()));
    }
    CancelUpdate();
    current_ = number - 1;
}

std::int64_t RecordSet::AbsolutePosition() const noexcept {
    if (rows_.empty()) {
        return kPositionUnknown;
    }
    return EOF_() ? kPositionEnd : static_cast<std::int64_t>(current_) + 1;
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

const Variant& RecordSet::value(std::string_view field) const { return value(placeOf(field)); }

std::size_t RecordSet::placeOf(std::string_view field) const {
    const auto hit = std::find_if(fields_.begin(), fields_.end(), [field](const Field& f) {
        return text::equalsNoCase(f.name, field);
    });
    if (hit == fields_.end()) {
        throw Error(ErrNo::NotFound, "record set: no field " + std::string(field));
    }
    return static_cast<std::size_t>(hit - fields_.begin());
}

void RecordSet::AddNew() {
    CancelUpdate();
    rows_.emplace_back(fields_.size(), Variant(Null{}));
    current_ = rows_.size() - 1;
    new_ = true;
}

void RecordSet::setValue(std::size_t field, const Variant& value) {
    const Variant& held = this->value(field);
    Variant converted = fieldValue(fields_[field], value);
    if (converted == held) {
        return;
    }
    if (changed_.empty()) {
        before_ = rows_[current_];
    }
    changed_.insert(field);
    rows_[current_][field] = std::move(converted);
}

void RecordSet::setValue(std::string_view field, const Variant& value) {
    setValue(placeOf(field), value);
}

const Variant& RecordSet::valueBefore(std::size_t field) const {
    return changed_.empty() ? value(field) : before_.at(field);
}

void RecordSet::markSaved() noexcept {
    new_ = false;
    changed_.clear();
    before_.clear();
}

void RecordSet::CancelUpdate() {
    if (new_) {
        rows_.pop_back();
        current_ = rows_.size();
    } else if (!changed_.empty()) {
        rows_[current_] = std::move(before_);
    }
    markSaved();
}

}  // namespace vl
