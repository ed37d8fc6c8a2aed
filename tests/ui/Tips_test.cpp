#include "ui/Tips.h"

#include <gtest/gtest.h>

#include <QTextDocument>

namespace vl {
namespace {

const QString kArabic = QString::fromUtf8("\xD8\xA7\xD8\xAC\xD8\xAA");
const QString kIsolated = QChar(0x2068) + kArabic + QChar(0x2069);
constexpr QChar kLeftToRight(0x200e);

TEST(PlainTip, IsTheTextWhereNothingIsToBeSaid) {
    for (const char* text : {"", "Meeting", "Meeting\n15 minutes\n\nRoom 2"}) {
        EXPECT_EQ(plainTip(text), text);
    }
}

// "15 minutes" below an Arabic subject would read "minutes 15".
TEST(PlainTip, ALineFromRightToLeftTurnsNoOther) {
    const QString tip = plainTip(kArabic + "\n15 minutes");
    EXPECT_EQ(tip, kLeftToRight + kIsolated + "\n15 minutes");
    EXPECT_FALSE(tip.isRightToLeft());
    EXPECT_EQ(plainTip("Meeting\n" + kArabic + "\n2 hours"),
              kLeftToRight + QString("Meeting\n") + kIsolated + "\n2 hours");
    const QString mixed = "Meeting with " + kArabic;
    EXPECT_EQ(plainTip(mixed), mixed) << "it begins from the left, and Qt does the rest";
}

TEST(PlainTip, WhatLooksLikeMarkupIsShownToTheLetter) {
    const QString text = kArabic + " <b>x</b>\n<img src=\"file:///x.png\">";
    QTextDocument shown;
    shown.setHtml(plainTip(text));
    EXPECT_EQ(shown.toPlainText(), kLeftToRight + QString(QChar(0x2068)) + kArabic + " <b>x</b>" +
                                       QChar(0x2069) + "\n<img src=\"file:///x.png\">");
}

}  // namespace
}  // namespace vl
