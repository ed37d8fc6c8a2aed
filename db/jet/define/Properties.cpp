#include "Properties.h"

#include <algorithm>

#include "Bytes.h"
#include "base/Text.h"

namespace vl::jet {

namespace {

constexpr std::uint32_t kMagic = 0x0032524D;  // "MR2" and a zero
constexpr std::uint16_t kNames = 0x80;
constexpr std::uint16_t kColumn = 1;
constexpr std::size_t kChunkHeader = 6;
constexpr std::size_t kValueHeader = 8;

std::u16string unitsOf(ByteView bytes) {
    std::u16string units;
    for (std::size_t i = 0; i + 2 <= bytes.size(); i += 2) {
        units.push_back(static_cast<char16_t>(u16(bytes, i)));
    }
    return units;
}

/// Takes piece after piece off the front.
class Pieces {
public:
    Pieces(ByteView bytes, const Origin& origin) : rest_(bytes), origin_(origin) {}

    bool empty() const noexcept { return rest_.empty(); }
    ByteView take(std::size_t n) {
        if (n > rest_.size()) {
            origin_.corrupt("the properties of a table end too early");
        }
        const ByteView piece = rest_.first(n);
        rest_ = rest_.subspan(n);
        return piece;
    }
    // A piece that tells its own length first, in a number of type `T`, with `header` bytes at
    // least.
    template <class T>
    ByteView takeWhole(std::size_t header) {
        const std::size_t length = rest_.size() < sizeof(T) ? 0 : load<T>(rest_, 0);
        return take(std::max(length, header));
    }
    std::u16string takeName() { return unitsOf(take(u16(take(2), 0))); }
    const Origin& origin() const noexcept { return origin_; }

private:
    ByteView rest_;
    const Origin& origin_;
};

PropertyBlock decodeBlock(std::uint16_t kind, Pieces chunk,
                          const std::vector<std::u16string>& names) {
    PropertyBlock block;
    block.kind = kind;
    Pieces head(chunk.takeWhole<std::uint32_t>(6).subspan(4), chunk.origin());
    block.owner = head.takeName();
    while (!chunk.empty()) {
        const ByteView value = chunk.takeWhole<std::uint16_t>(kValueHeader);
        const std::size_t name = u16(value, 4);
        if (name >= names.size()) {
            chunk.origin().corrupt("a property of a table has no name");
        }
        Pieces data(value.subspan(kValueHeader), chunk.origin());
        const ByteView bytes = data.take(u16(value, 6));
        block.values.emplace_back(names[name], Property{u8(value, 2),
                                                        static_cast<ColumnType>(u8(value, 3)),
                                                        {bytes.begin(), bytes.end()}});
    }
    return block;
}

class BlobWriter {
public:
    template <class T>
    void put(T number) {
        const std::size_t at = bytes.size();
        bytes.resize(at + sizeof(T));
        store(std::span<std::byte>(bytes), at, number);
    }
    void put(ByteView data) { bytes.insert(bytes.end(), data.begin(), data.end()); }
    void putName(std::u16string_view name) {
        put(static_cast<std::uint16_t>(2 * name.size()));
        for (const char16_t unit : name) {
            put(static_cast<std::uint16_t>(unit));
        }
    }
    // Puts the length of what was written from `at` on there.
    template <class T>
    void close(std::size_t at) {
        store(std::span<std::byte>(bytes), at, static_cast<T>(bytes.size() - at));
    }
    std::size_t open(std::uint16_t kind) {
        const std::size_t at = bytes.size();
        put(std::uint32_t{0});
        put(kind);
        return at;
    }

    std::vector<std::byte> bytes;
};

std::vector<std::u16string> namesIn(const std::vector<PropertyBlock>& blocks) {
    std::vector<std::u16string> names;
    for (const PropertyBlock& block : blocks) {
        for (const auto& [name, value] : block.values) {
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                names.push_back(name);
            }
        }
    }
    return names;
}

bool same(std::u16string_view stored, std::string_view name) {
    return text::equalsNoCase(text::fromUtf16(stored), name);
}

}  // namespace

