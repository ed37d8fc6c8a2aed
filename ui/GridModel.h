// The rows of one grid, keyed by GUID.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <QAbstractTableModel>

#include "ui/GridColumns.h"
#include "ui/GridRow.h"

namespace vl {

/// Holds snapshots, never events' live values; sorting and filtering are the proxy's. Looking a
/// GUID up (without regard to case) costs one hash; removing a row in the middle, a pass over the
/// rows behind it.
class GridModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Role {
        DueStateRole = Qt::UserRole,  ///< int(DueState)
        OverdueRole,                  ///< bool: a reminder, so its past is overdue
        DismissedRole,                ///< bool: shown dimmed
        DetailRole,                   ///< the second line of the subject
        SummaryRole,                  ///< its first line
    };

    /// `columns` must outlive the model.
    GridModel(std::span<const GridColumn> columns, TimeText timeText, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    std::span<const GridColumn> columns() const { return columns_; }
    const std::vector<GridRow>& rows() const { return rows_; }
    const GridContext& context() const { return context_; }
    std::optional<int> find(std::string_view GUID) const;

    /// Replaces all rows. Where GUIDs and their order are what they were, only rows that look
    /// different are announced; else the model is reset.
    void setRows(std::vector<GridRow> rows);
    /// Adds the row, or replaces the one of its GUID where it stands.
    void putRow(GridRow row);
    /// False when there was none.
    bool removeRow(std::string_view GUID);

    /// Gives each row the field of its event, as far as that is known by now.
    void renewFields();

    /// Announces the live column when the minute has changed, every column when the day has.
    void setNow(DateTime now);
    void setDismissedView(bool on);

private:
    void replace(int row, GridRow with);
    void buildIndex();

    std::span<const GridColumn> columns_;
    GridContext context_;
    std::vector<GridRow> rows_;
    std::unordered_map<std::string, int> byGuid_;  // folded GUID, row
};

}  // namespace vl
