// The table `Reminders` of a new database.
#pragma once

#include <string>
#include <vector>

#include "db/jet/Database.h"

namespace vl {

// A host's own file may have fewer columns or more, and other indexes: the program relies on none
// but `GUID`.

/// A column for each property of an event that is one, under its name.
std::vector<jet::NewColumn> remindersColumns();

/// The primary key on `GUID`; indexes on `id`, `VLBase` and `Modified`.
std::vector<jet::NewIndex> remindersIndexes();

/// Makes a new file with the empty table: the template database. Throws `Error` as
/// `jet::Database::create` does; then there is no file.
void makeRemindersDatabase(const std::string& path);

}  // namespace vl
