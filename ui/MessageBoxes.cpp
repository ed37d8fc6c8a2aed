#include "ui/MessageBoxes.h"

#include <utility>

#include <QAbstractButton>
#include <QGridLayout>
#include <QMessageBox>
#include <QShortcut>

#include "ui/FormFont.h"
#include "ui/QtText.h"
#include "ui/SystemHelpers.h"

namespace vl {

namespace {

BoxAnswer answerOf(int button) {
    switch (button) {
        case QMessageBox::Ok:
            return BoxAnswer::Ok;
        case QMessageBox::Yes:
            return BoxAnswer::Yes;
        case QMessageBox::No:
            return BoxAnswer::No;
        default:
            return BoxAnswer::Cancel;
    }
}

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::Question:
            return QMessageBox::Question;
        case BoxIcon::Critical:
            return QMessageBox::Critical;
        case BoxIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

// Qt's own texts lack the underlined letter on some desktops.
void nameButtons(QMessageBox& box) {
    static constexpr std::pair<QMessageBox::StandardButton, const char*> kTexts[] = {
        {QMessageBox::Ok, "&OK"},
        {QMessageBox::Yes, "&Yes"},
        {QMessageBox::No, "&No"},
        {QMessageBox::Cancel, "&Cancel"}};
    for (const auto& [button, text] : kTexts) {
        if (QAbstractButton* shown = box.button(button)) {
            shown->setText(QObject::tr(text));
            shown->setIcon(QIcon());  // as in the dialogs
        }
    }
}

// Wide enough for its title, which often says more than its text.
void makeRoomForTitle(QMessageBox& box) {
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(titleRoom(box), 0), grid->rowCount(), 0, 1,
                      grid->columnCount());
    }
}

QString lines(const std::string& text) {
    QString lines = qtText(text);
    return lines.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
}

}  // namespace

BoxAnswer MessageBoxes::ShowBox(const BoxRequest& box) {
    const bool asks = box.buttons == BoxButtons::YesNoCancel;
    QMessageBox shown(iconOf(box.icon), qtText(box.title), lines(box.text),
                      asks ? QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel
                           : QMessageBox::StandardButtons(QMessageBox::Ok),
                      owner_.isVisible() ? &owner_ : nullptr);
    shown.setObjectName("box");
    shown.setWindowIcon(owner_.windowIcon());  // it may have no visible owner to take it from
    shown.setTextFormat(Qt::PlainText);
    nameButtons(shown);
    applyFormFont(shown);
    if (showHelp_) {
        const auto* help = new QShortcut(Qt::Key_F1, &shown);
        QObject::connect(help, &QShortcut::activated, &shown, showHelp_);
    }
    makeRoomForTitle(shown);
    shown.setWindowModality(Qt::WindowModal);  // toast and tray go on working
    // What cannot be undone is not what Enter does.
    shown.setDefaultButton(asks ? QMessageBox::Cancel : QMessageBox::Ok);
    setOnTop(shown, owner_.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    return answerOf(shown.exec());
}

}  // namespace vl
