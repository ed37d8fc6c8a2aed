// Opening an event in the host program.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "notify/MessageScreen.h"

namespace vl {

class CalEvents;

/// How the host's helper is reached.
struct HostHelper {
    std::string folder;  ///< of this program; the helper lies beside it
    /// Starts a program by its arguments, the first being the program; false when it does not.
    std::function<bool(const std::vector<std::string>&)> start;
    bool DebugMode = false;  ///< only say what would be started
};

/// The helper and the address of the event: two arguments, whatever is in the texts.
std::vector<std::string> openCommand(const std::string& folder, const std::string& VLBase,
                                     const std::string& GUID);

/// Hands the event to the host's helper, which is not waited for. The row is read afresh. When it
/// is gone nothing happens; when its database is, a box says so. False only when the helper does
/// not start. Never throws.
bool OpenGUID(const CalEvents& events, std::string_view GUID, const HostHelper& helper,
              MessageScreen& screen);

}  // namespace vl
