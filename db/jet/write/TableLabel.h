// What errors about a table's rows begin with.
#pragma once

#include <string>

#include "PageFile.h"
#include "TableDefinition.h"
#include "base/ErrorState.h"

namespace vl::jet {

/// The file and the table.
inline std::string tableLabel(const PageFile& file, const TableDefinition& table) {
    return file.name() + ": table \"" + table.name + "\"";
}

/// Runs `step`; an error that is not damage gets what `where` gives before its text.
template <class Where, class Step>
auto labelled(Where&& where, Step&& step) {
    try {
        return step();
    } catch (const Error& e) {
        if (e.number() == ErrNo::Corrupt || e.number() == ErrNo::Io) {
            throw;
        }
        throw Error(e.number(), where() + ": " + e.what());
    }
}

}  // namespace vl::jet
