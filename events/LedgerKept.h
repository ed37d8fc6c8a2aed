// What of the ledger is kept when its file is written anew.
#pragma once

#include <string>
#include <unordered_set>

#include "LedgerLines.h"

namespace vl::ledger {

/// `EventState::openSince` once what is too old at `now` has left: what was dealt with must not be
/// asked for again when nothing is known of it any more.
DateTime openSinceAt(const EventState& state, DateTime now);

/// The lines of what is kept at `now`; 0: everything. An occurrence leaves some months after it is
/// over and its last reminder has come, unless it is snoozed or is what stands in the list; what is
/// known of its event leaves with the last one, unless the row alone would bring something back. A
/// start that an exception has taken over stays as long as what that has ended.
std::string keptLines(const Content& content, DateTime now);

/// What was `known` and has left the file since for being too old, since another copy of the
/// program has written it anew, is put into `fresh`, what the file says: a run that has begun
/// earlier may still ask for times of then. Only what silences something, so that nothing comes
/// back that the other copy has ended. Returns the keys of the events of which more is known than
/// the file says.
std::unordered_set<std::string> keepWhatLeft(Content& fresh, const Content& known, DateTime now);

}  // namespace vl::ledger
