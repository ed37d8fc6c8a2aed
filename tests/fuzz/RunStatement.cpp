#include <cstdlib>
#include <iostream>
#include <string>

#include "Inputs.h"
#include "base/ErrorState.h"
#include "db/jet/MemoryFile.h"
#include "db/sql/Sql.h"
#include "support/Support.h"

namespace vl::test {

void runStatement(std::span<const std::byte> input) {
    static const std::string kFile = readFile(repoFile("data/first-light.RemindDB"));
    const std::string statement(reinterpret_cast<const char*>(input.data()), input.size());
    Disk disk(kFile);
    jet::Database db = openMemory(disk, jet::Access::ReadWrite);
    try {
        sql::isQuery(statement);
        sql::execute(db, statement);
    } catch (const Error& e) {
        // The file is sound and takes every write: all that can be wrong is the statement.
        if (e.number() == ErrNo::Corrupt || e.number() == ErrNo::Io ||
            e.number() == ErrNo::Format || e.number() == ErrNo::Unexpected) {
            std::cerr << "unfitting error: " << e.what() << '\n';
            std::abort();
        }
    }
}

}  // namespace vl::test
