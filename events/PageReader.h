// Decodes the rows of a table's pages for a full read.
#pragma once

#include <memory>

#include "FullRead.h"
#include "PassedOverRow.h"
#include "RowReader.h"

namespace vl {

/// For one pass over the rows of `stream`. What it is given must outlive it.
class FullRead::PageReader {
public:
    PageReader(FullRead& owner, sql::RowStream& stream, const GenCollection& before,
               const Make& make);

    /// All rows of the page that the stream has come to. `known`: what that page gave the last
    /// time, or null. Throws `Error`.
    Page read(const PageRows* known);

    /// What can be read of the stream's current row, into `page`. Counts in the owner's damage.
    /// Throws every `Error` but `ErrNo::Corrupt`.
    void readDamaged(const PageRows* known, PageRows& page);

    /// Adds the event of a row to the others of its page.
    static void add(PageRows& page, std::shared_ptr<calEvent> event, std::uint16_t slot);

private:
    PageRows taken();
    std::shared_ptr<calEvent> made();
    void passOver(const PageRows* known, PageRows& page);
    bool stays(const PageRows* known, PageRows& page);
    std::shared_ptr<calEvent> openAgain();
    void takeReadable(const PageRows* known, PageRows& page);
    std::shared_ptr<calEvent> bestOf(std::shared_ptr<calEvent> event, bool isWhole);

    FullRead& owner_;
    sql::RowStream& stream_;
    const GenCollection& before_;
    const Make& make_;
    TimeZone local_;
    RowReader reader_;
    ReplacedIn exceptions_;
    FinishedIn finished_;
    PageRows found_;  // on the page that is read
};

}  // namespace vl
