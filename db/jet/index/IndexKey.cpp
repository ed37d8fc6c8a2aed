#include "IndexKey.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cfloat>
#include <cmath>

#include "Bytes.h"
#include "Decimal.h"
#include "FixedValue.h"
#include "TableDefinition.h"
#include "TextKey.h"
#include "Value.h"
#include "base/ErrorState.h"

namespace vl::jet {

namespace {

constexpr std::byte kNull{0x00};
constexpr std::byte kValue{0x7F};
constexpr std::byte kTopBit{0x80};
constexpr std::size_t kSegment = 8;
constexpr unsigned kMoreFollows = 9;

void complement(std::span<std::byte> bytes) {
    for (std::byte& b : bytes) {
        b = ~b;
    }
}

/// The bytes from `from` to the end of what is being built.
std::span<std::byte> tail(KeyBytes& key, std::size_t from) { return std::span(key).subspan(from); }

template <class T>
void appendBigEndian(KeyBytes& key, T value) {
    for (std::size_t i = sizeof(T); i-- > 0;) {
        key.push_back(static_cast<std::byte>(value >> (8 * i)));
    }
}

// Stored least byte first; the top bit flipped puts negative numbers before the others.
void appendWhole(KeyBytes& key, const Column& column, const Variant& value) {
    std::array<std::byte, 8> field{};
    const std::size_t size = sizeOf(column.type);
    encodeFixed(column, value, std::span(field).first(size));
    std::reverse(field.begin(), field.begin() + static_cast<std::ptrdiff_t>(size));
    if (column.type != ColumnType::Byte) {
        field[0] ^= kTopBit;
    }
    key.insert(key.end(), field.begin(), field.begin() + static_cast<std::ptrdiff_t>(size));
}

// The sign decides, also that of -0: it sorts just before 0.
template <class T>
void appendFloat(KeyBytes& key, T bits) {
    constexpr T kSign = T{1} << (8 * sizeof(T) - 1);
    appendBigEndian(key, static_cast<T>((bits & kSign) != 0 ? ~bits : bits ^ kSign));
}

float single(const Variant& value) {
    const double number = value.toDouble();
    if (std::isfinite(number) && std::fabs(number) > static_cast<double>(FLT_MAX)) {
        throw Error(ErrNo::Overflow, value.toText() + " does not fit");
    }
    return static_cast<float>(number);
}

void appendNumeric(KeyBytes& key, const Column& column, const Variant& value, bool descending) {
    const Decimal number = parseDecimal(value.toText(), column.scale);
    const bool negative = number.negative && !number.isZero();
    key.push_back(negative ? std::byte{0x00} : std::byte{0xFF});
    const std::size_t digits = key.size();
    for (std::size_t i = number.words.size(); i-- > 0;) {
        appendBigEndian(key, number.words[i]);
    }
    // Descending columns of this type do not sort backwards: the engine's own habit, kept since
    // its entries must be found.
    if (negative != descending) {
        complement(tail(key, digits));
    }
}

// Segments of eight bytes, each followed by how many of them count; 9: all, and more follow.
void appendBinary(KeyBytes& key, ByteView bytes, bool descending) {
    while (!bytes.empty()) {
        const ByteView segment = bytes.first(std::min(bytes.size(), kSegment));
        bytes = bytes.subspan(segment.size());
        const std::size_t from = key.size();
        key.insert(key.end(), segment.begin(), segment.end());
        key.resize(from + kSegment);
        if (bytes.empty()) {
            key.push_back(static_cast<std::byte>(segment.size()));
        }
        if (descending) {
            complement(tail(key, from));
        }
        if (!bytes.empty()) {
            key.push_back(std::byte{kMoreFollows});
        }
    }
}

void appendText(KeyBytes& key, const Column& column, const Variant& value, bool descending) {
    if (column.sortOrder != kGeneralOrder) {
        throw Error(ErrNo::Unsupported,
                    "column \"" + column.name + "\" is sorted in the order of another language");
    }
    const std::size_t from = key.size();
    appendTextKey(key, value.toText());
    if (descending) {
        complement(tail(key, from));
        key.push_back(std::byte{0});
    }
}

Bytes bytesOf(const Column& column, const Variant& value) {
    const Bytes* bytes = value.get<Bytes>();
    if (!bytes) {
        throw Error(ErrNo::TypeMismatch, "column \"" + column.name + "\" holds bytes");
    }
    return *bytes;
}

// As its text shows it: of the first three groups the highest byte first.
std::array<std::byte, 16> guidInTextOrder(const Variant& value) {
    std::array<std::byte, 16> bytes = parseGuid(value.toText());
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    return bytes;
}

// What has one size and is complemented as a whole when it descends.
void appendFixed(KeyBytes& key, const Column& column, const Variant& value, bool descending) {
    const std::size_t from = key.size();
    switch (column.type) {
        case ColumnType::Boolean:
            key.push_back(!value.isNull() && value.toBool() ? std::byte{0x00} : std::byte{0xFF});
            break;
        case ColumnType::Single:
            appendFloat(key, std::bit_cast<std::uint32_t>(single(value)));
            break;
        case ColumnType::Double:
            appendFloat(key, std::bit_cast<std::uint64_t>(value.toDouble()));
            break;
        case ColumnType::Date:
            appendFloat(key, std::bit_cast<std::uint64_t>(value.toDateTime().days()));
            break;
        default: {
            Column whole = column;
            if (column.type == ColumnType::Complex) {
                whole.type = ColumnType::Long;
            }
            appendWhole(key, whole, value);
        }
    }
    if (descending) {
        complement(tail(key, from));
    }
}

void appendValue(KeyBytes& key, const KeyColumn& part, const Variant& value) {
    const Column& column = part.column;
    switch (column.type) {
        case ColumnType::Text:
        case ColumnType::Memo:
            appendText(key, column, value, part.descending);
            break;
        case ColumnType::Binary:
            appendBinary(key, bytesOf(column, value), part.descending);
            break;
        case ColumnType::Guid:
            appendBinary(key, guidInTextOrder(value), part.descending);
            break;
        case ColumnType::Numeric:
            appendNumeric(key, column, value, part.descending);
            break;
        case ColumnType::Ole:
        case ColumnType::Block:
            throw Error(ErrNo::Unsupported,
                        "column \"" + column.name + "\" is of a type that no index can have");
        default:
            appendFixed(key, column, value, part.descending);
    }
}

}  // namespace

IndexKey indexKey(const IndexDefinition& index, std::span<const Variant> values) {
    assert(values.size() <= index.columns.size());
    IndexKey key;
    key.isAllNull = !values.empty();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const KeyColumn& part = index.columns[i];
        const bool null = values[i].isNull() && part.column.type != ColumnType::Boolean;
        key.hasNull = key.hasNull || null;
        key.isAllNull = key.isAllNull && null;
        const std::byte flag = null ? kNull : kValue;
        key.bytes.push_back(part.descending ? ~flag : flag);
        if (!null) {
            appendValue(key.bytes, part, values[i]);
        }
    }
    return key;
}

bool allNull(const IndexDefinition& index, ByteView key) noexcept {
    return std::equal(
        key.begin(), key.end(), index.columns.begin(), index.columns.end(),
        [](std::byte b, const KeyColumn& part) { return b == (part.descending ? ~kNull : kNull); });
}

}  // namespace vl::jet
