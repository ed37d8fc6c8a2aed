#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "ui/Balloon.h"
#include "ui/ElidedLabel.h"
#include "ui/FormFont.h"
#include "ui/UpDown.h"

namespace vl {
namespace {

TEST(UpDown, TellsEveryStep) {
    UpDown updown;
    updown.show();
    QSignalSpy stepped(&updown, &UpDown::stepped);
    QTest::keyClick(&updown, Qt::Key_Up);
    QTest::keyClick(&updown, Qt::Key_Down);
    ASSERT_EQ(stepped.count(), 2);
    EXPECT_EQ(stepped.at(0).at(0).toInt(), 1);
    EXPECT_EQ(stepped.at(1).at(0).toInt(), -1);
}

TEST(UpDown, KeepsTheValueThatItIsSetTo) {
    UpDown updown;
    updown.setValue(17);
    QObject::connect(&updown, &UpDown::stepped, &updown,
                     [&] { updown.setValue(wrapped(updown.value(), 17)); });
    updown.stepBy(1);
    EXPECT_EQ(updown.value(), 1);
    updown.stepBy(-1);
    EXPECT_EQ(updown.property("value").toInt(), 17) << "as screen readers ask for it";
}

TEST(UpDown, WrapsAtBothEnds) {
    EXPECT_EQ(wrapped(0, 17), 17);
    EXPECT_EQ(wrapped(1, 17), 1);
    EXPECT_EQ(wrapped(17, 17), 17);
    EXPECT_EQ(wrapped(18, 17), 1);
    EXPECT_EQ(wrapped(-4, 17), 17);
}

TEST(BalloonSeconds, AreWhole) {
    EXPECT_EQ(balloonText("Dentist (15 minutes)\r\nChoir\r\n"), "Dentist (15 minutes)\nChoir");
    EXPECT_EQ(balloonSeconds(5000), 5);
    EXPECT_EQ(balloonSeconds(499), 0);
    EXPECT_EQ(balloonSeconds(1500), 2);
    EXPECT_EQ(balloonSeconds(2500), 2);
}

TEST(ElidedLabel, CutsAtALetterAndSaysSo) {
    ElidedLabel label;
    const QString line("Project meeting, Today 14:45-15:30, Room 2");
    label.setText(line);
    const int wide = label.fontMetrics().horizontalAdvance(line) + 10;
    label.resize(wide, label.fontMetrics().height());
    const QImage whole = label.grab().toImage();
    const int narrow = label.fontMetrics().horizontalAdvance("Project meeting, To") + 2;
    label.resize(narrow, label.height());
    const QImage cut = label.grab().toImage();
    EXPECT_EQ(label.text(), line);
    EXPECT_NE(cut, whole.copy(0, 0, narrow, label.height())) << "not in the middle of a letter";
    QLabel same(label.fontMetrics().elidedText(line, Qt::ElideRight, narrow));
    same.resize(label.size());
    EXPECT_EQ(cut, same.grab().toImage());
    EXPECT_EQ(label.sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
}

// What stands above it would move with every row that becomes current.
TEST(ElidedLabel, IsAsHighWithoutAText) {
    QWidget form;
    auto* rows = new QVBoxLayout(&form);
    auto* above = new QWidget(&form);
    auto* line = new ElidedLabel(&form);
    line->setFont(formFont(*line));
    rows->addWidget(above, 1);
    rows->addWidget(line);
    form.resize(300, 200);
    form.show();
    const int before = above->height();
    line->setText("Project meeting, Today 14:45-15:30, Room 2");
    rows->activate();
    EXPECT_EQ(above->height(), before);
    EXPECT_GE(line->height(), line->fontMetrics().height());
}

}  // namespace
}  // namespace vl
