#include "Findings.h"

#include <charconv>

namespace vl::jet {

void Findings::add(PageNo page, std::string what) {
    ++all_;
    if (findings_.size() < kMost) {
        findings_.push_back({page, std::move(what)});
    }
}

// "FILE, page N: what", as `Origin::corrupt` has it.
void Findings::addError(PageNo page, std::string what) {
    const std::string prefix = fileName_ + ", page ";
    if (what.compare(0, prefix.size(), prefix) == 0) {
        const char* end = what.data() + what.size();
        const auto number = std::from_chars(what.data() + prefix.size(), end, page);
        const auto rest = static_cast<std::size_t>(number.ptr - what.data());
        if (what.compare(rest, 2, ": ") == 0) {
            what.erase(0, rest + 2);
        }
    }
    add(page, std::move(what));
}

std::vector<Finding> Findings::take() {
    if (all_ > findings_.size()) {
        findings_.push_back({0, "and " + std::to_string(all_ - findings_.size()) + " more"});
    }
    return std::move(findings_);
}

}  // namespace vl::jet
