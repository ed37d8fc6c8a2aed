#include <istream>
#include <ostream>

#include "Command.h"
#include "Format.h"
#include "Input.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"

namespace vl::tools {

namespace {

Json propertyJson(const Variant& value);

// As a user types it. The short form of an offset that no unit says whole means another one:
// such an offset is given in minutes.
std::string typed(const clsReminder& reminder) {
    std::string text = reminder.ToText(true, true);
    clsReminder read;
    read.FromText(text);
    if (read.Minutes != reminder.Minutes) {
        const bool mail = text::equalsNoCase(reminder.Method, "email");
        text = std::to_string(reminder.Minutes) + (mail ? "m (e)" : "m");
    }
    return text;
}

// Reminders as a user types them, dates as they are.
Json collectionJson(const GenCollection& collection) {
    Json items = Json::array();
    for (const Variant& item : collection) {
        const auto reminder = objectIn<clsReminder>(item);
        items.push_back(reminder ? Json(typed(*reminder)) : propertyJson(item));
    }
    return items;
}

Json propertyJson(const Variant& value) {
    if (const auto collection = objectIn<GenCollection>(value)) {
        return collectionJson(*collection);
    }
    if (const auto* date = value.get<DateTime>()) {
        return date->isZero() ? Json() : Json(wallText(*date));
    }
    if (const auto* flag = value.get<bool>()) {
        return *flag;
    }
    if (const auto* number = value.get<std::int32_t>()) {
        return *number;
    }
    if (const auto* text = value.get<std::string>()) {
        return *text;
    }
    return nullptr;
}

Json propertiesJson(const calEvent& event) {
    Json object = Json::object();
    for (const EventProperty& property : calEvent::properties()) {
        object[std::string(property.name)] = propertyJson(event.property(property));
    }
    return object;
}

calEvent eventOf(const Json& resource) {
    if (!resource.is_object()) {
        throw Error(ErrNo::TypeMismatch, "an event is a JSON object");
    }
    calEvent event;
    event.LoadJSON(resource);
    event.LoadRecurrence();
    event.SetRemindersCol();
    return event;
}

int run(const Arguments& arguments, const Streams& streams) {
    Input input(arguments, streams);
    std::istream& in = input.stream();
    while ((in >> std::ws).peek() != std::istream::traits_type::eof()) {
        Json resource;
        try {
            in >> resource;
        } catch (const Json::exception& e) {
            throw Error(ErrNo::Syntax, std::string("the event is no JSON: ") + e.what());
        }
        const calEvent event = eventOf(resource);
        streams.out << lineOf(arguments.flag("--save") ? event.SaveJSON() : propertiesJson(event))
                    << '\n';
    }
    return kDone;
}

}  // namespace

Command eventCommand() {
    return {.name = "event",
            .synopsis = "[FILE] [--save]",
            .description =
                "reads event resources of a calendar service (JSON) and prints each\n"
                "one's properties as an object in a line; with --save the resource\n"
                "that the event is written back as",
            .fewestWords = 0,
            .mostWords = 1,
            .words = "one file at most",
            .flags = {"--save"},
            .options = {},
            .run = run};
}

}  // namespace vl::tools
