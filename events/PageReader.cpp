#include "PageReader.h"

#include <algorithm>
#include <bit>
#include <iterator>

#include "base/Mix.h"
#include "base/Text.h"

namespace vl {

namespace {

std::vector<RecordSet::Field> fieldsOf(const sql::RowStream& stream) {
    std::vector<RecordSet::Field> fields;
    for (const sql::Field& field : stream.fields()) {
        fields.push_back(RecordSet::fieldOf(field));
    }
    return fields;
}

// What acts set in an event: it may not be in the row yet, or not any more.
std::uint64_t stateOf(const calEvent& event) {
    std::uint64_t hash = std::hash<std::string>()(event.status);
    for (const double part : {event.NextReminder.days(), event.Dismissed.days()}) {
        hash = mixed(hash, std::bit_cast<std::uint64_t>(part));
    }
    return hash ^ (event.Hidden ? 1U : 0U);
}

}  // namespace

FullRead::PageReader::PageReader(FullRead& owner, sql::RowStream& stream,
                                 const GenCollection& before, const Make& make)
    : owner_(owner),
      stream_(stream),
      before_(before),
      make_(make),
      local_(TimeZone::local()),
      reader_(fieldsOf(stream), local_, owner.pool_),
      exceptions_(stream.fields()),
      finished_(stream.fields()) {
    // What a reading has met that was given up may be torn.
    owner.passedOver_.clear();
    owner.takenBack_.clear();
}

void FullRead::PageReader::add(PageRows& page, std::shared_ptr<calEvent> event,
                               std::uint16_t slot) {
    page.lastModified = std::max(page.lastModified, event->Modified);
    page.events.push_back(std::move(event));
    page.slots.push_back(slot);
}

FullRead::Page FullRead::PageReader::read(const PageRows* known) {
    found_.events.clear();
    found_.slots.clear();
    found_.passedOver.clear();
    found_.passesOver = false;
    found_.lastModified = DateTime();
    while (stream_.nextOnPage()) {
        if (!stream_.matches()) {
            passOver(known, found_);
            continue;
        }
        auto event = made();
        const auto held = objectAt<calEvent>(before_, event->GUID);
        add(found_, held ? stillValid(held, event) : std::move(event), stream_.id().row);
    }
    return {stream_.mark(), std::make_shared<PageRows>(taken())};
}

// What was found, without room to spare: that serves the next page.
FullRead::PageRows FullRead::PageReader::taken() {
    return {{std::make_move_iterator(found_.events.begin()),
             std::make_move_iterator(found_.events.end())},
            {found_.slots.begin(), found_.slots.end()},
            {found_.passedOver.begin(), found_.passedOver.end()},
            found_.passesOver,
            found_.lastModified};
}

std::shared_ptr<calEvent> FullRead::PageReader::made() {
    return make_([this](calEvent& event) { reader_.fill(event, stream_); });
}

void FullRead::PageReader::passOver(const PageRows* known, PageRows& page) {
    page.passesOver = true;
    if (stays(known, page)) {
        return;
    }
    auto replaced = exceptions_.of(stream_);
    const bool mayGoOn =
        owner_.isOpenAgain_ && finished_.is(stream_) &&
        (finished_.mayGoOn(stream_, owner_.openFrom_) || finished_.isOneOf(owner_.asked_, stream_));
    if (!replaced && !mayGoOn) {
        return;
    }
    PassedRow row{stream_.fingerprint(), 0, nullptr};
    if (replaced) {
        owner_.passedOver_.push_back(std::move(*replaced));
    }
    if (mayGoOn) {
        row.event = openAgain();
    }
    if (row.event) {
        row.state = stateOf(*row.event);
        add(page, row.event, stream_.id().row);
    }
    page.passedOver.push_back(std::move(row));
}

// Of a row that is as it was, nothing is told or asked again: the answer might be another one now,
// since time goes on, and an event that was taken in would not come to its last reminder.
bool FullRead::PageReader::stays(const PageRows* known, PageRows& page) {
    if (known == nullptr || known->passedOver.empty()) {
        return false;
    }
    const std::uint64_t fingerprint = stream_.fingerprint();
    const auto same =
        std::find_if(known->passedOver.begin(), known->passedOver.end(),
                     [&](const PassedRow& row) { return row.fingerprint == fingerprint; });
    if (same == known->passedOver.end() || (same->event && same->state != stateOf(*same->event))) {
        return false;
    }
    page.passedOver.push_back(*same);
    if (same->event) {
        add(page, same->event, stream_.id().row);
    }
    return true;
}

// Null where it stays finished.
std::shared_ptr<calEvent> FullRead::PageReader::openAgain() {
    auto event = made();
    if (!owner_.isOpenAgain_(*event)) {
        return nullptr;
    }
    event->status.clear();
    owner_.takenBack_.push_back(event->GUID);
    return event;
}

void FullRead::PageReader::readDamaged(const PageRows* known, PageRows& page) {
    const std::size_t count = page.events.size();
    takeReadable(known, page);
    isReadable([&] {
        if (auto replaced = exceptions_.of(stream_); replaced && page.events.size() == count) {
            owner_.passedOver_.push_back(std::move(*replaced));
        }
    });
}

void FullRead::PageReader::takeReadable(const PageRows* known, PageRows& page) {
    const std::uint16_t slot = stream_.id().row;
    std::shared_ptr<calEvent> event;
    bool matches = false;
    RowReader::Lost lost;
    if (!isReadable([&] { matches = stream_.matches(); })) {
        lost = {true, true};
    } else if (matches) {
        event = make_([&](calEvent& made) { lost = reader_.fillReadable(made, stream_); });
    } else {
        page.passesOver = true;
        isReadable([&] { stays(known, page); });
        return;
    }
    if (lost.any) {
        ++owner_.damage_.rows;
    }
    if (lost.GUID) {
        owner_.keepLost({stream_.id().page, slot}, page);
    } else {
        add(page, bestOf(std::move(event), !lost.any), slot);
    }
}

// An event that has been read as a whole and not changed since is better than what is left of it.
std::shared_ptr<calEvent> FullRead::PageReader::bestOf(std::shared_ptr<calEvent> event,
                                                       bool isWhole) {
    auto& inPart = owner_.damage_.inPart;
    const std::string key = text::foldCase(event->GUID);
    const auto held = objectAt<calEvent>(before_, event->GUID);
    const bool asWhole =
        !isWhole && held && held->Modified == event->Modified && !inPart.contains(key);
    if (isWhole) {
        inPart.erase(key);
    } else if (!asWhole) {
        inPart.insert(key);
    }
    if (!held) {
        return event;
    }
    return asWhole ? held : stillValid(held, event);
}

}  // namespace vl
