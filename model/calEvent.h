// One event of the reminders database, its reminders and its occurrences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "app/TimeZone.h"
#include "base/DateTime.h"
#include "base/ErrorState.h"
#include "base/SharedText.h"
#include "base/Variant.h"

namespace vl {

class Clock;
class DBRemindUtils;
class GenCollection;
class RecordSet;
class Recurrence;
class RecurrenceText;
struct EventProperty;

/// How dates and times are said in texts: the window says "Today", a test the plain date.
struct DateWords {
    std::function<std::string(DateTime)> date;  ///< the day, without its time
    std::function<std::string(DateTime)> time;  ///< the time of day, without its day
};

/// A row of `Reminders` and what the program knows of it beyond the row.
///
/// The 63 properties are public, in the order of their numbers, and are reached by name through one
/// table (`properties`). Times are local; 0 is no date. An all-day event holds midnights, its
/// `EndDateTime` being the last day itself.
///
/// `property`, `setProperty` and the JSON and time helpers below them are engines and throw. All
/// other methods are procedures of the program: they never throw, carry on after a failing step
/// and leave the pending error as it was.
///
/// A copy has the same values. It shares the texts, the collections and the compiled recurrence,
/// which nobody changes in place: `SetRemindersCol` and `LoadRecurrence` put new ones.
class calEvent : public Object {
public:
    DateTime BeforeMoveStartDateTime;
    SharedText Body;
    std::int32_t BusyStatus = 0;
    DateTime Created;
    SharedText CustomPropertiesXMLData;
    std::int32_t DateID = 0;
    DateTime EndDateTime;
    std::int32_t EventID = 0;
    std::int32_t FieldID = 0;
    SharedText GUID;
    SharedText VLBase;
    std::int32_t ImportanceLevel = 0;
    bool IsAllDayEvent = false;
    bool IsUnScheduled = false;
    bool IsAllLoaded = false;
    std::int32_t ISRecurrenceExceptionDeleted = 0;
    std::int32_t ItemID = 0;
    std::int32_t LabelID = 0;
    SharedText Location;
    DateTime Modified;
    DateTime RExceptionEndTimeOrig;
    DateTime RExceptionStartTimeOrig;
    std::int32_t RecurrencePatternID = 0;
    std::int32_t RecurrenceState = 0;  ///< 0 single, 1 master of a series, 3 exception to one
    SharedText RemainderSoundFile;
    std::int32_t ReminderMinutesBeforeStart = 0;
    std::int32_t ShowItemDuration = 0;
    DateTime StartDateTime;
    SharedText Subject;
    SharedText etag;
    SharedText id;
    SharedText Color;
    SharedText iCalUID;
    SharedText recurrence;  ///< JSON array of "RRULE:", "EXDATE", "RDATE" lines
    SharedText recurringEventId;
    SharedText CalendarID;
    SharedText JSON;
    SharedText reminders;  ///< JSON object: "useDefault", "overrides"
    bool ReadOnly = false;
    SharedText status;
    bool deleted = false;
    bool bModified = false;
    DateTime dLastReminder;
    DateTime NextReminder;
    DateTime Dismissed;
    bool Hidden = false;
    std::int32_t iRemMinutes = 0;      ///< before `InstanceStart`; `kNoReminder` when there is none
    std::int32_t iRemMinutesNext = 0;  ///< of the reminder after it; `kNoReminder` likewise
    std::int32_t MasterEventID = 0;
    std::shared_ptr<GenCollection> RepDates;
    std::shared_ptr<GenCollection> ExDates;
    std::shared_ptr<GenCollection> RDates;
    SharedText RRULE;  ///< kept also when it cannot be used: not empty makes a series
    DateTime InstanceStart;
    DateTime NextInstanceStart;
    std::shared_ptr<GenCollection> RemindersCol;  ///< of `clsReminder`, ascending by `Minutes`
    std::int32_t RemindersMinOffsetMin = 0;
    std::int32_t RemindersMaxOffsetMin = 0;
    bool isRecurrenceLoaded = false;
    SharedText FieldName;
    bool AllRemindersDone = false;
    bool isNewException = false;
    std::int32_t exEID = 0;

    /// Beside the properties: the time of the reminder that a query recorded, to the second. It is
    /// heeded while it agrees with `InstanceStart` and `iRemMinutes`.
    DateTime dReminder;

    // ---- by name (calEventProperties.cpp)

    /// All 63, in their order.
    static std::span<const EventProperty> properties() noexcept;

    /// Without regard to case; null when there is no such property. Constant time, allocates
    /// nothing for names in ASCII. Who copies many rows keeps the result.
    static const EventProperty* findProperty(std::string_view name);

    /// Throws `Error` (`ErrNo::NotFound`). A collection comes as a reference, null when absent.
    Variant property(std::string_view name) const;
    Variant property(const EventProperty& property) const;

