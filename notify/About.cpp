#include "notify/About.h"

#include <string>

namespace vl {

BoxRequest aboutBox(std::string_view version, int DBVersion) {
    // Both lines begin with a blank.
    return {
        "Velmora Events and Reminders...",
        " Version " + std::string(version) + "\r\n Database version: " + std::to_string(DBVersion),
        BoxButtons::Ok, BoxIcon::Question};
}

}  // namespace vl
