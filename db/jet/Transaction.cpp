#include "db/jet/Transaction.h"

#include "PageFile.h"
#include "db/jet/Database.h"

namespace vl::jet {

Transaction::Transaction(Database& db) : Transaction(*db.file_) {}

Transaction::Transaction(PageFile& file) : file_(file) { file_.begin(); }

Transaction::~Transaction() { file_.rollback(); }

void Transaction::commit() { file_.commit(); }

}  // namespace vl::jet
