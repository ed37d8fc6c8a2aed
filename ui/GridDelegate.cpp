#include "ui/GridDelegate.h"

#include <QApplication>
#include <QPainter>

#include "ui/GridModel.h"

namespace vl {

namespace {

constexpr int kLineMargin = 4;  // above and below the two lines

// A text from right to left keeps the order of its words, whichever way the window goes.
QString inOwnDirection(const QString& text) {
    constexpr QChar kRightToLeftIsolate(0x2067);
    return text.isRightToLeft() ? kRightToLeftIsolate + text : text;
}

QFont smaller(const QFont& font) {
    QFont second = font;
    if (font.pointSizeF() > 0) {
        second.setPointSizeF(font.pointSizeF() * 0.88);
    } else {  // a desktop that sets its font in pixels
        second.setPixelSize(font.pixelSize() * 7 / 8);
    }
    return second;
}

bool isSelected(const QStyleOptionViewItem& option) {
    return (option.state & QStyle::State_Selected) != 0;
}

QPalette::ColorGroup groupOf(const QStyleOptionViewItem& option) {
    return (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
}

}  // namespace

GridDelegate::GridDelegate(int subjectColumn, int dueColumn, QObject* parent)
    : QStyledItemDelegate(parent), subjectColumn_(subjectColumn), dueColumn_(dueColumn) {}

void GridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (index.column() == subjectColumn_) {
        cell.text.clear();
    }
    const QWidget* widget = cell.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
    if (index.column() == subjectColumn_) {
        paintSubject(*painter, cell, index, tones(option.palette));
    }
}

QSize GridDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QSize one = QStyledItemDelegate::sizeHint(option, index);
    const int lines =
        option.fontMetrics.height() + QFontMetrics(smaller(option.font)).height() + 2 * kLineMargin;
    return {one.width(), std::max(lines, option.fontMetrics.height() + 2 * kLineMargin)};
}

void GridDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = Qt::ElideRight;
    option->text = inOwnDirection(option->text);
    const Tones& tone = tones(option->palette);
    const bool dismissed = index.data(GridModel::DismissedRole).toBool();
    if (dismissed) {
        option->palette.setColor(QPalette::Text, tone.dimmed);
    } else if (index.column() == dueColumn_) {
        const auto state = static_cast<DueState>(index.data(GridModel::DueStateRole).toInt());
        if (state == DueState::Now) {
            option->palette.setColor(QPalette::Text, tone.accent);
            option->font.setBold(true);
        } else if (state == DueState::Past && index.data(GridModel::OverdueRole).toBool()) {
            option->palette.setColor(QPalette::Text, tone.warm);
        }
    }
}

const Tones& GridDelegate::tones(const QPalette& palette) const {
    if (!tones_ || tonesOf_ != palette.cacheKey()) {
        tones_.emplace(palette);
        tonesOf_ = palette.cacheKey();
    }
    return *tones_;
}

void GridDelegate::paintSubject(QPainter& painter, const QStyleOptionViewItem& cell,
                                const QModelIndex& index, const Tones& tone) {
    const QString summary = inOwnDirection(index.data(GridModel::SummaryRole).toString());
    const QString detail = index.data(GridModel::DetailRole).toString();
    const QFont second = smaller(cell.font);
    const QFontMetrics smallMetrics(second);
    const int padding = 1 + QApplication::style()->pixelMetric(QStyle::PM_FocusFrameHMargin, &cell);
    const QRect area = cell.rect.adjusted(padding, 0, -padding, 0);
    const int height = cell.fontMetrics.height() + (detail.isEmpty() ? 0 : smallMetrics.height());
    const int top = area.top() + (area.height() - height) / 2;
    const int align = static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine;
    const QColor text = cell.palette.color(
        groupOf(cell), isSelected(cell) ? QPalette::HighlightedText : QPalette::Text);
    painter.save();
    painter.setFont(cell.font);
    painter.setPen(text);
    painter.drawText(QRect(area.left(), top, area.width(), cell.fontMetrics.height()), align,
                     cell.fontMetrics.elidedText(summary, Qt::ElideRight, area.width()));
    if (!detail.isEmpty()) {
        painter.setFont(second);
        // The highlight leaves the desktop's own text little contrast: nothing of it is given away.
        painter.setPen(isSelected(cell) ? text : tone.dimmed);
        painter.drawText(QRect(area.left(), top + cell.fontMetrics.height(), area.width(),
                               smallMetrics.height()),
                         align, smallMetrics.elidedText(detail, Qt::ElideRight, area.width()));
    }
    painter.restore();
}

}  // namespace vl
