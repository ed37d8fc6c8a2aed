// Events made by hand.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>

#include "model/calEvent.h"

namespace vl::test {

/// The 20th of November 2026, a Friday, unless another day of that month is given.
inline DateTime at(int hour, int minute, int second = 0, int day = 20) {
    return DateTime::fromCivil(2026, 11, day, hour, minute, second);
}

/// Half an hour long, with reminders so many minutes before its start.
inline std::shared_ptr<calEvent> single(const std::string& GUID, DateTime start,
                                        std::initializer_list<int> minutes) {
    auto e = std::make_shared<calEvent>();
    e->GUID = GUID;
    e->id = "id" + GUID;
    e->Subject = GUID;
    e->StartDateTime = start;
    e->EndDateTime = start.addMinutes(30);
    std::string overrides;
    for (const int m : minutes) {
        overrides += std::string(overrides.empty() ? "" : ",") + R"({"method":"popup","minutes":)" +
                     std::to_string(m) + "}";
    }
    e->reminders = R"({"useDefault":false,"overrides":[)" + overrides + "]}";
    e->SetRemindersCol();
    return e;
}

/// A series; `rule` as "FREQ=DAILY", `zone` by its name or empty.
inline std::shared_ptr<calEvent> series(const std::string& GUID, DateTime start,
                                        const std::string& rule, std::initializer_list<int> minutes,
                                        const std::string& zone = {}) {
    auto e = single(GUID, start, minutes);
    e->recurrence = "[\"RRULE:" + rule + "\"]";
    e->RecurrenceState = 1;
    if (!zone.empty()) {
        e->JSON = R"({"start":{"timeZone":")" + zone + "\"}}";
    }
    e->LoadRecurrence();
    return e;
}

/// All day, from the midnight of `day` on.
inline std::shared_ptr<calEvent> allDay(const std::string& GUID, DateTime day,
                                        std::initializer_list<int> minutes, int days = 1) {
    auto e = single(GUID, day.date(), minutes);
    e->IsAllDayEvent = true;
    e->EndDateTime = day.date().addDays(days - 1);
    return e;
}

}  // namespace vl::test
