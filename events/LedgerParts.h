// What the parts of the ledger share.
#pragma once

#include "LedgerKept.h"
#include "LedgerLines.h"
#include "events/Ledger.h"

namespace vl {

struct Ledger::Content : ledger::Content {};

}  // namespace vl
