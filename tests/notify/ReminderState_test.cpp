#include "notify/ReminderState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace vl {
namespace {

TEST(ReminderState, IsDeclaredInItsOrder) {
    const ReminderState s;
    const void* const places[] = {&s.bMuted,          &s.bSilent,         &s.sNotifType,
                                  &s.bOnTop,          &s.dLastShown,      &s.dLastUpdated,
                                  &s.dShownStart,     &s.dShownEnd,       &s.dLastReminder,
                                  &s.bInTimerCheck,   &s.EvCol,           &s.bHasFocus,
                                  &s.DBVersion,       &s.sPeriod,         &s.CurrentDate,
                                  &s.ListIndexCol,    &s.HiddenGUIDColR,  &s.LastEventsReminded,
                                  &s.OneMin,          &s.WidthsR,         &s.WidthsE,
                                  &s.iWheelRotationX, &s.iWheelRotationY, &s.pendingActions,
                                  &s.curEvent,        &s.curReminder,     &s.bIsDismiss};
    EXPECT_TRUE(std::is_sorted(std::begin(places), std::end(places)));
}

TEST(ReminderState, TheCurrentEventAndItsReminderAreReleasedTogether) {
    ReminderState state;
    state.curEvent = std::make_shared<calEvent>();
    state.curReminder = {DateTime(46346.5), DateTime(46346.25)};
    state.releaseCurrent();
    EXPECT_EQ(state.curEvent, nullptr);
    EXPECT_EQ(state.curReminder, RowOccurrence());
}

}  // namespace
}  // namespace vl