Properties Properties::decode(ByteView blob, const Origin& origin) {
    Properties properties;
    if (blob.empty()) {
        return properties;
    }
    Pieces pieces(blob, origin);
    if (u32(pieces.take(4), 0) != kMagic) {
        origin.corrupt("the properties of a table are of an unknown kind");
    }
    std::vector<std::u16string> names;
    while (!pieces.empty()) {
        const ByteView chunk = pieces.takeWhole<std::uint32_t>(kChunkHeader);
        const std::uint16_t kind = u16(chunk, 4);
        Pieces content(chunk.subspan(kChunkHeader), origin);
        if (kind == kNames) {
            while (!content.empty()) {
                names.push_back(content.takeName());
            }
        } else {
            properties.blocks_.push_back(decodeBlock(kind, content, names));
        }
    }
    return properties;
}

std::vector<std::byte> Properties::encode() const {
    const std::vector<std::u16string> names = namesIn(blocks_);
    BlobWriter writer;
    writer.put(kMagic);
    const std::size_t list = writer.open(kNames);
    for (const std::u16string& name : names) {
        writer.putName(name);
    }
    writer.close<std::uint32_t>(list);
    for (const PropertyBlock& block : blocks_) {
        const std::size_t chunk = writer.open(block.kind);
        const std::size_t owner = writer.bytes.size();
        writer.put(std::uint32_t{0});
        writer.putName(block.owner);
        writer.close<std::uint32_t>(owner);
        for (const auto& [name, value] : block.values) {
            const std::size_t at = writer.bytes.size();
            writer.put(std::uint16_t{0});
            writer.put(value.level);
            writer.put(static_cast<std::uint8_t>(value.type));
            writer.put(static_cast<std::uint16_t>(std::find(names.begin(), names.end(), name) -
                                                  names.begin()));
            writer.put(static_cast<std::uint16_t>(value.data.size()));
            writer.put(ByteView(value.data));
            writer.close<std::uint16_t>(at);
        }
        writer.close<std::uint32_t>(chunk);
    }
    return std::move(writer.bytes);
}

bool Properties::flag(std::string_view column, std::string_view property, bool otherwise) const {
    for (const PropertyBlock& block : blocks_) {
        if (block.kind != kColumn || !same(block.owner, column)) {
            continue;
        }
        for (const auto& [name, value] : block.values) {
            if (same(name, property) && value.type == ColumnType::Boolean &&
                value.data.size() == 1) {
                return value.data[0] != std::byte{0};
            }
        }
    }
    return otherwise;
}

void Properties::setFlag(std::string_view column, std::string_view property, bool value) {
    PropertyBlock* block = find(column);
    if (block == nullptr) {
        block = &blocks_.emplace_back();
        block->kind = kColumn;
        block->owner = text::toUtf16(column);
    }
    const auto found = std::find_if(block->values.begin(), block->values.end(),
                                    [&](const auto& v) { return same(v.first, property); });
    Property set{1, ColumnType::Boolean, {value ? std::byte{1} : std::byte{0}}};
    if (found != block->values.end()) {
        found->second = std::move(set);
    } else {
        block->values.emplace_back(text::toUtf16(property), std::move(set));
    }
}

void setProperties(Properties& properties, const NewColumn& column) {
    const bool isText = column.type == ColumnType::Text || column.type == ColumnType::Memo;
    if (column.required || isText) {
        properties.setFlag(column.name, kRequired, column.required);
    }
    if (isText) {
        properties.setFlag(column.name, kAllowZeroLength, column.allowZeroLength);
    }
}

PropertyBlock* Properties::find(std::string_view column) {
    const auto found = std::find_if(blocks_.begin(), blocks_.end(), [&](const PropertyBlock& b) {
        return b.kind == kColumn && same(b.owner, column);
    });
    return found != blocks_.end() ? &*found : nullptr;
}

}  // namespace vl::jet
