// The ordered list with keys that is used everywhere.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/SharedText.h"
#include "base/Variant.h"

namespace vl {

class KeyedSlots;

/// An item that is an array of values. As an array it is replaced like any plain value, not like
/// an object (see `GenCollection::Add`).
class ValueList : public Object {
public:
    ValueList() = default;
    explicit ValueList(std::vector<Variant> values) : items(std::move(values)) {}

    std::vector<Variant> items;
};

/// Where to look an item up: at a position (any whole number, counted from 1) or under a key.
/// Passed, never kept: it refers to the key's text.
class IndexKey {
public:
    template <std::integral I>
    IndexKey(I position) : position_(static_cast<std::int64_t>(position)) {}
    IndexKey(std::string_view key) : key_(key), isKey_(true) {}
    IndexKey(const std::string& key) : key_(key), isKey_(true) {}
    IndexKey(const SharedText& key) : key_(key), isKey_(true) {}
    IndexKey(const char* key) : key_(key), isKey_(true) {}

    bool isKey() const noexcept { return isKey_; }
    std::int64_t position() const noexcept { return position_; }
    std::string_view key() const noexcept { return key_; }

private:
    std::int64_t position_ = 0;
    std::string_view key_;
    bool isKey_ = false;
};

/// An ordered list of values, each with or without a key. Keys are unique without regard to case
/// (Unicode folding) and keep their spelling. The list of keys shows the placeholder "z" for an
/// item without a key; such an item cannot be looked up under "z", and yet see `Exists`.
///
/// Positions count from 1. What is not there is `Empty`, or empty, or left alone: no method
/// throws, and none changes the pending error.
///
/// Cost: look-ups by key and by position O(1), in whatever order they mix with changes; adding at
/// the end and removing at both ends O(1) amortised; adding and removing elsewhere O(sqrt n), about
/// a microsecond at 100,000 items (bench/CollectionBench.cpp). An item takes about 85 bytes
/// beside its texts; room once taken serves later items. A copy is O(1), and the first change of
/// one of the two copies some 20 bytes an item.
///
/// A walk (`for (const Variant& v : col)`) shows what the list held when the walk began, each
/// value kept alive until the walk is over: items may be added, removed or replaced meanwhile,
/// and the list may be cleared or destroyed. (The first change during a walk copies the order of
/// the list, O(n); later ones do not.) A walk by position that removes goes from the end to the
/// front.
class GenCollection : public Object {
public:
    GenCollection();
    GenCollection(const GenCollection& other) = default;
    GenCollection& operator=(const GenCollection& other) = default;
    ~GenCollection() override = default;

    /// Adds `member` under `sKey` (empty: without a key), in front of position `Before` or behind
    /// position `After`, else at the end. A position that is not there, or both, adds nothing.
    /// A key that is taken: without `bReplace` nothing changes, the first value stays. With it
    /// an object takes the old one's place, where the key keeps its spelling; any other value
    /// goes to the end, under `sKey` as it is given now.
    /// Returns `member` in every case.
    Variant Add(const Variant& member, std::string_view sKey = {}, std::int64_t Before = 0,
                std::int64_t After = 0, bool bReplace = false) {
        return addText(member, sKey, Before, After, bReplace);
    }
    /// The same; the item shares the key's text.
    Variant Add(const Variant& member, const std::same_as<SharedText> auto& sKey,
                std::int64_t Before = 0, std::int64_t After = 0, bool bReplace = false) {
        return addText(member, sKey, Before, After, bReplace);
    }

    struct Keyed {
        Variant value;
        SharedText key;
    };
    /// Adds values at the end, each under its key (empty: without one). Of one whose key is taken
    /// the older value leaves. For who has many: they are looked up together, and taken over as
    /// they are.
    void AddLatest(std::vector<Keyed> values);
    /// The key will be looked for soon: who says so a little earlier need not wait for it then.
    void Expect(std::string_view key) const noexcept;

    /// Adds the number 1 under `sKey`, or 1 to the value that is there, which keeps its place.
    /// Returns the value that then stands under the key; one that is no number stays as it is.
    Variant AddCounter(std::string_view sKey);

