// Answers the questions of `remindb occurrences` with libical, so that the two can be compared: a
// JSON object a line with "lines", "dtstart", "to" and maybe "allday" and "tz"; for each a line
// with "wall", the instances up to "to" on the wall clock of "tz", and "ended", or with "error".
//
// The start is always an instance. Everything else, also what EXDATE removes and what RDATE adds,
// is libical's own doing. A line on which it takes too long ends the program with status 3, so that
// who asks can go on behind it.
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>

#include <libical/ical.h>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;
using Instances = std::set<std::string>;

constexpr int kTooSlow = 3;

struct FreeComponent {
    void operator()(icalcomponent* c) const { icalcomponent_free(c); }
};
struct FreeIterator {
    void operator()(icalrecur_iterator* i) const { icalrecur_iterator_free(i); }
};
using Component = std::unique_ptr<icalcomponent, FreeComponent>;
using Iterator = std::unique_ptr<icalrecur_iterator, FreeIterator>;

std::string without(std::string text, const std::string& characters) {
    std::erase_if(text, [&](char c) { return characters.find(c) != std::string::npos; });
    return text;
}

std::string isoText(const icaltimetype& t) {
    std::string text(32, '\0');
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d",
                                     t.year, t.month, t.day, t.is_date ? 0 : t.hour,
                                     t.is_date ? 0 : t.minute, t.is_date ? 0 : t.second);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

Component eventOf(const Json& asked) {
    const std::string start = without(asked.at("dtstart"), "-:");
    const std::string zone = asked.value("tz", Json()).is_string() ? asked["tz"] : "";
    std::string text = "BEGIN:VEVENT\r\nDTSTART";
    if (asked.value("allday", false)) {
        text += ";VALUE=DATE:" + start.substr(0, 8);
    } else {
        text += (zone.empty() ? ":" : ";TZID=" + zone + ":") + start;
    }
    int rules = 0;
    for (const std::string line : asked.at("lines")) {
        text += "\r\n" + line;
        rules += line.starts_with("RRULE") ? 1 : 0;
    }
    Component event(icalparser_parse_string((text + "\r\nEND:VEVENT\r\n").c_str()));
    if (!event || icalcomponent_count_properties(event.get(), ICAL_RRULE_PROPERTY) != rules) {
        throw std::runtime_error("a line is refused");
    }
    return event;
}

class Event {
public:
    explicit Event(const Json& asked)
        : component_(eventOf(asked)),
          start_(icalcomponent_get_dtstart(component_.get())),
          to_(icaltime_from_string(without(asked.at("to"), "-:").c_str())) {
        const Json zone = asked.value("tz", Json());
        if (zone.is_string() && start_.zone == nullptr && !start_.is_date) {
            start_ = icaltime_set_timezone(
                &start_, icaltimezone_get_builtin_timezone(zone.get<std::string>().c_str()));
        }
        to_ = icaltime_set_timezone(&to_, start_.zone);
    }

    Json answer() {
        take(start_);
        const auto each = [this](icalproperty_kind kind, auto&& visit) {
            for (auto* p = icalcomponent_get_first_property(component_.get(), kind); p != nullptr;
                 p = icalcomponent_get_next_property(component_.get(), kind)) {
                visit(p);
            }
        };
        // Asking what is excluded walks over the properties, too: so first all, then each.
        std::vector<icalproperty*> rules, dates;
        each(ICAL_RRULE_PROPERTY, [&](icalproperty* p) { rules.push_back(p); });
        each(ICAL_RDATE_PROPERTY, [&](icalproperty* p) { dates.push_back(p); });
        for (icalproperty* rule : rules) {
            takeRule(icalproperty_get_rrule(rule));
        }
        for (icalproperty* date : dates) {
            takeDate(date);
        }
        return {{"wall", instances_}, {"ended", ended_}};
    }

private:
    void take(icaltimetype t) {
        if (icalproperty_recurrence_is_excluded(component_.get(), &start_, &t) == 0) {
            instances_.insert(isoText(t));
        }
    }

    void takeRule(icalrecurrencetype rule) {
        const Iterator iterator(icalrecur_iterator_new(rule, start_));
        if (!iterator) {
            throw std::runtime_error("a rule is refused");
        }
        for (int taken = 0;; ++taken) {
            const icaltimetype t = icalrecur_iterator_next(iterator.get());
            if (icaltime_is_null_time(t) != 0) {
                // It also ends when it has looked far enough.
                ended_ = ended_ && (rule.count == 0 || taken == rule.count);
                return;
            }
            if (icaltime_compare(t, to_) > 0) {
                ended_ = false;
                return;
            }
            take(t);
        }
    }

    void takeDate(icalproperty* property) {
        const icaldatetimeperiodtype value = icalproperty_get_rdate(property);
        icaltimetype t = icaltime_is_null_time(value.time) != 0 ? value.period.start : value.time;
        if (const char* zone = icalproperty_get_parameter_as_string(property, "TZID")) {
            t = icaltime_set_timezone(&t, icaltimezone_get_builtin_timezone(zone));
        } else if (t.zone == nullptr) {
            t = icaltime_set_timezone(&t, start_.zone);
        }
        if (start_.zone != nullptr && t.is_date == 0) {
            // Its type asks for a zone that may be changed, which it does not do.
            t = icaltime_convert_to_zone(t, const_cast<icaltimezone*>(start_.zone));
        }
        if (icaltime_compare(t, to_) > 0) {
            ended_ = false;
        } else {
            take(t);
        }
    }

    Component component_;
    icaltimetype start_;
    icaltimetype to_;
    Instances instances_;
    bool ended_ = true;
};

Json answer(const std::string& line) {
    try {
        return Event(Json::parse(line)).answer();
    } catch (const std::exception& e) {
        return {{"error", e.what()}};
    }
}

extern "C" void onTooSlow(int) {
    static constexpr char kLine[] = "{\"error\":\"takes too long\"}\n";
    _exit(write(STDOUT_FILENO, kLine, sizeof kLine - 1) > 0 ? kTooSlow : 1);
}

// Of processor time: a busy machine changes nothing.
void setLimit(int milliseconds) {
    const itimerval limit{{0, 0}, {0, suseconds_t{1000} * milliseconds}};
    setitimer(ITIMER_VIRTUAL, &limit, nullptr);
}

}  // namespace

int main() {  // NOLINT(bugprone-exception-escape): only for lack of memory
    icaltimezone_set_tzid_prefix("");
    icalerror_set_errors_are_fatal(0);
    icalerror_set_error_state(ICAL_MALFORMEDDATA_ERROR, ICAL_ERROR_NONFATAL);
    std::signal(SIGVTALRM, onTooSlow);
    for (std::string line; std::getline(std::cin, line);) {
        setLimit(10);
        const std::string text = answer(line).dump();
        setLimit(0);
        std::cout << text << std::endl;
    }
    return 0;
}
