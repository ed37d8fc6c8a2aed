// Made-up event resources: what is written is read as the same event.
#include <array>
#include <cstdio>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ZoneForTest.h"
#include "model/calEvent.h"

namespace vl {
namespace {

using Json = nlohmann::ordered_json;

class Maker {
public:
    explicit Maker(std::uint32_t seed) : random_(seed) {}

    int number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }
    bool chance(int percent) { return number(1, 100) <= percent; }

    std::string text(int most) {
        static constexpr std::array kPieces = {
            "a",      "Q",      " ",      "7",      "\"",         "\\",     "\n", "\t", "\x01",
            "\u00e4", "\u00df", "\u05d0", "\u4f1a", "\U0001F4C5", "\u2028", "{}", "'"};
        std::string out;
        for (int left = number(0, most); left > 0; --left) {
            out += kPieces[static_cast<std::size_t>(number(0, kPieces.size() - 1))];
        }
        return out;
    }

    std::string date() {
        return formatted("%04d-%02d-%02d", number(1971, 2199), number(1, 12), number(1, 28));
    }

    // Also in the hours that clocks skip or show twice.
    std::string moment() {
        std::string time =
            date() + formatted("T%02d:%02d:%02d", number(0, 23), number(0, 59), number(0, 59));
        if (chance(20)) {
            time = formatted("%04d-03-29T01:%02d:%02d", number(1990, 2037), number(0, 59),
                             number(0, 59));
        }
        if (chance(15)) {
            time += formatted(".%03d", number(0, 999));
        }
        return chance(50) ? time + "Z"
                          : time + (chance(50) ? "+" : "-") +
                                formatted("%02d:%02d", number(0, 13), 15 * number(0, 3));
    }

    Json when() {
        return chance(40) ? Json{{"date", date()}}
                          : Json{{"dateTime", moment()}, {"timeZone", "Europe/Berlin"}};
    }

    Json recurrence() {
        static constexpr std::array kRules = {"FREQ=DAILY;COUNT=5",
                                              "FREQ=WEEKLY;BYDAY=MO,FR",
                                              "FREQ=MONTHLY;BYDAY=-1FR",
                                              "FREQ=YEARLY",
                                              "FREQ=NEVER",
                                              "FREQ=DAILY;UNTIL=20301231T235959Z"};
        Json lines = Json::array();
        lines.push_back(
            "RRULE:" + std::string(kRules[static_cast<std::size_t>(number(0, kRules.size() - 1))]));
        if (chance(30)) {
            lines.push_back("EXDATE:20261120T090000Z");
        }
        if (chance(20)) {
            lines.push_back("X-" + text(5));
        }
        return lines;
    }

    Json reminders() {
        Json overrides = Json::array();
        for (int left = number(0, 5); left > 0; --left) {
            overrides.push_back(
                {{"method", chance(70) ? "popup" : "email"}, {"minutes", number(-200, 40320)}});
        }
        return {{"useDefault", chance(20)}, {"overrides", overrides}, {text(3), text(3)}};
    }

    Json attendees() {
        Json list = Json::array();
        for (int left = number(0, 4); left > 0; --left) {
            list.push_back({{"email", text(8)},
                            {"displayName", text(12)},
                            {"self", chance(30)},
                            {"responseStatus", "needsAction"},
                            {"additionalGuests", number(0, 3)},
                            {"comment", nullptr}});
        }
        return list;
    }

    // What a service may add some day.
    Json unknown() {
        return chance(50) ? Json{{"summary", text(5)}, {"start", {{"date", 7}}}}
                          : Json::array({1.5, true, nullptr, text(4), Json::object()});
    }

    int descriptionLength() {
        if (chance(1)) {
            return 300'000;
        }
        return chance(5) ? 20'000 : 200;
    }

