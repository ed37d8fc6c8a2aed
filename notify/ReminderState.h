// What the checks, the menu and the window share.
#pragma once

#include <memory>
#include <string>

#include "base/DateTime.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"

namespace vl {

/// The state of the reminder window that is no matter of the screen, in the order in which the
/// window declares it. One object for the program, made at start and handed down by reference.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): one object, read in this order
struct ReminderState {
    bool bMuted = false;           // neither sound nor notification
    bool bSilent = false;          // no sound
    std::string sNotifType = "D";  // D dialog, E e-mail, P pop-up, S system, T tray
    bool bOnTop = false;
    DateTime dLastShown;    // when the pop-up was last closed
    DateTime CheckDay;      // the day of the first check; never advanced
    DateTime dLastUpdated;  // end of the last check; 0 until the first, which starts at midnight
    DateTime dShownStart;   // the period shown by the views
    DateTime dShownEnd;
    DateTime dLastReminder;  // when a reminder was last taken into the new-reminders list
    bool bInTimerCheck = false;

    /// What the latest check took in: by `GUID` a `ValueList` of summary and reminder line.
    std::shared_ptr<GenCollection> EvCol = std::make_shared<GenCollection>();

    bool bHasFocus = false;  // as the last look found it: visible and in the foreground
    int DBVersion = 0;
    std::string sPeriod = "T";
    DateTime CurrentDate;  // the day the views were made for

    /// The events listed as new, by `GUID`, and the index of them that the check asks. The index
    /// is rebuilt at the end of each check that found something.
    std::shared_ptr<GenCollection> NewReminders = std::make_shared<GenCollection>();
    std::shared_ptr<GenCollection> LastEventsReminded = std::make_shared<GenCollection>();

    double OneMin = 0;  // a minute in days; set by the load handler

    /// Turned since the grid was last scrolled, in eighths of a degree.
    int iWheelRotationX = 0;
    int iWheelRotationY = 0;
    /// Names of the requests that wait for the actions timer, each once.
    std::shared_ptr<GenCollection> pendingActions = std::make_shared<GenCollection>();

    int rowsWithoutStatus = 0;  // rows that are never read, see the status line

    int damagedRows = 0;  // rows that the file has lost, or parts of

    int waitingWrites = 0;  // columns of rows that cannot be written now and will be later

    int UpdateCount = 0;  // ticks of the update timer with the window visible

    /// The event of the current row of the selected tab; null when there is none.
    std::shared_ptr<calEvent> curEvent;

    bool bIsDismiss = true;  // the button dismisses; false: it reactivates
};

}  // namespace vl
