// What commands share with the program: what it has noted, and how its user has set it.
#pragma once

#include <string>

#include "Command.h"

namespace vl::tools {

/// The ledger that `--ledger` names, else the program's own.
std::string ledgerPath(const Arguments& arguments);

/// The user's "DefaultReminders", as the program reads it: from the settings file that `--settings`
/// names, else from the program's own. Empty where there is none.
std::string defaultReminders(const Arguments& arguments);

}  // namespace vl::tools
