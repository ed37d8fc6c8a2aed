// A script of statements that write, and what the file holds after each.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "MemoryFolder.h"
#include "db/jet/Database.h"

namespace vl::test {

inline constexpr const char* kDatabase = "folder/reminders.RemindDB";

/// One change, whole or not at all.
struct Statement {
    const char* what;
    std::function<void(jet::Database&)> run;
    /// The database is closed before and opened anew.
    bool opensAnew = false;
};

/// Changes of all kinds: one page and many, growing, with pages written early, taken back.
const std::vector<Statement>& statements();

/// Few pages are kept in memory, so that the larger ones of the statements are written early;
/// nobody waits.
jet::OpenOptions fewPages(MemoryFolder& folder);

/// Runs them from `first` on, until one fails or all are done; `done` counts those that ended. What
/// the file holds after each goes to `images`, when asked for. Throws what a statement throws.
void runStatements(MemoryFolder& folder, std::size_t first, std::size_t& done,
                   std::vector<std::string>* images = nullptr);

/// What a program that died in the middle of a statement has left: pages of the file half written,
/// and the journal that tells what they held.
std::unique_ptr<MemoryFolder> brokenOff();

/// A failure of the test where the check finds something in the file.
void expectSound(const std::string& bytes);

}  // namespace vl::test
