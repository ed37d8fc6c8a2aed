#include "RowBatch.h"

#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::jet {

void RowBatch::add(const std::vector<Variant>& values) {
    if (!change_) {
        change_ = std::make_unique<Transaction>(db_);
    }
    std::vector<Table::Change> changes;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!values[i].isNull()) {
            changes.emplace_back(i, values[i]);
        }
    }
    table_.insertCopy(changes);
    if (++rows_ == kMost) {
        finish();
    }
}

void RowBatch::finish() {
    if (change_) {
        change_->commit();
        change_.reset();
    }
    rows_ = 0;
}

PageNo definitionPageOf(const Database& db, std::string_view table) {
    for (const TableInfo& info : db.tables()) {
        if (text::equalsNoCase(info.name, table)) {
            return info.definitionPage;
        }
    }
    throw Error(ErrNo::NotFound, db.name() + ": there is no table \"" + std::string(table) + "\"");
}

}  // namespace vl::jet
