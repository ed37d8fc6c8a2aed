#include "db/jet/ReadGuard.h"

#include "PageFile.h"
#include "db/jet/Database.h"

namespace vl::jet {

ReadGuard::ReadGuard(const Database& db) : ReadGuard(*db.file_) {}

ReadGuard::ReadGuard(PageFile& file) : file_(file) { file_.beginReading(); }

ReadGuard::~ReadGuard() { file_.endReading(); }

bool ReadGuard::disturbed() const { return file_.disturbed(); }

}  // namespace vl::jet
