// How a database is opened, where the usual does not do.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "db/jet/File.h"
#include "db/jet/Waiter.h"

namespace vl::jet {

class PageDigests;

/// What is pointed to must outlive the database.
struct OpenOptions {
    /// The longest waiting for others, in one statement: a command's. A timer has less.
    std::chrono::milliseconds patience{5000};
    Waiter* waiter = &systemWaiter();
    /// So many changed pages are kept in memory (8 MiB); a statement that changes more has them
    /// written early, and keeps readers out from then on.
    std::size_t mostChangedPages = 2048;
    FileSystem* files = &systemFiles();
    /// A change that was broken off is taken back in the file. Else the file stays as it is, and
    /// who reads it is given what it held before.
    bool takesBack = true;
    /// Where digests of pages are kept beyond the closing of the file; null: nowhere.
    std::shared_ptr<PageDigests> digests = nullptr;
};

}  // namespace vl::jet
