#include "ui/KeptState.h"

#include <algorithm>
#include <string>
#include <utility>

#include "app/Settings.h"
#include "app/TimeText.h"
#include "base/Text.h"
#include "ui/SettingNames.h"

namespace vl {

namespace {

int number(const Settings& settings, const char* key) {
    constexpr double kMost = 2147483647.0;
    const double value = text::leadingNumber(settings.GetIni(kRemindersSection, key, 0));
    return static_cast<int>(text::roundHalfEven(std::clamp(value, -kMost, kMost)));
}

const char* flagText(bool flag) { return flag ? "-1" : "0"; }

}  // namespace

void readNotifying(const Settings& settings, ReminderState& state) {
    state.bMuted = number(settings, "Muted") != 0;
    state.bSilent = number(settings, "Silent") != 0;
    state.sNotifType = settings.GetIni(kRemindersSection, "NotifType", "D");
    if (number(settings, "Popup") != 0) {
        state.sNotifType = "P";
    }
    if (number(settings, "System") != 0) {
        state.sNotifType = "S";
    }
    state.bOnTop = number(settings, "OnTop") != 0;
}

void readPeriod(const Settings& settings, DateTime now, ReminderState& state) {
    state.sPeriod = settings.GetIni(kRemindersSection, "Period", "T");
    const std::string shown = settings.GetIni(kRemindersSection, "LastShown", "");
    state.dLastShown = shown.empty() ? now : fromStoredText(shown);
    state.DBVersion = number(settings, "DBVersion");
}

void writeState(Settings& settings, const ReminderState& state) {
    const std::pair<const char*, std::string> values[] = {
        {"Muted", flagText(state.bMuted)},
        {"Silent", flagText(state.bSilent)},
        {"Popup", "0"},
        {"System", "0"},
        {"OnTop", flagText(state.bOnTop)},
        {"NotifType", state.sNotifType},
        {"Period", state.sPeriod},
        {"LastShown", toStoredText(state.dLastShown)},
        {"DBVersion", std::to_string(state.DBVersion)},
    };
    for (const auto& [key, value] : values) {
        settings.SaveIni(kRemindersSection, key, value);
    }
}

}  // namespace vl
