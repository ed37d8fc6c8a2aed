// Reading a file of which others may write: what is read belongs together.
#pragma once

#include <utility>

#include "base/ErrorState.h"

namespace vl::jet {

class Database;
class PageFile;

/// As long as it lives no other copy of this program writes to the file: what is read under it is
/// one state. Costs a few system calls; guards nest, and a cursor has one of its own. Other
/// engines are not kept out, that would disturb them; `disturbed` tells when one of them wrote.
/// The `Database` must outlive it.
class ReadGuard {
public:
    /// Throws `Error`: `ErrNo::Locked` when somebody writes for longer than we wait, `ErrNo::Io`,
    /// also when the file was removed or replaced since it was opened.
    explicit ReadGuard(const Database& db);
    explicit ReadGuard(PageFile& file);
    ReadGuard(const ReadGuard&) = delete;
    ReadGuard& operator=(const ReadGuard&) = delete;
    ~ReadGuard();

    /// Whether somebody has written since the guard was made. False while there are other guards,
    /// or a transaction: who made the outermost one asks.
    bool disturbed() const;

private:
    PageFile& file_;
};

/// What `step` gives, run under a guard: once as a rule, and again, with what it gave or threw
/// forgotten, when another engine wrote meanwhile. Against one who writes without end it is given
/// what the last of three readings gave. `step` runs alone when a guard is there already.
template <class Step>
auto readWhole(const Database& db, Step&& step) {
    constexpr int kMostReadings = 3;
    for (int reading = 1;; ++reading) {
        const ReadGuard guard(db);
        try {
            auto result = step();
            if (reading == kMostReadings || !guard.disturbed()) {
                return result;
            }
        } catch (const Error&) {
            if (reading == kMostReadings || !guard.disturbed()) {
                throw;
            }
        }
    }
}

}  // namespace vl::jet
