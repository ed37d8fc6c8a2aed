// The ledger: what the user has dealt with, kept over restarts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "app/SharedFile.h"
#include "base/Clock.h"
#include "events/LedgerState.h"

namespace vl {

/// GUIDs are equal without regard to case; so are their hashes.
std::uint64_t guidHash(std::string_view GUID);

/// A file beside the settings, one JSON object a line:
///
///   {"db":PATH,"guid":GUID,"act":NAME,"when":TIME,
///    "occurrences":[{"start":,"end":,"handled":,"snoozed":,"muted":"start"|"ever","listed":,
///     "acted":,"reminder":,"local":,"spared":true}],
///    "endedBefore":,"endedAt":,"openSince":,"openOf":,"acted":,"said":{"NextReminder":,"Dismissed":},
///    "doubted":{TIME:{"seen":,"utc":}},"newlyMet":true,"waits":true,"deleting":true,
///    "row":{COLUMN:[before ...,after]}}
///   {"db":PATH,"checked":TIME,"utc":}   the first check of a day; the last line is the last check
///   {"db":PATH,"master":ID,"base":,"replaced":TIME,"utc":}   a start that an exception has taken
///     over: of the series with that id in the host's database "base"
///
/// PATH is the database's full path without links, however its name was given. Times are
/// "yyyy-mm-dd hh:mm:ss"; what is not there is none. A line holds the whole state of the
/// occurrences it names and of the event beside them; with "forget" it is all there is. The last
/// line of an occurrence counts. Lines of an unknown shape are kept, those that are no JSON, a torn
/// last one among them, are passed over and leave with the next compaction.
///
/// Several copies of the program share the file: each change is made under a lock, after what
/// others have added was read, and is on the disk when the method returns. Where the file cannot be
/// written the ledger goes on in memory, and writes what it owes with the next change that can be
/// written. A file that somebody removes is written anew by who knows what stood in it. No method
/// throws; the pending error stays as it was.
class Ledger {
public:
    /// In memory only.
    explicit Ledger(const Clock& clock);
    /// Reads `path` and compacts it when that is worth it. `clock` must outlive the ledger.
    Ledger(const Clock& clock, std::string path);
    ~Ledger();
    Ledger(const Ledger&) = delete;
    Ledger& operator=(const Ledger&) = delete;

    /// Reads what others have added since. Costs one look at the file's size and time, and one at
    /// where each database lies.
    void ReadAgain();

    /// Null when nothing is known. Good until the next change or `ReadAgain`.
    const EventState* find(std::string_view database, std::string_view GUID) const;

    struct Known {
        std::string database;
        std::string GUID;
        EventState state;
    };
    /// Everything known of the events of one database, in no order.
    std::vector<Known> all(std::string_view database) const;

    /// GUIDs of the events that were acted upon later than `moment`, in UTC, or have acts in doubt.
    std::vector<std::string> actedAfter(std::string_view database, DateTime moment) const;

    /// GUIDs of the events of which the last act on the status was to have a finished one shown
    /// again. Costs a look at each event known.
    std::vector<std::string> broughtBack(std::string_view database) const;
    /// The same of those of which a snooze or a row of the list is noted, or an act that may not
    /// have come to the row.
    std::vector<std::string> withOpen(std::string_view database) const;

    /// Changes what is known of one event, as one line. `act` says by what. False when the line is
    /// not on the disk; it holds in memory all the same.
    bool change(std::string_view database, std::string_view GUID, std::string_view act,
                const std::function<void(EventState&)>& edit);

    struct Change {
        std::string GUID;
        std::function<void(EventState&)> edit;
    };
    /// The same for several events of a database, flushed once.
    bool change(std::string_view database, std::string_view act,
                const std::vector<Change>& changes);

    /// Everything about the event is forgotten before `edit` is asked, but what our acts have put
    /// into its row.
    bool forget(std::string_view database, std::string_view GUID, std::string_view act,
                const std::function<void(EventState&)>& edit);

