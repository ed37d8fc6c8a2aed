// What the checks, the menu and the window share.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>

#include "base/DateTime.h"
#include "events/GenCollection.h"
#include "model/calEvent.h"
#include "notify/RowOccurrence.h"

namespace vl {

/// By the column's identifier, in pixels.
using ColumnWidths = std::map<std::string, int>;

/// The public state of the reminder window, in the order in which the window declares it. Before it
/// stand the two pictures (`frmDDE::Pic1`), after it the identifiers of the columns
/// (`ui/GridColumns.h`). One object for the program, made at start and handed down by reference.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): one object, read in this order
struct ReminderState {
    bool bMuted = false;           // neither sound nor notification
    bool bSilent = false;          // no sound
    std::string sNotifType = "D";  // D dialog, E e-mail, P pop-up, S system, T tray
    bool bOnTop = false;
    DateTime dLastShown;    // when the pop-up was last closed
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

    /// Where each period stands in the list, from 1, by its code. Filled by the load handler.
    std::shared_ptr<GenCollection> ListIndexCol = std::make_shared<GenCollection>();

    /// The `GUID`s of the hidden events, each under itself: what the views leave out, and what the
    /// view of hidden events lists. Made when a view is made of a set that has changed; an act
    /// brings in what it hides and takes out what it shows again.
    std::shared_ptr<GenCollection> HiddenGUIDColR = std::make_shared<GenCollection>();

    /// By `GUID`: which events the check knows to be listed as new. Rebuilt from `NewReminders` at
    /// the end of each check that found something.
    std::shared_ptr<GenCollection> LastEventsReminded = std::make_shared<GenCollection>();

    double OneMin = 0;  // a minute in days; set by the load handler

    /// Of the columns as they are shown, of hidden ones as they were: those of the two grids of
    /// reminders, those of the grid of events. Empty until the window's controls are made.
    std::array<ColumnWidths, 2> WidthsR;
    ColumnWidths WidthsE;

    /// Turned since the grid was last scrolled, in eighths of a degree.
    int iWheelRotationX = 0;
    int iWheelRotationY = 0;
    /// Names of the requests that wait for the actions timer, each once.
    std::shared_ptr<GenCollection> pendingActions = std::make_shared<GenCollection>();

    /// The event of the current row of the selected tab, null when there is none; and which of its
    /// occurrences and reminders the row is about.
    std::shared_ptr<calEvent> curEvent;
    RowOccurrence curReminder;

    bool bIsDismiss = true;  // the button dismisses; false: it reactivates

    // ---- beside these

    DateTime CheckDay;  // the day of the first check; never advanced

    /// The events listed as new, by `GUID`.
    std::shared_ptr<GenCollection> NewReminders = std::make_shared<GenCollection>();

    int UpdateCount = 0;  // ticks of the update timer with the window visible

    int rowsWithoutStatus = 0;  // rows that are never read, see the status line
    int damagedRows = 0;        // rows that the file has lost, or parts of
    int waitingWrites = 0;      // columns of rows that cannot be written now and will be later

    /// The current row has gone, or what it was about was dealt with.
    void releaseCurrent() {
        curEvent.reset();
        curReminder = {};
    }
};

}  // namespace vl