    // Members come in any order, or not at all.
    Json event() {
        Json js = Json::object();
        const auto maybe = [&](const char* name, int percent, auto&& make) {
            if (chance(percent)) {
                js[name] = make();
            }
        };
        maybe("summary", 95, [&] { return text(80); });
        maybe("description", 60, [&] { return text(descriptionLength()); });
        maybe("location", 60, [&] { return text(30); });
        maybe("etag", 80, [&] { return text(10); });
        maybe("id", 90, [&] { return text(12); });
        maybe("attendees", 30, [&] { return attendees(); });
        maybe("x-unknown", 20, [&] { return unknown(); });
        maybe("extendedProperties", 20, [&] { return Json{{"private", unknown()}}; });
        maybe("start", 97, [&] { return when(); });
        maybe("end", 95, [&] { return when(); });
        if (chance(25)) {  // an instance that was moved or cancelled
            js["recurringEventId"] = text(12);
            js["originalStartTime"] = when();
        } else {
            maybe("originalStartTime", 5, [&] { return when(); });
            maybe("recurrence", 50, [&] { return recurrence(); });
            maybe("recurringEventId", 5, [&] { return text(12); });
        }
        maybe("reminders", 80, [&] { return reminders(); });
        maybe("status", 90, [&] { return chance(20) ? "cancelled" : "confirmed"; });
        return js;
    }

private:
    template <class... Numbers>
    static std::string formatted(const char* format, Numbers... numbers) {
        std::array<char, 80> text{};
        std::snprintf(text.data(), text.size(), format, numbers...);
        return text.data();
    }

    std::mt19937 random_;
};

calEvent loaded(const Json& js) {
    calEvent event;
    event.LoadJSON(js);
    event.LoadRecurrence();
    return event;
}

// What `SaveJSON` writes of an event, as its properties.
std::vector<Variant> written(const calEvent& event) {
    std::vector<Variant> values;
    for (const char* name :
         {"Subject", "Body", "Location", "RRULE", "recurringEventId", "etag", "id", "IsAllDayEvent",
          "StartDateTime", "EndDateTime", "RExceptionStartTimeOrig", "reminders", "deleted"}) {
        values.push_back(event.property(name));
    }
    return values;
}

TEST(SaveJSON, WhatIsWrittenIsReadAsTheSameEvent) {
    constexpr int kEventsAZone = 1000;
    int events = 0;
    int series = 0;
    int moved = 0;
    int cancelled = 0;
    int huge = 0;
    for (const char* name : {"Europe/Berlin", "America/New_York", "Asia/Kolkata",
                             "Australia/Lord_Howe", "Pacific/Apia", "UTC"}) {
        const test::ZoneForTest zone(name);
        for (int i = 0; i < kEventsAZone; ++i, ++events) {
            const auto seed = static_cast<std::uint32_t>(events);
            SCOPED_TRACE(std::string(name) + ", seed " + std::to_string(seed));
            Maker maker(seed);
            const Json resource = maker.event();
            // As text, now and then with every character beyond ASCII escaped, large ones in two.
            const auto asText = [escaped = maker.chance(50)](const Json& js) {
                return js.dump(-1, ' ', escaped);
            };
            const calEvent first = loaded(Json::parse(asText(resource)));
            ASSERT_EQ(Json::parse(first.JSON.view()), resource) << "nothing of it is lost";
            const Json saved = first.SaveJSON();
            ASSERT_FALSE(saved.contains("attendees") || saved.contains("x-unknown"));
            const calEvent second = loaded(Json::parse(asText(saved)));
            ASSERT_EQ(written(second), written(first)) << resource.dump();
            ASSERT_EQ(second.SaveJSON(), saved) << resource.dump();
            if (!first.RRULE.empty()) {
                ASSERT_EQ(second.recurrence, first.recurrence);
                series += first.recurringEventId.empty() ? 1 : 0;
            }
            moved += first.RExceptionStartTimeOrig.isZero() ? 0 : 1;
            cancelled += first.deleted ? 1 : 0;
            huge += first.Body.size() > 100'000 ? 1 : 0;
        }
    }
    std::cout << events << " events: " << series << " series, " << moved << " moved, " << cancelled
              << " cancelled, " << huge << " with more than 100,000 bytes\n";
    for (const int kind : {series, moved, cancelled, huge}) {
        EXPECT_GT(kind, events / 1000);
    }
}

}  // namespace
}  // namespace vl
