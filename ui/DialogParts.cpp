#include "ui/DialogParts.h"

#include <QCheckBox>
#include <QDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QStyleOptionFocusRect>

#include "ui/FormFont.h"
#include "ui/SystemHelpers.h"
#include "ui/Tones.h"

namespace vl {

namespace {

QList<QKeySequence> keysOf(int code) {
    switch (code) {
        case kKeyEnter:
            return {Qt::Key_Return, Qt::Key_Enter};
        case kKeyF1:
            return {Qt::Key_F1};
        default:
            return {Qt::Key_F2};
    }
}

/// A link that Space opens: Enter is the dialog's.
class HelpLink final : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Space) {
            emit linkActivated({});
        } else {
            QLabel::keyPressEvent(event);
        }
    }
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        update();
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLabel::focusOutEvent(event);
        update();
    }
    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        if (hasFocus()) {
            QStyleOptionFocusRect rim;
            rim.initFrom(this);
            rim.rect = rect();
            rim.state |= QStyle::State_KeyboardFocusChange;
            QPainter painter(this);
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &rim, &painter, this);
        }
    }
};

/// Applies colours to a dialog, at once and whenever the desktop changes its own.
class ToneKeeper final : public QObject {
public:
    ToneKeeper(QDialog& dialog, std::function<void()> apply)
        : QObject(&dialog), apply_(std::move(apply)) {
        dialog.installEventFilter(this);
        apply_();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::PaletteChange) {
            apply_();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> apply_;
};

void keepTones(QDialog& dialog, std::function<void()> apply) {
    new ToneKeeper(dialog, std::move(apply));  // the dialog's child
}

void lightenChoices(const QDialog& dialog) {
    for (auto* button : dialog.findChildren<QAbstractButton*>()) {
        if (qobject_cast<QRadioButton*>(button) || qobject_cast<QCheckBox*>(button)) {
            button->setPalette(choicePalette(dialog.palette()));
        }
    }
}

// The title may be the one place that names the event.
void makeRoomForTitle(QDialog& dialog) {
    if (auto* layout = qobject_cast<QBoxLayout*>(dialog.layout())) {
        layout->addStrut(titleRoom(dialog));
    }
}

}  // namespace

QLabel* makeHelpLink(QDialog& dialog, const std::function<void()>& show) {
    auto* link = new HelpLink(&dialog);
    link->setObjectName("lblF1");
    const QString text = QObject::tr("Show online help...");
    keepTones(dialog, [link, text, &dialog] {
        const QColor colour = Tones(dialog.palette(), QPalette::Window).accent;
        link->setText(
            QStringLiteral("<a href=\"F1\" style=\"color:%1\">%2</a>").arg(colour.name(), text));
    });
    link->setAccessibleName(text);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    link->setFocusPolicy(Qt::TabFocus);
    link->setMargin(2);  // for the rim that shows the focus
    showHandCursor(*link);
    QObject::connect(link, &QLabel::linkActivated, &dialog, show);
    return link;
}

QFrame* makeButtonGroup(QDialog& dialog, QPushButton& first, QPushButton& second) {
    auto* group = new QFrame(&dialog);
    group->setObjectName("frmButtons");
    group->setFrameStyle(QFrame::NoFrame);
    // Enter is the first button's, wherever the focus is.
    first.setDefault(true);
    second.setAutoDefault(false);
    auto* row = new QHBoxLayout(group);
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch(1);
    row->addWidget(&first);
    row->addWidget(&second);
    return group;
}

void setTabOrders(std::initializer_list<QWidget*> controls) {
    for (auto next = controls.begin() + 1; next != controls.end(); ++next) {
        QWidget::setTabOrder(*(next - 1), *next);
    }
}

void previewKeys(QDialog& dialog, std::initializer_list<int> codes,
                 const std::function<void(int)>& DoKeyDown) {
    for (const int code : codes) {
        for (const QKeySequence& key : keysOf(code)) {
            auto* shortcut = new QShortcut(key, &dialog);
            QObject::connect(shortcut, &QShortcut::activated, &dialog,
                             [DoKeyDown, code] { DoKeyDown(code); });
        }
    }
}

void adjustWindow(QDialog& dialog, bool onTop) {
    applyFormFont(dialog);
    makeRoomForTitle(dialog);
    keepTones(dialog, [&dialog] { lightenChoices(dialog); });
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // Only its owner waits for it: reminders still come, and toast and tray go on working.
    dialog.setWindowModality(Qt::WindowModal);
    setOnTop(dialog, onTop);
}

}  // namespace vl
