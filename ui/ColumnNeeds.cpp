#include "ui/ColumnNeeds.h"

#include <algorithm>

#include <QFontMetrics>
#include <QSet>

#include "ui/GridModel.h"

namespace vl {

namespace {

constexpr int kDaysAround = 31;        // the views reach that far
constexpr int kLongestDistance = 178;  // minutes: "2 h 58 min" is longer than "3 h"
constexpr int kMostOfAWord = 22;       // average characters
constexpr int kMostWords = 100;

// A row of the model's kind, all of whose moments are `moment`.
GridRow rowAt(DateTime moment, bool ofEvent) {
    GridRow row;
    row.reminder = row.due = moment;
    row.span = {moment, moment, false};
    row.dismissed = moment;
    row.ofEvent = ofEvent;
    return row;
}

std::vector<GridRow> rowsAround(DateTime now, bool ofEvent) {
    std::vector<GridRow> rows;
    for (const int minutes : {-kLongestDistance, kLongestDistance}) {
        rows.push_back(rowAt(now.addMinutes(minutes), ofEvent));
    }
    for (int day = -kDaysAround; day <= kDaysAround; ++day) {
        for (const int hour : {10, 20}) {  // before and after noon, two figures each
            const DateTime at = now.date().addDays(day).addMinutes(hour * 60 + 38);
            rows.push_back(rowAt(at, ofEvent));
        }
    }
    return rows;
}

// Figures and small letters differ little: who is two characters shorter is not wider.
int widest(const QSet<QString>& texts, const QFontMetrics& metrics) {
    qsizetype longest = 0;
    for (const QString& text : texts) {
        longest = std::max(longest, text.size());
    }
    int width = 0;
    for (const QString& text : texts) {
        if (text.size() + 2 > longest) {
            width = std::max(width, metrics.horizontalAdvance(text));
        }
    }
    return width;
}

// The rows whose moment is the first and the last one.
std::vector<const GridRow*> endsOf(const GridModel& model, const GridColumn& column) {
    const std::vector<GridRow>& rows = model.rows();
    const auto key = [&](const GridRow& row) { return column.key(row, model.context()); };
    const auto [first, last] =
        std::minmax_element(rows.begin(), rows.end(),
                            [&](const GridRow& a, const GridRow& b) { return key(a) < key(b); });
    return rows.empty() ? std::vector<const GridRow*>() : std::vector{&*first, &*last};
}

int momentWidth(const GridModel& model, const GridColumn& column,
                const std::vector<GridRow>& around, const QFontMetrics& metrics) {
    QSet<QString> texts;
    for (const GridRow& row : around) {
        texts.insert(column.text(row, model.context()));
    }
    for (const GridRow* row : endsOf(model, column)) {
        texts.insert(column.text(*row, model.context()));
    }
    return widest(texts, metrics);
}

int wordWidth(const GridModel& model, const GridColumn& column, const QFontMetrics& metrics) {
    QSet<QString> words;  // a few, however many rows
    int width = 0;
    for (const GridRow& row : model.rows()) {
        const QString word = column.text(row, model.context());
        if (words.size() < kMostWords && !words.contains(word)) {
            words.insert(word);
            width = std::max(width, metrics.horizontalAdvance(word));
        }
    }
    return std::min(width, kMostOfAWord * metrics.averageCharWidth());
}

}  // namespace

std::vector<int> neededWidths(const GridModel& model, const QFontMetrics& metrics) {
    const bool ofEvents = columnIndex(model.columns(), CIDReminderD) < 0;
    const std::vector<GridRow> around = rowsAround(model.context().now, ofEvents);
    std::vector<int> widths;
    for (const GridColumn& column : model.columns()) {
        switch (column.says) {
            case Says::Moment:
                widths.push_back(momentWidth(model, column, around, metrics));
                break;
            case Says::Word:
                widths.push_back(wordWidth(model, column, metrics));
                break;
            case Says::Text:
                widths.push_back(0);
                break;
        }
    }
    return widths;
}

}  // namespace vl
