// CREATE, ALTER and DROP on a file.
#pragma once

#include "Ast.h"
#include "db/jet/Database.h"

namespace vl::sql {

// Each is part of the open transaction, and says what it has done: "table T was made". Throws as
// `execute`: the statement's own mistakes name their place, those that only the file shows come as
// the file engine says them.

std::string define(const CreateTable& statement, jet::Database& db);
std::string define(const AddColumn& statement, jet::Database& db);
std::string define(const CreateIndex& statement, jet::Database& db);
std::string define(const DropTable& statement, jet::Database& db);
std::string define(const DropIndex& statement, jet::Database& db);

}  // namespace vl::sql