    /// With fewer than 30 items the key list is searched, exactly if `CaseSensitive`; so "z" is
    /// found there when an item has no key. From 30 items on the key is looked up, never with
    /// regard to case, whatever `CaseSensitive` says, and "z" is a key like any other.
    bool Exists(std::string_view key, bool CaseSensitive = false) const;

    /// The value at that position or under that key; `Empty` when there is none.
    Variant Item(IndexKey vntIndexKey) const;
    /// The same, but `Default` when there is none. With `AutoAdd` it is added as well, under the
    /// key asked for (empty: without one); a missing position becomes the key in decimal.
    /// (Takes a bool and nothing that merely converts to one, such as a text meant as default.)
    Variant Item(IndexKey vntIndexKey, std::same_as<bool> auto AutoAdd,
                 const Variant& Default = {}) {
        return itemOr(vntIndexKey, AutoAdd, Default);
    }

    /// Replaces the value under `key`; nothing happens when there is none. The item keeps its
    /// place, or without `KeepPosition` moves to the end, under the key as it was spelled.
    void UpdateItem(std::string_view key, const Variant& NewItem, bool KeepPosition = true);

    /// Adds values under keys: key, value, key, value. A last key without a value is left out,
    /// an empty key adds its value without one, a repeated key is ignored.
    void LoadFromParamList(std::span<const Variant> params);
    void LoadFromParamList(std::initializer_list<Variant> params);
    /// The same from a text as `SaveAsList` writes it with `SaveKeyValPair`.
    void LoadFromParamList(std::string_view List, std::string_view Delimiter);

    /// Splits `List` at every `Delimiter` and adds the pieces that are not empty, trimmed of
    /// blanks first with `bTrim`. Without `UseKey` they have no key. With it the key is
    /// `KeyPrefix` + piece and the value the piece; with `bPairs`, which takes two pieces at a
    /// time, the value is the second of the two as it stands, empty or not (`UseValAsKey`: the
    /// first again). A key without a second piece is left out, as is a repeated key.
    /// Returns the number of items the collection then holds.
    std::size_t LoadFromList(std::string_view List, std::string_view Delimiter,
                             std::string_view KeyPrefix = {}, bool ClearFirst = false,
                             bool UseKey = false, bool bTrim = false, bool bPairs = false,
                             bool UseValAsKey = false);

    /// The values as text, each followed by `Delimiter`; with `SaveKeyValPair` the key and
    /// another `Delimiter` in front of each. The last delimiter is cut off unless
    /// `EndWithDelimiter`. One single empty value gives an empty text, with or without it.
    /// `Index` other than -1 takes that element (from 0) of each item that is a `ValueList`.
    /// `maxItemCount` of 1 or more looks at so many items only. An item without a text form (an
    /// object, bytes, an array that lacks the element) is passed over with its key.
    std::string SaveAsList(std::string_view Delimiter, int Index = -1,
                           bool EndWithDelimiter = false, std::int64_t maxItemCount = 0,
                           bool SaveKeyValPair = false) const;

    std::vector<Variant> SaveAsArray() const;
    /// One row an item: key, value. `Transposed`: a row of the keys and a row of the values.
    std::vector<std::vector<Variant>> SaveAs2DArray(bool Transposed = false) const;
    std::shared_ptr<ValueList> SaveAsCol() const;

    /// Sorts by value and keeps the values as the sort stored them, not as they were:
    ///
    ///   DataType  stored                                            unset when
    ///   "T"       text, its first 255 UTF-16 units                  it has no text form
    ///   "D"       date-time                                         no date-time or text of one
    ///   "N"       64-bit whole number, halves to even               it is no number
    ///
    /// With `bIgnoreEmpty` an empty value is unset, too. What is unset becomes `Empty` and comes
    /// first in ascending order. Texts compare without regard to case. `sOrder` is "DESC" for
    /// descending, anything else ascending; equal values keep their order either way. An unknown
    /// `DataType` changes nothing.
    /// Each value is then added again under its key, cut to 255 UTF-16 units, and the first wins:
    /// "z" is the key of all that had none, so of those only one is left. To sort such a list
    /// give every item a key of its own first.
    void SortByItem(std::string_view DataType, std::string_view sOrder = {},
                    bool bIgnoreEmpty = false);

