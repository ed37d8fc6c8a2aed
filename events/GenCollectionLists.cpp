// The forms a collection is read from and written to.
#include "KeyedSlots.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "events/GenCollection.h"

namespace vl {

namespace {

// What an item says in a list. Throws `Error` when it has no text form or lacks the element.
std::string listText(const Variant& item, int element) {
    const Variant* value = &item;
    if (element != -1) {
        const auto* object = item.get<ObjectRef>();
        const auto* list =
            object != nullptr ? dynamic_cast<const ValueList*>(object->get()) : nullptr;
        const auto at = static_cast<std::size_t>(element);
        if (list == nullptr || element < 0 || at >= list->items.size()) {
            throw Error(ErrNo::NotFound, "an item has no element " + std::to_string(element));
        }
        value = &list->items[at];
    }
    return value->isNull() ? std::string() : value->toText();
}

}  // namespace

void GenCollection::LoadFromParamList(std::span<const Variant> params) {
    const ErrScope scope;
    for (std::size_t i = 0; i + 1 < params.size(); i += 2) {
        attempt([&] { Add(params[i + 1], params[i].toText()); });
    }
}

void GenCollection::LoadFromParamList(std::initializer_list<Variant> params) {
    LoadFromParamList(std::span<const Variant>(params.begin(), params.size()));
}

void GenCollection::LoadFromParamList(std::string_view List, std::string_view Delimiter) {
    LoadFromList(List, Delimiter, {}, false, true, false, true);
}

std::size_t GenCollection::LoadFromList(std::string_view List, std::string_view Delimiter,
                                        std::string_view KeyPrefix, bool ClearFirst, bool UseKey,
                                        bool bTrim, bool bPairs, bool UseValAsKey) {
    const auto pieces = text::split(List, Delimiter);
    if (ClearFirst) {
        Clear();
    }
    for (std::size_t i = 0; i < pieces.size(); i += bPairs ? 2 : 1) {
        const std::string_view piece = bTrim ? text::trimBlanks(pieces[i]) : pieces[i];
        if (piece.empty()) {
            continue;
        }
        if (!UseKey) {
            Add(piece);
            continue;
        }
        const std::string key = std::string(KeyPrefix).append(piece);
        if (!bPairs || UseValAsKey) {
            Add(piece, key);
        } else if (i + 1 < pieces.size()) {
            Add(pieces[i + 1], key);
        }
    }
    return Count();
}

std::string GenCollection::SaveAsList(std::string_view Delimiter, int Index, bool EndWithDelimiter,
                                      std::int64_t maxItemCount, bool SaveKeyValPair) const {
    const ErrScope scope;
    const KeyedSlots& items = *items_;
    std::string list;
    std::int64_t seen = 0;
    for (std::size_t i = 0; i < items.count(); ++i) {
        attempt([&] {
            const std::string value = listText(items.at(i).value, Index);
            if (SaveKeyValPair) {
                list.append(items.at(i).shownKey()).append(Delimiter);
            }
            list.append(value).append(Delimiter);
        });
        if (++seen == maxItemCount) {
            break;
        }
    }
    if (list.size() <= Delimiter.size()) {
        return {};
    }
    if (!EndWithDelimiter) {
        list.resize(list.size() - Delimiter.size());
    }
    return list;
}

std::vector<Variant> GenCollection::SaveAsArray() const {
    std::vector<Variant> values;
    values.reserve(Count());
    for (const Variant& value : *this) {
        values.push_back(value);
    }
    return values;
}

std::vector<std::vector<Variant>> GenCollection::SaveAs2DArray(bool Transposed) const {
    const KeyedSlots& items = *items_;
    std::vector<std::vector<Variant>> table(Transposed ? 2 : 0);
    for (std::size_t i = 0; i < items.count(); ++i) {
        if (Transposed) {
            table[0].emplace_back(items.at(i).shownKey());
            table[1].push_back(items.at(i).value);
        } else {
            table.push_back({items.at(i).shownKey(), items.at(i).value});
        }
    }
    return table;
}

std::shared_ptr<ValueList> GenCollection::SaveAsCol() const {
    return std::make_shared<ValueList>(SaveAsArray());
}

}  // namespace vl
