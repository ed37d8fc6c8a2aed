#include "ui/DialogParts.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>

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

}  // namespace

QLabel* makeHelpLink(QDialog& dialog, const std::function<void()>& show) {
    auto* link = new QLabel(&dialog);
    link->setObjectName("lblF1");
    const QString text = QObject::tr("Show online help...");
    link->setText(QStringLiteral("<a href=\"F1\" style=\"color:%1\">%2</a>")
                      .arg(Tones(dialog.palette()).accent.name(), text));
    link->setAccessibleName(text);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    link->setFocusPolicy(Qt::TabFocus);
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
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setOnTop(dialog, onTop);
}

}  // namespace vl
