#include "ui/FormFont.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QToolTip>
#include <QTreeView>

namespace vl {
namespace {

TEST(FormFont, IsThatOfEveryControlButTheGrids) {
    QWidget form;
    QLabel label("Period", &form);
    QWidget panel(&form);
    QPushButton inside("Hide", &panel);
    QTreeView grid(&form);
    QFont bold = label.font();
    bold.setBold(true);
    bold.setPointSize(30);
    label.setFont(bold);
    const QString before = grid.font().family();
    const QPalette colours = label.palette();
    applyFormFont(form);
    for (const QWidget* control : {static_cast<QWidget*>(&label), static_cast<QWidget*>(&inside)}) {
        EXPECT_EQ(control->font().family(), "Arial");
        EXPECT_EQ(control->font().pointSize(), QApplication::font().pointSize());
    }
    EXPECT_TRUE(label.font().bold()) << "what stands out stays so";
    EXPECT_EQ(label.palette(), colours) << "the text's colour is the desktop's";
    EXPECT_EQ(grid.font().family(), before);
    EXPECT_EQ(grid.viewport()->font().family(), before);
}

TEST(FormFont, MakesOKTheDefaultButton) {
    QWidget form;
    QPushButton cancel("&Cancel", &form);
    QPushButton ok("&OK", &form);
    applyFormFont(form);
    EXPECT_TRUE(ok.isDefault());
    EXPECT_FALSE(cancel.isDefault());
}

TEST(FormFont, IsThatOfToolTips) {
    const QFont before = QToolTip::font();
    applyTipFont();
    EXPECT_EQ(QToolTip::font().family(), "Arial");
    EXPECT_EQ(QToolTip::font().pointSize(), before.pointSize());
    QToolTip::setFont(before);
}

}  // namespace
}  // namespace vl
