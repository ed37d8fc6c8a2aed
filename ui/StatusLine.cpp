#include "ui/StatusLine.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include "ui/ElidedLabel.h"
#include "ui/Named.h"
#include "ui/Tips.h"
#include "ui/Tones.h"

namespace vl {

namespace {

// It begins at the left, whatever its first word is.
QString fromTheLeft(const QString& line) {
    constexpr QChar kLeftToRight(0x200e);
    return line.isRightToLeft() ? kLeftToRight + line : line;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    lblStatus = named(new ElidedLabel(this), "lblStatus");
    lblNotice = named(new QLabel(this), "lblNotice");
    lblNotice->setTextFormat(Qt::PlainText);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(lblStatus, 1);
    row->addWidget(lblNotice);
}

void StatusLine::say(const Saying& saying) {
    const QString line = fromTheLeft(saying.line);
    if (lblStatus->text() != line || trouble_ != saying.trouble) {
        lblStatus->setText(line);
        trouble_ = saying.trouble;
        colour();
    }
    lblStatus->setToolTip(plainTip(saying.tip.isEmpty() ? line : saying.tip));
    lblNotice->setText(saying.notice);
    lblNotice->setToolTip(plainTip(saying.noticeTip));
    lblNotice->setVisible(!saying.notice.isEmpty());
}

void StatusLine::colour() {
    QPalette colours;
    if (trouble_) {
        colours.setColor(QPalette::WindowText, Tones(palette(), QPalette::Window).warm);
    }
    lblStatus->setPalette(colours);
}

// The desktop has turned dark, or light: the line has a colour of its own.
void StatusLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && lblStatus != nullptr) {
        colour();
    }
}

}  // namespace vl