    /// While it lives, changes are made under one lock, and they are on the disk, in one write,
    /// when the last such scope ends. Until then `change` and `forget` say false. For several acts
    /// in a row, not for anything that waits: other copies of the program do.
    class Together {
    public:
        explicit Together(Ledger& ledger);
        ~Together();
        Together(const Together&) = delete;
        Together& operator=(const Together&) = delete;

    private:
        Ledger& ledger_;
    };

    /// When the database was last checked: not later than that, and on the same day. Where the
    /// computer's zone has changed since, the earlier of the same time and the same moment. 0:
    /// never.
    DateTime lastCheck(std::string_view database) const;
    /// The last that is not later than `moment`, local time: where the clock was ahead in the last
    /// ones, what is still known of those before. 0: none is.
    DateTime lastCheckBy(std::string_view database, DateTime moment) const;
    /// All that are known, each as `lastCheck` tells it, in the order in which they were made.
    std::vector<DateTime> checks(std::string_view database) const;
    /// Writes a line for the first check of a day only: a check of a time that has been checked
    /// finds nothing that is not known.
    void noteCheck(std::string_view database, DateTime when);

    /// The starts of the series that exceptions have taken over, although these may not be there
    /// any more; also those of a series with that id of which it is not known in which of the
    /// host's databases it is. Local times, ascending.
    std::vector<Noted> replaced(std::string_view database, const SeriesName& series) const;
    struct Replaced {
        SeriesName series;
        std::vector<Noted> starts;
    };
    std::vector<Replaced> allReplaced(std::string_view database) const;
    void keepReplaced(std::string_view database, const SeriesName& series, DateTime start);
    /// The same for several, flushed once. However old: the clock may be ahead.
    void keepReplaced(std::string_view database, const std::vector<Replaced>& all);
    /// The same of exceptions whose rows are still there, and are met again: of these may be many,
    /// and what is so old that it would soon be dropped is not kept.
    void keepRecentlyReplaced(std::string_view database, std::vector<Replaced> all);
    /// Grows with every such start, by whomever.
    std::uint64_t replacedVersion() const noexcept { return replacedVersion_; }

    /// Grows with every change of an event, by whomever.
    std::uint64_t version() const noexcept { return log_.size(); }
    /// `guidHash` of the events that changed since `version` was that.
    std::vector<std::uint64_t> changedSince(std::uint64_t version) const;
    /// Of these, those that somebody else has acted on.
    std::vector<std::uint64_t> actedByOthersSince(std::uint64_t version) const;

    /// Whether changes reach the disk at the moment.
    bool onDisk() const noexcept { return owed_.empty() && file_ != nullptr; }

private:
    struct Content;
    using Picks = std::function<bool(const EventState&)>;

    std::vector<std::string> pick(std::string_view database, const Picks& picks) const;
    void takeChanges();
    void load();
    const std::string& nameOf(std::string_view database) const;
    void write(const std::string& lines);
    SharedFile::Lock begin();
    bool flush(const SharedFile::Lock& lock);
    bool store(const std::function<std::string()>& makeLines);
    std::string edited(std::string_view database, std::string_view GUID, std::string_view act,
                       const std::function<void(EventState&)>& edit, bool forget);
    void compact(bool starting);
    DateTime reference(const Content& content) const;

    const Clock& clock_;
    std::unique_ptr<SharedFile> file_;  // null: in memory only
    std::unique_ptr<Content> content_;
    std::string owed_;  // lines that are not on the disk yet
    // By key: of these more is known than the file says, and the next line of each says all.
    std::unordered_set<std::string> more_;
    std::vector<std::uint64_t> log_;     // `guidHash` of each change, in order
    std::vector<std::size_t> byOthers_;  // places in it of the acts of others, ascending
    std::uint64_t replacedVersion_ = 0;
    mutable std::map<std::string, std::string, std::less<>> names_;  // databases, see `nameOf`
    std::size_t lines_ = 0;                                          // in the file
    std::size_t bytes_ = 0;                                          // the same
    bool torn_ = false;  // the file's last line has no end
    int together_ = 0;   // scopes of `Together`
    SharedFile::Lock heldTogether_;
};

}  // namespace vl
