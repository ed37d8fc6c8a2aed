#include "Counters.h"

#include <algorithm>
#include <limits>

#include "Bytes.h"
#include "base/ErrorState.h"
#include "define/DefinitionBlocks.h"

namespace vl::jet {

namespace {

constexpr std::size_t kStepAt = 0x18;
constexpr std::size_t kTree = 12;

}  // namespace

Counters::Counters(PageFile& file, PageNo definitionPage)
    : file_(file), page_(file.page(definitionPage)) {
    std::copy(page_.bytes().begin(), page_.bytes().end(), bytes_.begin());
}

std::uint32_t Counters::at(std::size_t offset) const { return u32(bytes_, offset); }

void Counters::set(std::size_t offset, std::uint32_t value) {
    store(std::span<std::byte>(bytes_), offset, value);
}

std::int32_t Counters::nextNumber() const {
    const auto step = std::max(static_cast<std::int32_t>(at(kStepAt)), 1);
    const std::int64_t next =
        std::int64_t{static_cast<std::int32_t>(at(kDefinitionLastNumberAt))} + step;
    if (next > std::numeric_limits<std::int32_t>::max()) {
        throw Error(ErrNo::Overflow, "the numbers of the table's rows are used up");
    }
    return static_cast<std::int32_t>(next);
}

void Counters::noteNumber(std::int32_t number) {
    if (number > static_cast<std::int32_t>(at(kDefinitionLastNumberAt))) {
        set(kDefinitionLastNumberAt, static_cast<std::uint32_t>(number));
    }
}

void Counters::addRow() { set(kDefinitionRowsAt, at(kDefinitionRowsAt) + 1); }

void Counters::removeRow() {
    if (at(kDefinitionRowsAt) > 0) {  // it may be too low in tables of the system's
        set(kDefinitionRowsAt, at(kDefinitionRowsAt) - 1);
    }
}

void Counters::addKey(std::size_t tree) {
    const std::size_t offset = kDefinitionHeader + kTree * tree + 4;
    if (offset + 4 <= kPageSize) {
        set(offset, at(offset) + 1);
    }
}

void Counters::write() {
    if (!std::equal(bytes_.begin(), bytes_.end(), page_.bytes().begin())) {
        file_.writePage(page_.number(), bytes_);
    }
}

}  // namespace vl::jet