    /// Converts the value to the property's type. Throws `Error` (`ErrNo::NotFound` for an unknown
    /// name, `TypeMismatch` or `Overflow` for a value that has no such form, null always); the
    /// event is then unchanged. Null from a database is the caller's to replace.
    void setProperty(std::string_view name, const Variant& value);
    void setProperty(const EventProperty& property, const Variant& value);

    /// Whether all properties that are columns of the table are equal.
    bool sameRow(const calEvent& other) const;

    // ---- JSON (calEventJson.cpp)

    /// Fills the event from an event resource of the calendar service. Members that are absent give
    /// empty texts and dates; a time that cannot be read leaves its property. `RRULE` and what
    /// `LoadRecurrence` made stay as they are. Always false.
    bool LoadJSON(const nlohmann::ordered_json& jsEvent);

    /// The event as such a resource. "recurrence" is only there when `RRULE` is not empty, with the
    /// lines of `recurrence`. What cannot be written is missing.
    nlohmann::ordered_json SaveJSON() const;

    // ---- reminders of the instance at `InstanceStart` (calEventReminders.cpp)

    static constexpr std::int32_t kNoReminder = -100000;
    static constexpr std::int32_t kNoNextReminder = 10000000;
    static constexpr std::int32_t kNoPrevReminder = -10000000;

    /// Builds `RemindersCol` and both limits from `reminders`. With "useDefault" true the event has
    /// one pop-up at `ReminderMinutesBeforeStart`, when that is greater than 0, else those of
    /// `defaultReminders`: short texts parted by commas ("15m, 1d (e)").
    void SetRemindersCol(std::string_view defaultReminders = "");

    // Offsets are minutes after `InstanceStart`, so the sign is the other way round from `Minutes`.
    std::int32_t FirstReminder() const;  ///< of the earliest; 0 without reminders
    std::int32_t LastReminder() const;   ///< of the latest; 0 without reminders
    DateTime FirstReminderD() const;
    DateTime LastReminderD() const;

    /// The earliest reminder later than the minute of `dDate`; `kNoNextReminder`, or no date.
    std::int32_t GetNextReminder(DateTime dDate) const;
    DateTime NextReminderD(DateTime dDate) const;

    /// The latest reminder not later than the minute of `dDate`; `kNoPrevReminder` when all are
    /// still ahead, and then the date is that of the first. A stored `NextReminder` takes the
    /// date's place when it lies between it and `now`.
    std::int32_t PrevReminder(DateTime dDate) const;
    DateTime PrevReminderD(DateTime dDate, DateTime now) const;
    DateTime PrevReminderD(DateTime dDate, const Clock& clock) const;

    /// The earliest reminder later than `InstanceStart`; no date when there is none.
    DateTime FirstReminderAfterEventStart() const;

    /// The time of the reminder that a query recorded; no date when it recorded none.
    DateTime RecordedReminderD() const;

    /// A timed event that is not unscheduled.
    bool isScheduled() const { return !IsAllDayEvent && !IsUnScheduled; }

    // ---- single columns of the event's row (calEventDatabase.cpp)

    /// Each writes the property of its name into the row with the event's `GUID`, and nothing
    /// without one. The property keeps its value whatever happened to the row. Returns the number
    /// of rows written; why there is none `DBRemindUtils::LastError` tells. With `GUIDs` the rows
    /// of these get the value, and no other, by one statement: some hundreds at most.
    std::int64_t SaveStatusDB(DBRemindUtils& db, std::span<const std::string> GUIDs = {}) const;
    std::int64_t SaveNextReminderDB(DBRemindUtils& db,
                                    std::span<const std::string> GUIDs = {}) const;
    std::int64_t SaveHiddenDB(DBRemindUtils& db, std::span<const std::string> GUIDs = {}) const;
    std::int64_t SaveDismissedDB(DBRemindUtils& db, std::span<const std::string> GUIDs = {}) const;

    /// Does nothing: the row is the host's to remove. Always false.
    static bool DeleteDB() noexcept { return false; }

    /// What became of an item that was to be deleted.
    enum class Deletion {
        Gone,   ///< or there is no such file, or it is no database: nothing is left to delete
        Waits,  ///< others hold the file, or it cannot be read or written now
        Failed  ///< for good: the host's file cannot be changed in this way, or not be opened
    };
    /// Removes the event's row and its item's from the host's database, which `VLBase` names.
    Deletion DeleteItem() const;

    /// The name of the host's field `FieldID`, also put into `FieldName`; empty when it cannot be
    /// found out.
    std::string GetFieldName();

    /// Copies the properties of `E`, or of this event without one, into the current row of `R`, by
    /// the names of its fields; `EventID` stays as it is, and so does what has no property or takes
    /// no such value. Saving the row is the caller's. An event that does not end after its start
    /// is first made an hour long: this one, whatever `E` is. Always false.
    bool FillRS(RecordSet& R, const calEvent* E = nullptr);

