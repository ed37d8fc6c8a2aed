#include "notify/OpenGUID.h"

#include "app/Files.h"
#include "base/ErrorState.h"
#include "events/CalEvents.h"

namespace vl {

std::vector<std::string> openCommand(const std::string& folder, const std::string& VLBase,
                                     const std::string& GUID) {
    return {joinPath(folder, "VelmoraClipper.exe"), "VL://" + VLBase + "/EvGUID/" + GUID};
}

bool OpenGUID(const CalEvents& events, std::string_view GUID, const HostHelper& helper,
              MessageScreen& screen) {
    const ErrScope scope;
    const auto event = events.EventByGUID(GUID);
    if (!event) {
        return true;
    }
    const std::string base = event->VLBase;
    bool started = true;
    attempt([&] {
        if (!fileExists(base)) {
            screen.ShowBox({"Missing VLBase...", "File " + base + " cannot be found",
                            BoxButtons::Ok, BoxIcon::Critical});
            return;
        }
        const auto command = openCommand(helper.folder, base, event->GUID);
        if (helper.DebugMode) {
            screen.ShowBox({"", command[0] + ' ' + command[1], BoxButtons::Ok, BoxIcon::None});
        } else {
            started = helper.start(command);
        }
    });
    return started;
}

}  // namespace vl
