#include "ManyEvents.h"

#include <array>

namespace vl::test {

namespace {

constexpr int kDay = 1440;

constexpr std::array<const char*, 8> kRules = {
    "FREQ=DAILY",
    "FREQ=WEEKLY;BYDAY=MO,WE,FR",
    "FREQ=WEEKLY;INTERVAL=2;BYDAY=TU",
    "FREQ=MONTHLY;BYDAY=2TH",
    "FREQ=MONTHLY;BYMONTHDAY=-1",
    "FREQ=YEARLY",
    "FREQ=DAILY;COUNT=30",
    "FREQ=WEEKLY;UNTIL=20261231T000000Z",
};

constexpr std::array<const char*, 6> kReminders = {
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":15}]})",
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":10}]})",
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":1440},{"method":"email","minutes":60}]})",
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":0}]})",
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":-30}]})",
    R"({"useDefault":false,"overrides":[]})",
};
constexpr const char* kFive =
    R"({"useDefault":false,"overrides":[{"method":"popup","minutes":10080},{"method":"popup","minutes":1440},{"method":"popup","minutes":60},{"method":"popup","minutes":10},{"method":"popup","minutes":-5}]})";

}  // namespace

void ManyEvents::repeat(calEvent& event) {
    event.recurrence =
        std::string("[\"RRULE:") + kRules[static_cast<std::size_t>(upTo(kRules.size()))] + "\"]";
    event.RecurrenceState = 1;
    lastSeries_ = event.id;
    lastSeriesStart_ = event.StartDateTime;
}

void ManyEvents::replace(calEvent& event) {
    event.RecurrenceState = 3;
    event.recurringEventId = lastSeries_;
    event.RExceptionStartTimeOrig = lastSeriesStart_.addDays(7 * upTo(50));
    event.StartDateTime = event.RExceptionStartTimeOrig.addMinutes(upTo(kDay));
    event.ISRecurrenceExceptionDeleted = upTo(5) == 0 ? 1 : 0;
}

std::shared_ptr<calEvent> ManyEvents::next() {
    const int number = made_++;
    auto event = std::make_shared<calEvent>();
    const std::string digits = std::to_string(1'000'000'000 + number).substr(1);
    event->GUID = "{5B0F3C1E-77A2-4D19-9E64-000" + digits + "}";
    event->id = "ev" + digits;
    event->EventID = number;
    event->Subject = "Appointment number " + std::to_string(number);
    event->Location = "Room " + std::to_string(number % 40);
    event->VLBase = "/home/someone/Documents/Calendar.velmora";
    event->Created = now_.addDays(-400);
    event->Modified = now_.addMinutes(-1 - upTo(300 * kDay));
    event->IsAllDayEvent = upTo(12) == 0;
    event->StartDateTime = now_.addMinutes(upTo(3 * 365 * kDay) - 2 * 365 * kDay);
    if (event->IsAllDayEvent) {
        event->StartDateTime = event->StartDateTime.date();
    }
    event->reminders =
        number % 10 == 3 ? kFive : kReminders[static_cast<std::size_t>(upTo(kReminders.size()))];
    if (number % 5 == 0) {
        repeat(*event);
    } else if (number % 25 == 1) {
        replace(*event);
    }
    event->EndDateTime = event->StartDateTime.addMinutes(30);
    if (upTo(50) == 0) {
        event->NextReminder = now_.addMinutes(upTo(4 * kDay) - 2 * kDay);
        event->Dismissed = upTo(2) == 0 ? event->NextReminder.addMinutes(-30) : DateTime();
    }
    event->LoadRecurrence();
    event->SetRemindersCol();
    return event;
}

std::vector<std::shared_ptr<calEvent>> ManyEvents::next(std::size_t count) {
    std::vector<std::shared_ptr<calEvent>> events;
    events.reserve(count);
    while (events.size() < count) {
        events.push_back(next());
    }
    return events;
}

}  // namespace vl::test
