#include "notify/TrayText.h"

#include <array>

namespace vl {

std::string iconText(int tab, std::size_t rows, std::size_t newRows, bool visible) {
    static constexpr std::array<const char*, 3> kNouns = {"New reminder", "Reminder", "Event"};
    const bool known = tab >= 0 && tab < static_cast<int>(kNouns.size());
    std::string out =
        std::to_string(rows) + " " + kNouns[known ? static_cast<std::size_t>(tab) : 0];
    if (rows > 1) {
        out += "s";
    }
    if (newRows > 0) {
        out += "\r\n" + std::to_string(newRows) + " new reminder" + (newRows > 1 ? "s" : "");
    }
    if (!visible) {
        out += "\r\n(click to show/hide)";
    }
    return out;
}

}  // namespace vl
