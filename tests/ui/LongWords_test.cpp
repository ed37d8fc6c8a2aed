#include "ui/LongWords.h"

#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QLabel>
#include <QRegularExpression>
#include <QString>

namespace vl {
namespace {

constexpr QChar kMayBreak(0x200b);

QString partsJoined(QString text) { return text.remove(kMayBreak); }

TEST(LongWords, WhatFitsStaysAsItIs) {
    const QFontMetrics metrics{QFont()};
    for (const char* text : {"", " ", "a", "Call the insurance\n  (15 minutes) ", "two  blanks"}) {
        EXPECT_EQ(withLongWordsParted(text, metrics, 300), text);
    }
}

TEST(LongWords, EachPartFitsTheLineAndNothingIsLost) {
    const QFontMetrics metrics{QFont()};
    const QString long1(200, u'W');
    const QString mixed = "See https://example.org/" + QString(300, u'x') + " at once\n" + long1;
    for (const int width : {40, 150, 270}) {
        SCOPED_TRACE(width);
        const QString parted = withLongWordsParted(mixed, metrics, width);
        EXPECT_EQ(partsJoined(parted), mixed);
        for (const QString& word : parted.split(QRegularExpression("\\s"))) {
            const QStringList parts = word.split(kMayBreak);
            for (const QString& part : parts) {
                EXPECT_LE(metrics.horizontalAdvance(part), width) << part.toStdString();
            }
        }
        EXPECT_TRUE(parted.startsWith("See "));
    }
}

// Also where one alone is wider than the line.
TEST(LongWords, NoCharacterIsParted) {
    const QFontMetrics metrics{QFont()};
    const QString bell = QString::fromUtf8("\xF0\x9F\x94\x94");  // two units
    const QString accented = QString::fromUtf8("e\xCC\x81");     // a letter and its accent
    QString bells;
    QString letters;
    for (int i = 0; i < 60; ++i) {
        bells += bell;
        letters += accented;
    }
    for (const int width : {1, 50}) {
        const QStringList bellParts = withLongWordsParted(bells, metrics, width).split(kMayBreak);
        EXPECT_GT(bellParts.size(), 1);
        for (const QString& part : bellParts) {
            EXPECT_EQ(part.size() % bell.size(), 0);
        }
        for (const QString& part : withLongWordsParted(letters, metrics, width).split(kMayBreak)) {
            EXPECT_EQ(part.size() % accented.size(), 0);
        }
    }
}

// What it is for: a label that may be so wide shows all of it.
TEST(LongWords, ALabelGetsAsHighAsItNeeds) {
    QLabel label;
    label.setWordWrap(true);
    const QString word(120, u'M');
    label.setText(word);
    const int oneLine = label.heightForWidth(200);
    label.setText(withLongWordsParted(word, label.fontMetrics(), 200));
    const int lines = (label.fontMetrics().horizontalAdvance(word) + 199) / 200;
    ASSERT_GT(lines, 3);
    EXPECT_GE(label.heightForWidth(200), oneLine + (lines - 1) * label.fontMetrics().height());
}

}  // namespace
}  // namespace vl
