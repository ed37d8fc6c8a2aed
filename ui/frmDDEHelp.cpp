// The window's help: the page of its number, at the place that is about the control in use.
#include "ui/HelpNumbers.h"
#include "ui/frmDDE.h"

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

void frmDDE::ShowHelp() {
    const QWidget* control = focusWidget();
    if (const ControlHelp* at = helpOf(control)) {
        openHelp(at->page, at->place);
    } else if (control && control->objectName() == u"butSnooze" && isNewRemindersTab()) {
        openHelp(kHelpSnooze);
    } else {
        openHelp(helpNumber_);
    }
}

void frmDDE::openHelp(int page, const char* place) {
    if (parts_.HelpBase.empty()) {
        sayOnce(tr("The help is not installed"));
    } else if (!parts_.openDocument(parts_.HelpBase + std::to_string(page) + place)) {
        sayOnce(tr("The help could not be opened"));
    }
}

}  // namespace vl
