#include "ui/WindowHelp.h"

#include <string>
#include <utility>

#include <QWidget>

#include "ui/HelpNumbers.h"

namespace vl {

namespace {

struct ControlHelp {
    const char* control;
    int page;
    const char* place;  // on that page
};

// A control that is not named here is told about where the one around it is. The lists are what the
// window is about: they have the place of the window itself.
constexpr ControlHelp kPlaces[] = {
    {"cboPeriod", kHelpMainWindow, kHelpPeriods},
    {"UpDown1", kHelpMainWindow, kHelpPeriods},
    {"txtSearch", kHelpMainWindow, kHelpSearch},
    {"G0", kHelpMainWindow, ""},
    {"G1", kHelpMainWindow, ""},
    {"G2", kHelpMainWindow, ""},
    {"tabs", kHelpMainWindow, kHelpTabs},
    {"butDismiss", kHelpDismiss, ""},
    {"butMenu", kHelpMainWindow, kHelpTray},
};

const ControlHelp* helpOf(const QWidget* control) {
    for (; control && !control->isWindow(); control = control->parentWidget()) {
        for (const ControlHelp& each : kPlaces) {
            if (control->objectName() == QLatin1String(each.control)) {
                return &each;
            }
        }
    }
    return nullptr;
}

}  // namespace

WindowHelp::WindowHelp(const WindowParts& parts, std::function<void(const QString&)> say)
    : parts_(parts), say_(std::move(say)) {}

void WindowHelp::show(const QWidget* control, bool snoozes) const {
    if (const ControlHelp* at = helpOf(control)) {
        open(at->page, at->place);
    } else if (snoozes && control != nullptr && control->objectName() == u"butSnooze") {
        open(kHelpSnooze);
    } else {
        open(number);
    }
}

void WindowHelp::open(int page, const char* place) const {
    if (parts_.HelpBase.empty()) {
        say_(QObject::tr("The help is not installed"));
    } else if (!parts_.openDocument(parts_.HelpBase + std::to_string(page) + place)) {
        say_(QObject::tr("The help could not be opened"));
    }
}

}  // namespace vl
