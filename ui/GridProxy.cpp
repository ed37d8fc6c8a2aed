#include "ui/GridProxy.h"

#include <algorithm>

namespace vl {

namespace {

// Where no language is set ("C"), texts would go by code point, capitals first.
QLocale languageOfTexts() {
    const QLocale locale = QLocale().collation();
    return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

}  // namespace

GridProxy::GridProxy(GridModel& model, QObject* parent)
    : QSortFilterProxyModel(parent), model_(model), collator_(languageOfTexts()) {
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
    collator_.setNumericMode(true);
    setSourceModel(&model);
}

void GridProxy::setSearch(const QString& search) {
    const QStringList words = search.split(u' ', Qt::SkipEmptyParts);
    if (words != words_) {
        words_ = words;
        invalidateFilter();
    }
}

const GridRow& GridProxy::row(int proxyRow) const {
    const int source = mapToSource(index(proxyRow, 0)).row();
    return model_.rows()[static_cast<std::size_t>(source)];
}

QModelIndex GridProxy::indexOf(std::string_view GUID) const {
    const std::optional<int> row = model_.find(GUID);
    return row ? mapFromSource(model_.index(*row, 0)) : QModelIndex();
}

bool GridProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    const GridColumn& column = model_.columns()[static_cast<std::size_t>(left.column())];
    const auto keyAt = [&](const QModelIndex& at) {
        return column.key(model_.rows()[static_cast<std::size_t>(at.row())], model_.context());
    };
    const SortKey a = keyAt(left);
    const SortKey b = keyAt(right);
    const auto* textA = std::get_if<QString>(&a);
    const auto* textB = std::get_if<QString>(&b);
    return textA && textB ? collator_.compare(*textA, *textB) < 0 : a < b;
}

bool GridProxy::filterAcceptsRow(int sourceRow, const QModelIndex&) const {
    const GridRow& row = model_.rows()[static_cast<std::size_t>(sourceRow)];
    return std::all_of(words_.begin(), words_.end(), [&row](const QString& word) {
        return row.summary.contains(word, Qt::CaseInsensitive) ||
               row.location.contains(word, Qt::CaseInsensitive);
    });
}

}  // namespace vl