    std::size_t Count() const noexcept;
    /// Removes one item; nothing happens when it is not there.
    void Remove(IndexKey Index);
    void Clear();

    /// The key at a position as it was spelled, "z" for an item without one; empty when there is
    /// no such position.
    std::string Key(std::int64_t position) const;
    /// Where the item under a key stands; 0 when there is none.
    std::size_t Position(std::string_view key) const;

    /// Two collections with the same stamp hold the same. Each change gives a new one; a copy has
    /// that of the original, an empty collection that was never filled has 0.
    std::uint64_t Stamp() const noexcept { return stamp_; }

    /// An item keeps its place, a small number, until it is removed, whatever becomes of those
    /// around it, and has the same place in copies of the list. For who notes something about each
    /// item and asks later what has changed. Below `PlaceCount()`.
    using Place = std::uint32_t;
    std::size_t PlaceCount() const noexcept;
    /// The value at a place; `Empty` where nothing stands.
    const Variant& AtPlace(Place place) const noexcept;
    std::size_t PositionOfPlace(Place place) const noexcept;
    /// The places at which the two hold different values, ascending. Of a list and a copy of it the
    /// cost is that of the changes and of a hundredth of the items.
    std::vector<Place> PlacesThatDiffer(const GenCollection& other) const;
    /// Whether one has come from the other, or both from a third, by replacing values only: then
    /// each place is the same position with the same key.
    bool HasSameOrder(const GenCollection& other) const noexcept { return order_ == other.order_; }

    /// Walks the values in list order.
    class Walk {
    public:
        using value_type = Variant;
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::input_iterator_tag;

        const Variant& operator*() const;
        const Variant* operator->() const { return &**this; }
        Walk& operator++() {
            ++index_;
            return *this;
        }
        void operator++(int) { ++*this; }
        friend bool operator==(const Walk& walk, std::default_sentinel_t) { return walk.atEnd(); }

    private:
        friend class GenCollection;
        explicit Walk(std::shared_ptr<const KeyedSlots> items) : items_(std::move(items)) {}
        bool atEnd() const noexcept;

        std::shared_ptr<const KeyedSlots> items_;
        std::size_t index_ = 0;
    };
    Walk NewEnum() const { return Walk(items_); }
    // The same, for a for-each loop.
    Walk begin() const { return NewEnum(); }
    static std::default_sentinel_t end() { return {}; }

private:
    static const std::shared_ptr<KeyedSlots>& nothing();
    KeyedSlots& own();  // the list for changing: a copy of its own if a walk or a copy shares it
    KeyedSlots& ownOrder();  // the same, for changing more than values
    std::uint32_t find(IndexKey index) const;
    Variant itemOr(IndexKey index, bool AutoAdd, const Variant& Default);
    Variant addText(const Variant& member, const SharedText& sKey, std::int64_t Before,
                    std::int64_t After, bool bReplace);
    void append(const Variant& member, const SharedText& key, std::uint32_t hash);
    static bool isReplacedInPlace(const Variant& member);

    std::shared_ptr<KeyedSlots> items_;  // never null
    std::uint64_t stamp_ = 0;
    std::uint64_t order_ = 0;  // the stamp of the last change that was not of values only
};

/// The object a value refers to; null when it refers to none, or to none of type `T`.
template <class T>
std::shared_ptr<T> objectIn(const Variant& value) {
    const auto* object = value.get<ObjectRef>();
    return object != nullptr ? std::dynamic_pointer_cast<T>(*object) : nullptr;
}

/// The object at a position or under a key; null when there is none, or none of type `T`.
template <class T>
std::shared_ptr<T> objectAt(const GenCollection& col, IndexKey index) {
    return objectIn<T>(col.Item(index));
}

}  // namespace vl
