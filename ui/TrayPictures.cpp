#include "ui/TrayPictures.h"

#include <algorithm>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace vl {

namespace {

// Amber with a dark rim: the fill stands out on a dark panel, the rim on a light one.
constexpr QRgb kFill = qRgb(0xf2, 0xa9, 0x2c);
constexpr QRgb kRim = qRgb(0x5b, 0x3a, 0x08);
constexpr QRgb kDot = qRgb(0xd6, 0x2f, 0x2f);
constexpr QRgb kDotRim = qRgb(0x6e, 0x0f, 0x0f);

// In a box of 24 by 24.
QPainterPath bell() {
    QPainterPath path;
    path.moveTo(12, 3.2);
    path.cubicTo(7.6, 3.2, 5.9, 6.6, 5.8, 10);
    path.cubicTo(5.7, 13.4, 5.2, 15, 3, 17.6);
    path.lineTo(21, 17.6);
    path.cubicTo(18.8, 15, 18.3, 13.4, 18.2, 10);
    path.cubicTo(18.1, 6.6, 16.4, 3.2, 12, 3.2);
    path.closeSubpath();
    return path;
}

QPainterPath clapper() {
    QPainterPath path;
    path.moveTo(9.2, 19.4);
    path.cubicTo(9.6, 22.8, 14.4, 22.8, 14.8, 19.4);
    path.closeSubpath();
    return path;
}

QPainterPath knob() {
    QPainterPath path;
    path.addEllipse(QPointF(12, 2.9), 1.7, 1.7);
    return path;
}

QPixmap picture(int size, bool withDot) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 24.0, size / 24.0);
    // One pixel of rim, whatever the size, but no hairline on the large ones.
    const double rim = std::max(24.0 / size, 1.1);
    painter.setPen(QPen(QColor(kRim), rim, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(kFill));
    for (const QPainterPath& part : {knob(), clapper(), bell()}) {
        painter.drawPath(part);
    }
    if (withDot) {
        const QPointF centre(17.6, 6.4);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(centre, 7.4, 7.4);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setPen(QPen(QColor(kDotRim), rim * 0.8));
        painter.setBrush(QColor(kDot));
        painter.drawEllipse(centre, 5.2, 5.2);
    }
    return pixmap;
}

QIcon allSizes(bool withDot) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        icon.addPixmap(picture(size, withDot));
    }
    return icon;
}

}  // namespace

TrayPictures::TrayPictures() : Pic1(allSizes(false)), Pic2(allSizes(true)) {}

}  // namespace vl
