// How the cells of a grid are painted.
#pragma once

#include <optional>

#include <QStyledItemDelegate>

#include "ui/Tones.h"

namespace vl {

/// The subject takes two lines, the second smaller and dimmed; "Due" is said in its tone. Which
/// column is which the delegate learns from the model's roles and the two positions it is given.
class GridDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    GridDelegate(int subjectColumn, int dueColumn, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const Tones& tones(const QPalette& palette) const;
    static void paintSubject(QPainter& painter, const QStyleOptionViewItem& cell,
                             const QModelIndex& index, const Tones& tone);

    int subjectColumn_;
    int dueColumn_;
    // Of the palette last painted with: deriving them for every cell would be waste.
    mutable qint64 tonesOf_ = 0;
    mutable std::optional<Tones> tones_;
};

}  // namespace vl
