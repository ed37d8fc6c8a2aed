// CREATE, ALTER and DROP on a file.
#pragma once

#include "Ast.h"
#include "db/jet/Database.h"

namespace vl::sql {

// Each is part of the open transaction. Throws as `execute`: the statement's own mistakes name
// their place, those that only the file shows come as the file engine says them.

void define(const CreateTable& statement, jet::Database& db);
void define(const AddColumn& statement, jet::Database& db);
void define(const CreateIndex& statement, jet::Database& db);
void define(const DropTable& statement, jet::Database& db);
void define(const DropIndex& statement, jet::Database& db);

}  // namespace vl::sql
