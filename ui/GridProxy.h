// Sorting and searching of one grid.
#pragma once

#include <QCollator>
#include <QSortFilterProxyModel>

#include "ui/GridModel.h"

namespace vl {

/// Sorts by the columns' keys, stable: rows that compare equal stay in the order of the model.
/// Texts go by the user's language, without regard to case, numbers inside them by value.
class GridProxy final : public QSortFilterProxyModel {
    Q_OBJECT

public:
    /// `model` must outlive the proxy.
    explicit GridProxy(GridModel& model, QObject* parent = nullptr);

    /// Only rows whose summary or location contains every word of `search`, without regard to
    /// case; an empty text shows all.
    void setSearch(const QString& search);
    bool searching() const { return !words_.isEmpty(); }

    /// `proxyRow` is a row of this proxy.
    const GridRow& row(int proxyRow) const;
    /// The proxy's index of the row, not valid when it is not there or filtered out.
    QModelIndex indexOf(std::string_view GUID) const;

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
    bool filterAcceptsRow(int sourceRow, const QModelIndex& parent) const override;

private:
    const GridModel& model_;
    QCollator collator_;
    QStringList words_;
};

}  // namespace vl
