// Who owns which page of a file.
#pragma once

#include <map>
#include <set>

#include "DataPage.h"
#include "Findings.h"

namespace vl::jet {

/// Notes the owners of pages, and of rows of pages that several own, and finds what two claim.
/// `findings` must outlive it.
class Claims {
public:
    Claims(PageNo pageCount, Findings& findings) : owners_(pageCount), findings_(findings) {
        labels_.emplace_back();
    }

    /// `label` says whose the page is: "an index of table X". False: it is somebody's already, or
    /// no page of the file.
    bool claim(PageNo page, const std::string& label);
    /// A usage map's row: its page holds those of others, too.
    void claimMapRow(RowPointer row, const std::string& label);
    bool isClaimed(PageNo page) const { return owners_[page] != 0; }
    const std::string& ownerOf(PageNo page) const { return labels_[owners_[page]]; }

private:
    std::uint32_t idOf(const std::string& label);

    std::vector<std::uint32_t> owners_;  // by page; 0 nobody
    std::vector<std::string> labels_;
    std::map<std::string, std::uint32_t> ids_;
    std::map<std::pair<PageNo, std::uint8_t>, std::string> mapRows_;
    Findings& findings_;
};

}  // namespace vl::jet
