// Where a row's bytes go: into its page, beside it, or to another page.
#include <array>

#include "Bytes.h"
#include "LongValueStore.h"
#include "RowWriter.h"
#include "TableLabel.h"

namespace vl::jet {

namespace {

// Without what long values have outside of it.
constexpr std::size_t kLongestRow = 4060;

std::array<std::byte, 4> pointerBytes(RowPointer pointer) {
    std::array<std::byte, 4> bytes{};
    store(std::span<std::byte>(bytes), 0, (pointer.page << 8) | pointer.row);
    return bytes;
}

}  // namespace

// Decides which of the new long values stand in the row: short ones, unless the row gets too long.
void RowWriter::makeFit(Fields& fields) {
    const std::vector<std::byte> outside(12);
    Fields trial = fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose) {
            const bool stays = fields[i].bytes.size() <= kLongestInline;
            trial[i].bytes = stays ? inlineLongValue(fields[i].bytes) : outside;
        }
    }
    std::size_t size = encodeRow(table_, trial).size();
    while (size > kLongestRow) {
        std::size_t longest = fields.size();
        for (std::size_t i = 0; i < trial.size(); ++i) {
            if (isLong(table_.columns[i].type) && trial[i].bytes.size() > outside.size() &&
                (longest == fields.size() || trial[i].bytes.size() > trial[longest].bytes.size())) {
                longest = i;
            }
        }
        if (longest == fields.size()) {
            throw Error(ErrNo::Overflow, tableLabel(file_, table_) + ": a row of " +
                                             std::to_string(size) + " bytes is too long");
        }
        if (!fields[longest].isLoose) {
            fields[longest].bytes = inlineValue(fields[longest].bytes);
            fields[longest].isLoose = true;
        }
        size -= trial[longest].bytes.size() - outside.size();
        trial[longest].bytes = outside;
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose && trial[i].bytes != outside) {
            fields[i] = trial[i];
            fields[i].isLoose = false;
        }
    }
}

// Writes the long values that stand outside their row, and gives the row.
std::vector<std::byte> RowWriter::settle(Fields& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].isLoose) {
            fields[i].bytes = LongValueStore(file_, table_, table_.columns[i]).put(fields[i].bytes);
            fields[i].isLoose = false;
        }
    }
    return encodeRow(table_, fields);
}

// Where it stands, if there is room; else on another page of the table, and its first place names
// that one.
void RowWriter::rewrite(const Stored& row, ByteView bytes) {
    RowPages pages = this->pages();
    DataPageDraft page = pages.open(row.body.page);
    const bool isHome = row.body == row.home;
    if (page.fits(row.body.row, bytes.size())) {
        page.replace(row.body.row, bytes, isHome ? DataPage::Slot::Row : DataPage::Slot::Body);
        pages.write(row.body.page, page);
        return;
    }
    const std::array<std::byte, 4> pointer = pointerBytes(pages.add(bytes, DataPage::Slot::Body));
    if (!isHome) {
        pages.erase(row.body);
    }
    DataPageDraft home = pages.open(row.home.page);
    if (!home.fits(row.home.row, pointer.size())) {
        file_.page(row.home.page).origin().corrupt("has no room for a pointer to a row");
    }
    home.replace(row.home.row, pointer, DataPage::Slot::Moved);
    pages.write(row.home.page, home);
}

}  // namespace vl::jet
