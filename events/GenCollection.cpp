#include "events/GenCollection.h"

#include <atomic>
#include <utility>

#include "KeyedSlots.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl {

namespace {

// From so many items on `Exists` looks the key up instead of walking the key list.
constexpr std::size_t kLookUpFrom = 30;

std::uint32_t hashOf(const SharedText& key) { return key.empty() ? 0 : hashNoCase(key); }

KeyedSlots::Item itemFor(const Variant& member, const SharedText& key, std::uint32_t hash) {
    return {member, key, !key.empty(), hash};
}

// Whole numbers stay whole; those that fit are kept in 32 bits, as counters begin.
Variant plusOne(const Variant& value) {
    if (value.is<double>()) {
        return value.toDouble() + 1.0;
    }
    if (value.is<std::string>()) {
        const double number = value.toDouble();
        if (number != text::roundHalfEven(number)) {
            return number + 1.0;
        }
    }
    const std::int64_t whole = value.toInt64();
    if (whole == INT64_MAX) {
        throw Error(ErrNo::Overflow, "a counter is at the end of its 64 bits");
    }
    const std::int64_t next = whole + 1;
    return next >= INT32_MIN && next <= INT32_MAX ? Variant(static_cast<std::int32_t>(next))
                                                  : Variant(next);
}

}  // namespace

// Many collections stay empty: they share one list, which is never changed.
const std::shared_ptr<KeyedSlots>& GenCollection::nothing() {
    static const auto slots = std::make_shared<KeyedSlots>();
    return slots;
}

GenCollection::GenCollection() : items_(nothing()) {}

KeyedSlots& GenCollection::own() {
    static std::atomic<std::uint64_t> changes = 0;
    stamp_ = ++changes;
    if (items_.use_count() > 1) {
        items_ = std::make_shared<KeyedSlots>(*items_);
    }
    return *items_;
}

KeyedSlots& GenCollection::ownOrder() {
    KeyedSlots& items = own();
    order_ = stamp_;
    return items;
}

std::uint32_t GenCollection::find(IndexKey index) const {
    return index.isKey() ? items_->slotOf(index.key()) : items_->slotAt(index.position());
}

void GenCollection::append(const Variant& member, const SharedText& key, std::uint32_t hash) {
    KeyedSlots& items = ownOrder();
    items.insert(items.count() + 1, itemFor(member, key, hash));
}

bool GenCollection::isReplacedInPlace(const Variant& member) {
    const auto* object = member.get<ObjectRef>();
    return object != nullptr && dynamic_cast<const ValueList*>(object->get()) == nullptr;
}

Variant GenCollection::addText(const Variant& member, const SharedText& sKey, std::int64_t Before,
                               std::int64_t After, bool bReplace) {
    const std::uint32_t hash = hashOf(sKey);
    const auto taken = sKey.empty() ? KeyedSlots::kNone : items_->slotOf(sKey, hash);
    if (taken != KeyedSlots::kNone) {
        if (bReplace && isReplacedInPlace(member)) {
            own().setValue(taken, member);
        } else if (bReplace) {
            ownOrder().moveToEnd(taken, itemFor(member, sKey, hash));
        }
        return member;
    }
    const auto count = static_cast<std::int64_t>(Count());
    if (Before == 0 && After == 0) {
        append(member, sKey, hash);
    } else if (After == 0 && Before >= 1 && Before <= count) {
        ownOrder().insert(static_cast<std::size_t>(Before), itemFor(member, sKey, hash));
    } else if (Before == 0 && After >= 1 && After <= count) {
        ownOrder().insert(static_cast<std::size_t>(After) + 1, itemFor(member, sKey, hash));
    }
    return member;
}

