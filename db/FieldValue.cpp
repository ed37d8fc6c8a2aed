#include "FieldValue.h"

#include <cstdint>
#include <limits>

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

// As the data access library numbers them; see `RecordSet::Field`.
enum Code : int {
    kSmall = 2,
    kLong = 3,
    kSingle = 4,
    kDouble = 5,
    kDate = 7,
    kYesNo = 11,
    kByte = 17,
    kText = 202,
    kMemo = 203,
    kBinary = 128,
    kOle = 205,
};

void checkSize(const RecordSet::Field& field, std::size_t size) {
    if (field.size != 0 && size > field.size) {
        throw Error(ErrNo::Overflow, "record set: field " + field.name + " takes " +
                                         std::to_string(field.size) + ", not " +
                                         std::to_string(size));
    }
}

Variant whole(const Variant& value, std::int32_t lowest, std::int32_t highest) {
    const std::int32_t number = value.toInt32();
    if (number < lowest || number > highest) {
        throw Error(ErrNo::Overflow, "record set: " + std::to_string(number) + " is too large");
    }
    return number;
}

}  // namespace

Variant fieldValue(const RecordSet::Field& field, const Variant& value) {
    if (value.isNull() || value.isEmpty()) {
        return field.type == kYesNo ? Variant(false) : Variant(Null{});
    }
    switch (field.type) {
        case kYesNo:
            return value.toBool();
        case kByte:
            return whole(value, 0, std::numeric_limits<std::uint8_t>::max());
        case kSmall:
            return whole(value, std::numeric_limits<std::int16_t>::min(),
                         std::numeric_limits<std::int16_t>::max());
        case kLong:
            return value.toInt32();
        case kSingle:
        case kDouble:
            return value.toDouble();
        case kDate:
            return value.toDateTime();
        case kText:
        case kMemo: {
            std::string text = value.toText();
            checkSize(field, text::utf16Length(text));
            return text;
        }
        case kBinary:
        case kOle: {
            const auto* bytes = value.get<Bytes>();
            if (bytes == nullptr) {
                throw Error(ErrNo::TypeMismatch, "record set: field " + field.name + " is binary");
            }
            checkSize(field, bytes->size());
            return *bytes;
        }
        default:  // GUIDs and numbers with a decimal point are texts here
            return value.toText();
    }
}

}  // namespace vl
