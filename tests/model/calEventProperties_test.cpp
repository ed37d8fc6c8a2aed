#include <cctype>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "model/clsReminder.h"

namespace vl {
namespace {

enum Type { Bool, Int, Date, Text, List };

struct Named {
    const char* name;
    Type type;
};

constexpr Named kInOrder[] = {
    {"BeforeMoveStartDateTime", Date},
    {"Body", Text},
    {"BusyStatus", Int},
    {"Created", Date},
    {"CustomPropertiesXMLData", Text},
    {"DateID", Int},
    {"EndDateTime", Date},
    {"EventID", Int},
    {"FieldID", Int},
    {"GUID", Text},
    {"VLBase", Text},
    {"ImportanceLevel", Int},
    {"IsAllDayEvent", Bool},
    {"IsUnScheduled", Bool},
    {"IsAllLoaded", Bool},
    {"ISRecurrenceExceptionDeleted", Int},
    {"ItemID", Int},
    {"LabelID", Int},
    {"Location", Text},
    {"Modified", Date},
    {"RExceptionEndTimeOrig", Date},
    {"RExceptionStartTimeOrig", Date},
    {"RecurrencePatternID", Int},
    {"RecurrenceState", Int},
    {"RemainderSoundFile", Text},
    {"ReminderMinutesBeforeStart", Int},
    {"ShowItemDuration", Int},
    {"StartDateTime", Date},
    {"Subject", Text},
    {"etag", Text},
    {"id", Text},
    {"Color", Text},
    {"iCalUID", Text},
    {"recurrence", Text},
    {"recurringEventId", Text},
    {"CalendarID", Text},
    {"JSON", Text},
    {"reminders", Text},
    {"ReadOnly", Bool},
    {"status", Text},
    {"deleted", Bool},
    {"bModified", Bool},
    {"dLastReminder", Date},
    {"NextReminder", Date},
    {"Dismissed", Date},
    {"Hidden", Bool},
    {"iRemMinutes", Int},
    {"iRemMinutesNext", Int},
    {"MasterEventID", Int},
    {"RepDates", List},
    {"ExDates", List},
    {"RDates", List},
    {"RRULE", Text},
    {"InstanceStart", Date},
    {"NextInstanceStart", Date},
    {"RemindersCol", List},
    {"RemindersMinOffsetMin", Int},
    {"RemindersMaxOffsetMin", Int},
    {"isRecurrenceLoaded", Bool},
    {"FieldName", Text},
    {"AllRemindersDone", Bool},
    {"isNewException", Bool},
    {"exEID", Int},
};

Type typeOf(const Variant& v) {
    return v.is<bool>()           ? Bool
           : v.is<std::int32_t>() ? Int
           : v.is<DateTime>()     ? Date
           : v.is<std::string>()  ? Text
                                  : List;
}

TEST(calEventProperties, AreSixtyThreeInTheirOrder) {
    ASSERT_EQ(calEvent::properties().size(), 63U);
    ASSERT_EQ(std::size(kInOrder), 63U);
    const calEvent event;
    for (std::size_t i = 0; i < 63; ++i) {
        SCOPED_TRACE(kInOrder[i].name);
        const EventProperty& p = calEvent::properties()[i];
        EXPECT_EQ(p.number, static_cast<int>(i) + 1);
        EXPECT_EQ(p.name, kInOrder[i].name);
        EXPECT_EQ(typeOf(event.property(p)), kInOrder[i].type);
        EXPECT_EQ(p.member.index(), static_cast<std::size_t>(kInOrder[i].type));
    }
}

TEST(calEventProperties, OfANewEventAreEmptyZeroFalseAndAbsent) {
    const calEvent event;
    for (const EventProperty& p : calEvent::properties()) {
        SCOPED_TRACE(p.name);
        const Variant value = event.property(p);
        switch (typeOf(value)) {
            case Bool:
                EXPECT_FALSE(*value.get<bool>());
                break;
            case Int:
                EXPECT_EQ(*value.get<std::int32_t>(), 0);
                break;
            case Date:
                EXPECT_TRUE(value.get<DateTime>()->isZero());
                break;
            case Text:
                EXPECT_EQ(*value.get<std::string>(), "");
                break;
            case List:
                ASSERT_NE(value.get<ObjectRef>(), nullptr);
                EXPECT_EQ(*value.get<ObjectRef>(), nullptr);
                break;
        }
    }
}

// A value of the property's type that no other property holds.
Variant valueFor(const EventProperty& p) {
    switch (p.member.index()) {
        case Bool:
            return true;
        case Int:
            return p.number + 1000;
        case Date:
            return DateTime::fromCivil(2026, 11, 20, 9, p.number % 60, p.number / 60);
        case Text:
            return "text of " + std::string(p.name);
        default: {
            auto list = std::make_shared<GenCollection>();
            list->Add(p.number);
            return ObjectRef(list);
        }
    }
}

calEvent filled() {
    calEvent event;
    for (const EventProperty& p : calEvent::properties()) {
        event.setProperty(p.name, valueFor(p));
    }
    return event;
}

TEST(calEventProperties, GiveBackWhatWasSetByName) {
    const calEvent event = filled();
    for (const EventProperty& p : calEvent::properties()) {
        SCOPED_TRACE(p.name);
        const Variant value = event.property(p.name);
        if (p.member.index() == List) {
            const auto list = std::dynamic_pointer_cast<GenCollection>(*value.get<ObjectRef>());
            ASSERT_NE(list, nullptr);
            EXPECT_EQ(list->Item(1), Variant(p.number));
        } else {
            EXPECT_EQ(value, valueFor(p));
        }
    }
    // The names reach the members of the same name.
    EXPECT_EQ(event.Subject, "text of Subject");
    EXPECT_EQ(event.id, "text of id");
    EXPECT_EQ(event.exEID, 1063);
    EXPECT_EQ(event.StartDateTime, DateTime::fromCivil(2026, 11, 20, 9, 28, 0));
    EXPECT_TRUE(event.isNewException);
    EXPECT_EQ(event.RemindersCol->Item(1), Variant(56));
}

TEST(calEventProperties, AreFoundWithoutRegardToCase) {
    const auto recase = [](std::string_view name, auto change) {
        std::string out(name);
        for (char& c : out) {
            c = static_cast<char>(change(static_cast<unsigned char>(c)));
        }
        return out;
    };
    for (const EventProperty& p : calEvent::properties()) {
        SCOPED_TRACE(p.name);
        EXPECT_EQ(calEvent::findProperty(p.name), &p);
        EXPECT_EQ(calEvent::findProperty(recase(p.name, ::toupper)), &p);
        EXPECT_EQ(calEvent::findProperty(recase(p.name, ::tolower)), &p);
    }
    calEvent event;
    event.setProperty("color", "#123456");
    EXPECT_EQ(event.Color, "#123456");
    event.setProperty("Status", "AllDone");
    EXPECT_EQ(event.status, "AllDone");
    event.setProperty("Deleted", true);
    EXPECT_TRUE(event.deleted);
    // U+017F, the long s, and U+212A, the sign for kelvin, are s and k but for their case.
    EXPECT_EQ(calEvent::findProperty("\xC5\xBFtatus"), calEvent::findProperty("status"));
}

TEST(calEventProperties, DoNotAnswerToOtherNames) {
    calEvent event;
    for (const char* name : {"", "Subjec", "Subject ", " Subject", "Subjects", "dReminder", "x",
                             "St\xC3\xA4tus", "\xFF", "kNoReminder", "mCol"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(calEvent::findProperty(name), nullptr);
        for (const bool writing : {false, true}) {
            try {
                if (writing) {
                    event.setProperty(name, 1);
                } else {
                    event.property(name);
                }
                ADD_FAILURE() << "no error";
            } catch (const Error& e) {
                EXPECT_EQ(e.number(), ErrNo::NotFound);
                EXPECT_NE(std::string(e.what()).find(name), std::string::npos);
            }
        }
    }
}

TEST(calEventProperties, ConvertWhatIsSetToTheirType) {
    calEvent event;
    event.setProperty("FieldID", "12");
    EXPECT_EQ(event.FieldID, 12);
    event.setProperty("FieldID", 2.5);
    EXPECT_EQ(event.FieldID, 2);
    event.setProperty("FieldID", true);
    EXPECT_EQ(event.FieldID, -1);
    event.setProperty("FieldID", Variant());
    EXPECT_EQ(event.FieldID, 0);
    event.setProperty("Hidden", 2);
    EXPECT_TRUE(event.Hidden);
    event.setProperty("Hidden", "0");
    EXPECT_FALSE(event.Hidden);
    event.setProperty("Hidden", "true");
    EXPECT_TRUE(event.Hidden);
    event.setProperty("NextReminder", 46346.5);
    EXPECT_EQ(event.NextReminder, DateTime(46346.5));
    event.setProperty("NextReminder", 0);
    EXPECT_TRUE(event.NextReminder.isZero());
    event.setProperty("NextReminder", "2026-11-20 09:30:00");
    EXPECT_EQ(event.NextReminder, DateTime::fromCivil(2026, 11, 20, 9, 30));
    event.setProperty("Subject", 15);
    EXPECT_EQ(event.Subject, "15");
    event.setProperty("RepDates", ObjectRef(std::make_shared<GenCollection>()));
    EXPECT_NE(event.RepDates, nullptr);
    event.setProperty("RepDates", ObjectRef());
    EXPECT_EQ(event.RepDates, nullptr);
}

TEST(calEventProperties, KeepTheirValueWhenANewOneDoesNotConvert) {
    const calEvent before = filled();
    const ObjectRef noList = std::make_shared<clsReminder>();
    struct Case {
        const char* name;
        Variant value;
        ErrNo error;
    };
    const std::vector<Case> cases = {
        {"FieldID", "twelve", ErrNo::TypeMismatch},
        {"FieldID", "", ErrNo::TypeMismatch},
        {"FieldID", 2147483648.0, ErrNo::Overflow},
        {"FieldID", std::int64_t{-2147483649}, ErrNo::Overflow},
        {"FieldID", Null{}, ErrNo::TypeMismatch},
        {"Hidden", "perhaps", ErrNo::TypeMismatch},
        {"Hidden", "", ErrNo::TypeMismatch},
        {"Hidden", Null{}, ErrNo::TypeMismatch},
        {"StartDateTime", "tomorrow", ErrNo::TypeMismatch},
        {"StartDateTime", "2026-02-30", ErrNo::TypeMismatch},
        {"StartDateTime", Null{}, ErrNo::TypeMismatch},
        {"Subject", Null{}, ErrNo::TypeMismatch},
        {"Subject", Bytes{std::byte{1}}, ErrNo::TypeMismatch},
        {"Subject", noList, ErrNo::TypeMismatch},
        {"RemindersCol", noList, ErrNo::TypeMismatch},
        {"RemindersCol", 1, ErrNo::TypeMismatch},
        {"RemindersCol", Null{}, ErrNo::TypeMismatch},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        calEvent event = before;
        try {
            event.setProperty(c.name, c.value);
            ADD_FAILURE() << "no error";
        } catch (const Error& e) {
            EXPECT_EQ(e.number(), c.error) << e.what();
        }
        for (const EventProperty& p : calEvent::properties()) {
            EXPECT_EQ(event.property(p), before.property(p)) << p.name;
        }
    }
}

TEST(calEventProperties, AreCopiedWithTheEvent) {
    calEvent event = filled();
    const calEvent copy = event;
    for (const EventProperty& p : calEvent::properties()) {
        EXPECT_EQ(copy.property(p), event.property(p)) << p.name;
    }
    // A new list for the one does not touch the other.
    event.reminders = R"({"useDefault":false,"overrides":[{"method":"popup","minutes":5}]})";
    event.SetRemindersCol();
    EXPECT_EQ(copy.RemindersCol->Item(1), Variant(56));
    EXPECT_EQ(event.RemindersCol->Count(), 1U);
}

TEST(calEventProperties, ThatAreColumnsDecideWhetherTheRowIsTheSame) {
    const calEvent event = filled();
    std::size_t columns = 0;
    for (const EventProperty& p : calEvent::properties()) {
        SCOPED_TRACE(p.name);
        calEvent other = event;
        EXPECT_TRUE(event.sameRow(other));
        const calEvent fresh;
        other.setProperty(p, fresh.property(p));
        EXPECT_EQ(event.sameRow(other), !p.isColumn());
        columns += p.isColumn() ? 1U : 0U;
    }
    EXPECT_EQ(columns, 45U);  // 1 to 42, NextReminder, Dismissed, Hidden
    EXPECT_FALSE(calEvent::findProperty("dLastReminder")->isColumn());
    EXPECT_TRUE(calEvent::findProperty("Hidden")->isColumn());
}

TEST(calEventProperties, AreModestInMemory) { EXPECT_LE(sizeof(calEvent), 1280U); }

}  // namespace
}  // namespace vl
