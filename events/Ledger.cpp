#include "events/Ledger.h"

#include <algorithm>
#include <chrono>

#include "LedgerParts.h"
#include "app/Files.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/WrongClock.h"

namespace vl {

namespace {

// A change takes a few milliseconds; whoever holds the lock longer is not coming back.
constexpr std::chrono::milliseconds kLockWait(500);
constexpr std::size_t kSpareLines = 256;

// Somebody has removed it since it was last seen.
bool isGone(const SharedFile& file) { return file.changed() && !fileExists(file.path()); }

}  // namespace

std::uint64_t guidHash(std::string_view GUID) {
    std::uint64_t hash = 14695981039346656037U;  // FNV-1a
    for (const char c : text::foldCase(GUID)) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    return hash;
}

Ledger::Ledger(const Clock& clock) : clock_(clock), content_(std::make_unique<Content>()) {}

Ledger::Ledger(const Clock& clock, std::string path) : Ledger(clock) {
    const ErrScope scope;
    if (path.empty()) {
        return;
    }
    file_ = std::make_unique<SharedFile>(std::move(path));
    attempt([&] { load(); });
    attempt([&] { compact(true); });
}

Ledger::~Ledger() = default;

// What stands in the file, and on top of it what this copy still owes it.
void Ledger::load() {
    auto fresh = std::make_unique<Content>();
    const std::string bytes = file_->read();
    torn_ = !bytes.empty() && bytes.back() != '\n';
    bytes_ = bytes.size();
    lines_ = 0;
    for (const std::string_view line : text::split(bytes, "\n")) {
        if (!line.empty()) {
            ++lines_;
            attempt([&] { fresh->take(std::string(line)); });
        }
    }
    for (const std::string_view line : text::split(owed_, "\n")) {
        if (!line.empty()) {
            attempt([&] { fresh->take(std::string(line)); });
        }
    }
    more_ = ledger::keepWhatLeft(*fresh, *content_, reference(*fresh));
    for (const auto& [key, entry] : fresh->events) {
        const auto old = content_->events.find(key);
        if (old != content_->events.end() && old->second.state == entry.state) {
            continue;
        }
        const EventState before = old != content_->events.end() ? old->second.state : EventState();
        if (before.row != entry.state.row || before.acted != entry.state.acted) {
            byOthers_.push_back(log_.size());
        }
        log_.push_back(guidHash(entry.GUID));
    }
    for (const auto& [key, entry] : content_->events) {
        if (!fresh->events.contains(key)) {
            log_.push_back(guidHash(entry.GUID));
        }
    }
    if (fresh->replaced != content_->replaced) {
        ++replacedVersion_;
    }
    content_ = std::move(fresh);
}

// One file is one database, however its name is written: absolute or not, over a link or not.
const std::string& Ledger::nameOf(std::string_view database) const {
    const auto known = names_.find(database);
    return known != names_.end()
               ? known->second
               : names_.emplace(std::string(database), fullPath(database)).first->second;
}

void Ledger::ReadAgain() {
    const ErrScope scope;
    takeChanges();
    if (file_ && isGone(*file_)) {
        store([] { return std::string(); });
    }
}

void Ledger::takeChanges() {
    // A link may lead elsewhere by now; one that leads nowhere for a while is what it was.
    for (auto& [given, name] : names_) {
        if (fileExists(given)) {
            name = fullPath(given);
        }
    }
    if (file_ && file_->changed() && !isGone(*file_)) {
        attempt([&] { load(); });
    }
}

const EventState* Ledger::find(std::string_view database, std::string_view GUID) const {
    const auto found = content_->events.find(ledger::keyOf(nameOf(database), GUID));
    return found != content_->events.end() ? &found->second.state : nullptr;
}

std::vector<Ledger::Known> Ledger::all(std::string_view database) const {
    const std::string& name = nameOf(database);
    std::vector<Known> known;
    for (const auto& [key, entry] : content_->events) {
        if (entry.database == name) {
            known.push_back({entry.database, entry.GUID, entry.state});
        }
    }
    return known;
}

std::vector<std::string> Ledger::pick(std::string_view database, const Picks& picks) const {
    const std::string& name = nameOf(database);
    std::vector<std::string> GUIDs;
    for (const auto& [key, entry] : content_->events) {
        if (entry.database == name && picks(entry.state)) {
            GUIDs.push_back(entry.GUID);
        }
    }
    return GUIDs;
}

std::vector<std::string> Ledger::actedAfter(std::string_view database, DateTime moment) const {
    return pick(database, [&](const EventState& state) { return isActedAfter(state, moment); });
}

std::vector<std::string> Ledger::broughtBack(std::string_view database) const {
    return pick(database, [](const EventState& state) {
        const ColumnNote* status = state.note("status");
        return status != nullptr && !text::equalsNoCase(status->after, "AllDone");
    });
}

std::vector<std::string> Ledger::withOpen(std::string_view database) const {
    return pick(database, [](const EventState& state) {
        return !state.row.empty() ||
               std::any_of(state.occurrences.begin(), state.occurrences.end(), [](const auto& one) {
                   return !one.snoozed.isZero() || !one.listed.isZero();
               });
    });
}

void Ledger::write(const std::string& lines) {
    file_->append((torn_ ? "\n" : "") + lines);
    torn_ = false;
    bytes_ += lines.size();
    lines_ += static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
}

// Under the lock a change is made on top of what others have added meanwhile. Where there is no
// lock to be had it is made all the same, on what is known.
SharedFile::Lock Ledger::begin() {
    SharedFile::Lock lock;
    if (file_) {
        attempt([&] { lock = file_->lock(kLockWait); });
        takeChanges();
    }
    return lock;
}

bool Ledger::flush(const SharedFile::Lock& lock) {
    if (!file_) {
        owed_.clear();
        return false;
    }
    const auto writeOwed = [&] {
        if (!isGone(*file_)) {
            return write(owed_);
        }
        torn_ = false;
        lines_ = 0;
        bytes_ = 0;
        write(ledger::keptLines(*content_, DateTime()));  // what stood in it, and what is owed
    };
    if (lock && attempt(writeOwed)) {
        owed_.clear();
        attempt([&] { compact(false); });
    }
    return owed_.empty();
}

bool Ledger::store(const std::function<std::string()>& makeLines) {
    const ErrScope scope;
    const SharedFile::Lock lock = together_ > 0 ? heldTogether_ : begin();
    attempt([&] { owed_ += makeLines(); });
    return together_ == 0 && flush(lock);
}

Ledger::Together::Together(Ledger& ledger) : ledger_(ledger) {
    const ErrScope scope;
    if (ledger_.together_++ == 0) {
        ledger_.heldTogether_ = ledger_.begin();
    }
}

Ledger::Together::~Together() {
    const ErrScope scope;
    if (--ledger_.together_ == 0) {
        if (!ledger_.owed_.empty()) {
            ledger_.flush(ledger_.heldTogether_);
        }
        ledger_.heldTogether_.reset();
    }
}

std::string Ledger::edited(std::string_view database, std::string_view GUID, std::string_view act,
                           const std::function<void(EventState&)>& edit, bool forget) {
    const std::string key = ledger::keyOf(nameOf(database), GUID);
    ledger::Entry entry{nameOf(database), std::string(GUID), {}};
    const auto known = content_->events.find(key);
    if (known != content_->events.end()) {
        entry = known->second;
    }
    const EventState before = entry.state;
    if (forget) {
        EventState fresh;
        fresh.row = std::move(entry.state.row);  // what stands in the row is still by us
        entry.state = std::move(fresh);
    }
    edit(entry.state);
    entry.state.tidy();
    if (!forget && entry.state == before) {
        return {};
    }
    // Beside a time since when reminders may be waiting must stand what has been dealt with since.
    const bool whole = more_.erase(key) > 0 || forget;
    const std::string line = ledger::eventLine(entry, before, whole, act, clock_.now());
    content_->events[key] = std::move(entry);
    log_.push_back(guidHash(GUID));
    return ledger::lineEnd(line);
}

bool Ledger::change(std::string_view database, std::string_view GUID, std::string_view act,
                    const std::function<void(EventState&)>& edit) {
    return store([&] { return edited(database, GUID, act, edit, false); });
}

bool Ledger::change(std::string_view database, std::string_view act,
                    const std::vector<Change>& changes) {
    return store([&] {
        std::string lines;
        for (const Change& one : changes) {
            attempt([&] { lines += edited(database, one.GUID, act, one.edit, false); });
        }
        return lines;
    });
}

bool Ledger::forget(std::string_view database, std::string_view GUID, std::string_view act,
                    const std::function<void(EventState&)>& edit) {
    return store([&] { return edited(database, GUID, act, edit, true); });
}

std::vector<std::uint64_t> Ledger::changedSince(std::uint64_t version) const {
    const auto first = std::min(static_cast<std::size_t>(version), log_.size());
    return {log_.begin() + static_cast<std::ptrdiff_t>(first), log_.end()};
}

std::vector<std::uint64_t> Ledger::actedByOthersSince(std::uint64_t version) const {
    std::vector<std::uint64_t> hashes;
    for (auto at = std::lower_bound(byOthers_.begin(), byOthers_.end(), version);
         at != byOthers_.end(); ++at) {
        hashes.push_back(log_[*at]);
    }
    return hashes;
}

// A clock that is far ahead for once must not make everything look old.
DateTime Ledger::reference(const Content& content) const {
    DateTime latest;
    for (const auto& [database, checks] : content.checked) {
        latest = std::max(latest, checks.back().local);
    }
    const DateTime now = clock_.now();
    return latest.isZero() ? now : std::min(now, latest.addDays(1));
}

// Worth it when most lines have been overtaken by later ones, or at a start when any has become
// too old. That is known until the end of the run, since the clock may be wrong; but what is asked
// for is what the file says, to which this run's lines are added.
void Ledger::compact(bool starting) {
    std::size_t held = content_->events.size() + content_->foreign.size();
    for (const auto& [database, checks] : content_->checked) {
        held += checks.size();
    }
    for (const auto& [key, starts] : content_->replaced) {
        held += starts.size();
    }
    if (lines_ == 0 || (!starting && lines_ <= 2 * held + kSpareLines)) {
        return;
    }
    SharedFile::Lock lock;
    if (starting) {  // else the one who adds a line holds it
        lock = file_->lock(kLockWait);
        takeChanges();
    }
    const DateTime now = starting ? reference(*content_) : DateTime();
    const std::string lines = ledger::keptLines(*content_, now);
    const auto live = static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
    if (live < lines_ || lines.size() < bytes_) {
        file_->replace(lines);
        lines_ = live;
        bytes_ = lines.size();
        torn_ = false;
        for (auto& [key, entry] : content_->events) {
            entry.state.openSince = ledger::openSinceAt(entry.state, now);
        }
    }
}

}  // namespace vl
