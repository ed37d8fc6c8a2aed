// A full read of the table that decodes only rows it does not know yet.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "TextPool.h"
#include "app/TimeZone.h"
#include "db/DBRemindUtils.h"
#include "events/Damage.h"
#include "events/GenCollection.h"
#include "events/LedgerState.h"
#include "model/calEvent.h"

namespace vl {

/// Remembers which pages of the table the last read found, and the events that their rows gave. A
/// page that holds what it held is passed by; of another all rows are decoded, and an event whose
/// row says what it said is the same object. Costs some 45 bytes an event.
class FullRead {
public:
    using Fill = std::function<void(calEvent&)>;
    /// A new event, filled by what it is given.
    using Make = std::function<std::shared_ptr<calEvent>(const Fill&)>;

    /// Reads all rows of `statement` into a new collection, by GUID, in the order of the rows; of
    /// rows with the same GUID the last one counts. `before` is what the set held. Null when the
    /// rows could not be read to their end: what that reading has met is good for nothing, and the
    /// next one takes every row's word.
    ///
    /// Where the table is damaged, what can be read of it counts: a row without the values that
    /// cannot be read, and of a row that cannot be read at all the event that it gave before.
    std::shared_ptr<GenCollection> read(DBRemindUtils& db, const std::string& statement,
                                        const GenCollection& before, DateTime openFrom,
                                        const Make& make);

    /// An exception that the condition of a statement passed over: it is finished or deleted, and
    /// `start` is no occurrence of its series all the same.
    struct PassedOver {
        SeriesName series;
        DateTime start;
    };
    /// Those that the last read has met, but for what earlier ones had met, once.
    std::vector<PassedOver> takePassedOver() { return std::exchange(passedOver_, {}); }

    /// Told of each event with the status "AllDone" that the condition passes over and that may
    /// have a reminder after `openFrom`: true takes it in all the same, without that status, and as
    /// long as its row is the same it stays. Events with none are not decoded, but for those in
    /// `asked` (by `guidHash`).
    using IsOpenAgain = std::function<bool(const calEvent&)>;
    void takeBack(IsOpenAgain isOpenAgain, std::unordered_set<std::uint64_t> asked = {}) {
        isOpenAgain_ = std::move(isOpenAgain);
        asked_ = std::move(asked);
    }
    /// The `GUID`s of those that the last read has taken in, once.
    std::vector<std::string> takeTakenBack() { return std::exchange(takenBack_, {}); }
    /// The next read looks at those again that the condition passed over.
    void forgetPassedOver();

    /// When the row of the last read was written that was written last.
    DateTime lastModified() const noexcept { return lastModified_; }

    /// What the last read could not read.
    const Damage& damage() const noexcept { return damage_; }

    /// An event that an earlier read gave has been changed in place: the next one takes its row's
    /// word.
    void look(const calEvent& event);
    /// The next read takes every row's word.
    void lookAtAll();
    /// Nothing of the sort has been said since the last read, and that was not disturbed: of a
    /// table that is as it was the next one gives the same.
    bool wouldGiveTheSame() const noexcept { return mayPassBy_ && touched_.empty(); }

    /// The same, and nothing is known of rows that cannot be read then.
    void forget();

    /// Where the events' equal texts meet.
    TextPool& pool() noexcept { return pool_; }

private:
    using Events = std::vector<std::shared_ptr<calEvent>>;
    // That the condition is not true of, but it was told of, or asked about.
    struct PassedRow {
        std::uint64_t fingerprint = 0;
        std::uint64_t state = 0;          // of the event, when it was taken in
        std::shared_ptr<calEvent> event;  // null: it was not taken in
    };
    struct PageRows {
        Events events;                     // that its rows gave
        std::vector<std::uint16_t> slots;  // of these rows
        std::vector<PassedRow> passedOver;
        bool passesOver = false;  // whether there are rows that the condition is not true of
        DateTime lastModified;    // of the events
    };
    // What a read asks of each page stands together: fetching the rows of all of them takes longer
    // than all else that is done about those that hold what they held.
    struct Page {
        Page(jet::PageMark itsMark, std::shared_ptr<PageRows> itsRows)
            : mark(std::move(itsMark)),
              rows(std::move(itsRows)),
              count(rows->events.size()),
              lastModified(rows->lastModified) {}

        jet::PageMark mark;
        std::shared_ptr<PageRows> rows;  // never null
        std::size_t count;               // of their events
        DateTime lastModified;
    };
    using Pages = std::vector<Page>;  // ascending
    struct ChangedPage {
        std::size_t page;                        // in the new list
        std::shared_ptr<const PageRows> before;  // null: there was none
    };
    struct Changes {
        bool noted = false;  // false: too many, or nothing to compare with
        std::vector<ChangedPage> pages;
        std::shared_ptr<GenCollection> all;  // in that case, or when it comes to it
    };

    class PageReader;
    class FoundPages;

    void stream(sql::RowStream& stream, const GenCollection& before, const Make& make,
                Changes& changes, FoundPages& found);
    Pages streamDamaged(sql::RowStream& stream, const GenCollection& before, const Make& make);
    bool readDamaged(DBRemindUtils& db, const GenCollection& before, const Make& make,
                     FoundPages& found);
    const PageRows* knownOf(jet::PageNo page) const;
    void take(FoundPages& found);
    void keepLost(const jet::RowCursor::Unreadable& lost, PageRows& page) const;
    bool isTouched(const PageRows& page) const;
    std::shared_ptr<GenCollection> changed(const Changes& changes,
                                           const GenCollection& before) const;
    static void expectIn(const GenCollection& collection, const PageRows& page) noexcept;
    static void addTo(GenCollection& collection, const PageRows& page);
    static std::shared_ptr<GenCollection> collected(const Pages& pages);

    TextPool pool_;
    std::string statement_;
    Pages pages_;
    bool mayPassBy_ = false;                // false: pages that hold what they held are read, too
    std::vector<const calEvent*> touched_;  // sorted while rows are read
    IsOpenAgain isOpenAgain_;
    std::unordered_set<std::uint64_t> asked_;
    DateTime openFrom_;  // of the read
    std::vector<PassedOver> passedOver_;
    std::vector<std::string> takenBack_;
    Damage damage_;
    std::uint64_t stamp_ = 0;  // of the collection that they filled
    std::size_t count_ = 0;    // of their events, those with a key that others have included
    DateTime lastModified_;
};

/// Of an event that was read again the object that is known, as long as its row says the same.
std::shared_ptr<calEvent> stillValid(const std::shared_ptr<calEvent>& known,
                                     const std::shared_ptr<calEvent>& fresh);

}  // namespace vl
