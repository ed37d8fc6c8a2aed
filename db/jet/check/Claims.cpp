#include "Claims.h"

namespace vl::jet {

namespace {

const std::string kMapPage = "usage maps";

}  // namespace

std::uint32_t Claims::idOf(const std::string& label) {
    const auto [entry, fresh] = ids_.try_emplace(label, static_cast<std::uint32_t>(labels_.size()));
    if (fresh) {
        labels_.push_back(label);
    }
    return entry->second;
}

bool Claims::claim(PageNo page, const std::string& label) {
    if (page >= owners_.size()) {
        findings_.add(page, "belongs to " + label + ", but the file has " +
                                std::to_string(owners_.size()) + " pages");
        return false;
    }
    if (owners_[page] != 0) {
        findings_.add(page, "belongs to " + label + ", but also to " + ownerOf(page));
        return false;
    }
    owners_[page] = idOf(label);
    return true;
}

void Claims::claimMapRow(RowPointer row, const std::string& label) {
    if (row.page >= owners_.size() || owners_[row.page] != idOf(kMapPage)) {
        claim(row.page, kMapPage);
    }
    const auto [entry, fresh] = mapRows_.try_emplace({row.page, row.row}, label);
    if (!fresh) {
        findings_.add(row.page, "row " + std::to_string(row.row) + " is a map of " + label +
                                    ", but also of " + entry->second);
    }
}

}  // namespace vl::jet
