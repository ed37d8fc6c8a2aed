#include <gtest/gtest.h>

#include <algorithm>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStandardItemModel>

#include "ui/GridDelegate.h"
#include "ui/GridModel.h"
#include "ui/Tones.h"
#include "ui/TrayPictures.h"

namespace vl {
namespace {

int differingPixels(const QImage& a, const QImage& b) {
    int n = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            // By opacity alone: as a panel shows them that draws its icons in one colour.
            n += std::abs(qAlpha(a.pixel(x, y)) - qAlpha(b.pixel(x, y))) > 128 ? 1 : 0;
        }
    }
    return n;
}

TEST(TrayPictures, AreThereAtEverySizeAPanelAsksFor) {
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        SCOPED_TRACE(size);
        EXPECT_TRUE(quietPicture().availableSizes().contains(QSize(size, size)));
        EXPECT_TRUE(newPicture().availableSizes().contains(QSize(size, size)));
    }
}

TEST(TrayPictures, DifferInOutline) {
    for (const int size : {16, 22, 64}) {
        SCOPED_TRACE(size);
        const QImage plain = quietPicture().pixmap(size).toImage();
        const QImage dotted = newPicture().pixmap(size).toImage();
        EXPECT_GE(differingPixels(plain, dotted), size * size / 20);
    }
}

QPalette paletteOf(QRgb base, QRgb text, QRgb highlight) {
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(base));
    palette.setColor(QPalette::Text, QColor(text));
    palette.setColor(QPalette::Highlight, QColor(highlight));
    return palette;
}

TEST(Tones, CanBeReadOnAnyBase) {
    const QPalette palettes[] = {
        paletteOf(0xffffffff, 0xff000000, 0xff308cc6),
        paletteOf(0xff1e1e1e, 0xfff0f0f0, 0xff2a82da),
        paletteOf(0xff000000, 0xffffffff, 0xff000080),
        paletteOf(0xffffffff, 0xff000000, 0xffffff00),
    };
    for (const QPalette& palette : palettes) {
        const QColor base = palette.color(QPalette::Base);
        SCOPED_TRACE(base.name().toStdString());
        const Tones tones(palette);
        EXPECT_GE(contrast(tones.accent, base), 4.5);
        EXPECT_GE(contrast(tones.warm, base), 4.5);
        EXPECT_GE(contrast(tones.dimmed, base), 3.0);
        EXPECT_LT(contrast(tones.dimmed, base), contrast(palette.color(QPalette::Text), base));
    }
}

// The strongest contrast to the ground in these lines of the picture.
double contrastIn(const QImage& picture, int from, int to) {
    const QColor ground = picture.pixelColor(picture.width() - 2, picture.height() / 2);
    double most = 1;
    for (int y = from; y < to; ++y) {
        for (int x = 0; x < picture.width() / 2; ++x) {
            most = std::max(most, contrast(picture.pixelColor(x, y), ground));
        }
    }
    return most;
}

TEST(GridDelegate, OfASelectedRowBothLinesCanBeReadAlike) {
    QStandardItemModel model(1, 1);
    model.setData(model.index(0, 0), "HHHHHH", GridModel::SummaryRole);
    model.setData(model.index(0, 0), "HHHHHH", GridModel::DetailRole);
    const GridDelegate delegate(0, 1);
    QStyleOptionViewItem option;
    option.palette = QApplication::palette();
    option.font = QApplication::font();
    option.fontMetrics = QFontMetrics(option.font);
    option.state = QStyle::State_Enabled | QStyle::State_Active | QStyle::State_Selected;
    option.showDecorationSelected = true;
    option.rect = QRect(0, 0, 400, delegate.sizeHint(option, model.index(0, 0)).height());
    QImage picture(option.rect.size(), QImage::Format_RGB32);
    picture.fill(option.palette.color(QPalette::Base));
    QPainter painter(&picture);
    delegate.paint(&painter, option, model.index(0, 0));
    painter.end();
    const int middle = 2 + option.fontMetrics.height();
    const double first = contrastIn(picture, 3, middle);
    EXPECT_GT(first, 2);
    EXPECT_GE(contrastIn(picture, middle + 1, picture.height() - 3), 0.9 * first);
}

TEST(Tones, ContrastIsThatOfTheStandard) {
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21.0, 0.01);
    EXPECT_NEAR(contrast(Qt::white, Qt::white), 1.0, 0.01);
    EXPECT_NEAR(contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
}

}  // namespace
}  // namespace vl