void GenCollection::AddLatest(std::vector<Keyed> values) {
    if (values.empty()) {
        return;
    }
    std::vector<std::uint32_t> hashes;
    hashes.reserve(values.size());
    for (const Keyed& one : values) {
        hashes.push_back(hashOf(one.key));
        items_->expect(hashes.back());
    }
    KeyedSlots& items = ownOrder();
    for (std::size_t i = 0; i < values.size(); ++i) {
        auto& [value, key] = values[i];
        const bool keyed = !key.empty();
        const auto taken = keyed ? items.slotOf(key, hashes[i]) : KeyedSlots::kNone;
        KeyedSlots::Item item{std::move(value), std::move(key), keyed, hashes[i]};
        if (taken != KeyedSlots::kNone) {
            items.moveToEnd(taken, std::move(item));
        } else {
            items.insert(items.count() + 1, std::move(item));
        }
    }
}

void GenCollection::Expect(std::string_view key) const noexcept {
    if (!key.empty()) {
        items_->expect(hashNoCase(key));
    }
}

Variant GenCollection::AddCounter(std::string_view sKey) {
    const ErrScope scope;
    const auto slot = sKey.empty() ? KeyedSlots::kNone : items_->slotOf(sKey);
    if (slot == KeyedSlots::kNone) {
        return Add(1, sKey);
    }
    attempt([&] {
        const Variant next = plusOne((*items_)[slot].value);
        own().setValue(slot, next);
    });
    return (*items_)[slot].value;
}

bool GenCollection::Exists(std::string_view key, bool CaseSensitive) const {
    const KeyedSlots& items = *items_;
    if (items.count() >= kLookUpFrom) {
        return items.slotOf(key) != KeyedSlots::kNone;
    }
    for (std::size_t i = 0; i < items.count(); ++i) {
        const std::string_view present = items.at(i).shownKey();
        if (CaseSensitive ? present == key : text::equalsNoCase(present, key)) {
            return true;
        }
    }
    return false;
}

Variant GenCollection::Item(IndexKey vntIndexKey) const {
    const auto slot = find(vntIndexKey);
    return slot == KeyedSlots::kNone ? Variant() : (*items_)[slot].value;
}

Variant GenCollection::itemOr(IndexKey index, bool AutoAdd, const Variant& Default) {
    const auto slot = find(index);
    if (slot != KeyedSlots::kNone) {
        return (*items_)[slot].value;
    }
    if (!AutoAdd) {
        return Default;
    }
    return Add(Default,
               index.isKey() ? std::string(index.key()) : std::to_string(index.position()));
}

void GenCollection::UpdateItem(std::string_view key, const Variant& NewItem, bool KeepPosition) {
    const auto slot = items_->slotOf(key);
    if (slot == KeyedSlots::kNone) {
        return;
    }
    if (KeepPosition) {
        own().setValue(slot, NewItem);
        return;
    }
    const SharedText spelled = (*items_)[slot].key;
    ownOrder().moveToEnd(slot, itemFor(NewItem, spelled, hashOf(spelled)));
}

std::size_t GenCollection::Count() const noexcept { return items_->count(); }

void GenCollection::Remove(IndexKey Index) {
    const auto slot = find(Index);
    if (slot != KeyedSlots::kNone) {
        ownOrder().remove(slot);
    }
}

void GenCollection::Clear() {
    items_ = nothing();
    stamp_ = 0;
    order_ = 0;
}

std::string GenCollection::Key(std::int64_t position) const {
    const auto slot = items_->slotAt(position);
    return slot == KeyedSlots::kNone ? std::string() : std::string((*items_)[slot].shownKey());
}

std::size_t GenCollection::Position(std::string_view key) const {
    const auto slot = items_->slotOf(key);
    return slot == KeyedSlots::kNone ? 0 : items_->positionOf(slot);
}

std::size_t GenCollection::PlaceCount() const noexcept { return items_->slotCount(); }

const Variant& GenCollection::AtPlace(Place place) const noexcept { return (*items_)[place].value; }

std::size_t GenCollection::PositionOfPlace(Place place) const noexcept {
    return items_->positionOf(place);
}

std::vector<GenCollection::Place> GenCollection::PlacesThatDiffer(
    const GenCollection& other) const {
    return items_->differing(*other.items_);
}

const Variant& GenCollection::Walk::operator*() const { return items_->at(index_).value; }

bool GenCollection::Walk::atEnd() const noexcept { return index_ == items_->count(); }

}  // namespace vl