    /// The statements of the writers above; empty without a `GUID`. `status` and `GUID` are not
    /// escaped: with a double quote in it a statement is broken, and fails. `GUIDs` are.
    std::string StatusStatement(std::span<const std::string> GUIDs = {}) const;
    std::string NextReminderStatement(std::span<const std::string> GUIDs = {}) const;
    std::string HiddenStatement(std::span<const std::string> GUIDs = {}) const;
    std::string DismissedStatement(std::span<const std::string> GUIDs = {}) const;

    // ---- occurrences (calEventRecurrence.cpp)

    /// Compiles `recurrence` into `RRULE`, `ExDates` and `RDates`; the series runs on the wall
    /// clock of the zone its `JSON` names. With an empty `recurrence` it only clears. `local` is
    /// the zone of the event's own times; asking the system for it costs more than most rules, so
    /// who loads many events asks once.
    void LoadRecurrence(const TimeZone& local);
    void LoadRecurrence();
    /// The same for who has read `recurrence` already, maybe of another event.
    void LoadRecurrence(const TimeZone& local, const RecurrenceText& text);

    /// A usable rule or added dates.
    bool IsRepeating() const;
    bool IsException() const { return RecurrenceState == 3; }

    /// Starts of the occurrences in [`dStart`, `dEnd`], both ends included, ascending, the first
    /// `iMax` of them. An event that does not repeat has one: its own start.
    std::vector<DateTime> ICalRecEvents(DateTime dStart, DateTime dEnd,
                                        std::size_t iMax = SIZE_MAX) const;

    /// `dates` without those that the series excludes. What `ICalRecEvents` gives has none.
    std::vector<DateTime> ICalDelExceptions(std::vector<DateTime> dates) const;

    DateTime NextInstance(DateTime dCurrent) const;      ///< strictly after; 0: none
    DateTime PreviousInstance(DateTime dCurrent) const;  ///< the last strictly before; 0: none
    DateTime LastInstance() const;                       ///< 0: endless, or none is left

    /// Whether the series excludes the occurrence at `start` (EXDATE).
    bool IsExcluded(DateTime start) const;

    /// When the occurrence at `start` is over: of an all-day event the midnight after its last day.
    DateTime EndOf(DateTime start) const;

    /// A local time on the wall clock of the zone that the event's `JSON` names, and back; without
    /// such a zone, and all day, the time itself. By its wall time an occurrence is known wherever
    /// the computer is. Of an event that is no series the text is looked through each time.
    DateTime ToWall(DateTime local) const;
    DateTime FromWall(DateTime wall) const;
    /// The same for times of which two must never be one, in UTC where the event has a zone; of a
    /// time that clocks skip when they do. Between two lies the same time wherever one is.
    DateTime ToMoment(DateTime local) const;
    DateTime FromMoment(DateTime moment) const;
    bool HasOwnZone() const;

    /// "Every 2 weeks on Monday"; empty when the event does not repeat.
    std::string RecurrenceInWords() const;

    // ---- texts (calEventTexts.cpp)

    const SharedText& Summary() const { return Subject; }

    /// Days, with fraction.
    double Duration() const;

    /// The reminder that a query recorded, in words; "snoozed" when the event has none at that
    /// time; empty when none was recorded.
    std::string ReminderText() const;

    /// All reminders in words: "10 minutes, 1 day (email)".
    std::string RemindersText() const;

    /// Plain text, a line each: summary, when, where, all reminders, recurrence, source file; what
    /// is empty has no line. `RepDate` is the start of the occurrence that is meant; with 0 it is
    /// `InstanceStart`, else the event's own start.
    std::string ToolTip(DateTime RepDate, const DateWords& words) const;

    /// One line: "Project meeting, Today 14:45-15:30, Room 2, Every week on Monday".
    std::string SBMessage(DateTime RepDate, const DateWords& words) const;

    /// When the occurrence at `RepDate` is (as in `ToolTip`): "Today 14:45-15:30", "Mon 23 Nov".
    std::string WhenText(DateTime RepDate, const DateWords& words) const;

private:
    std::string zoneName() const;
    std::optional<TimeZone> zoneOfOne() const;

    std::shared_ptr<const Recurrence> compiled_;  // null: does not repeat, or not loaded
};

/// One row of the table of properties.
struct EventProperty {
    using Member = std::variant<bool calEvent::*, std::int32_t calEvent::*, DateTime calEvent::*,
                                SharedText calEvent::*, std::shared_ptr<GenCollection> calEvent::*>;
    int number;
    std::string_view name;
    Member member;          ///< its alternative is the property's type
    std::string_view json;  ///< member of the event resource that it is read from as it stands

    /// Whether the table `Reminders` has a column of this name.
    bool isColumn() const noexcept { return number <= 42 || (number >= 44 && number <= 46); }
};

}  // namespace vl
