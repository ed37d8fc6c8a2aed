#include "ui/Tray.h"

#include <array>

#include <QActionGroup>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "base/Text.h"
#include "ui/MenuLook.h"
#include "ui/QtText.h"

namespace vl {

namespace {

struct Type {
    const char* name;
    const char* text;
    const char* letter;
};

constexpr std::array<Type, 5> kTypes{{
    {"mnuTypeDialog", "&Dialog", "D"},
    {"mnuTypePopup", "&Pop-up", "P"},
    {"mnuTypeTray", "&Tray icon", "T"},
    {"mnuTypeSystem", "&System", "S"},
    {"mnuTypeEmail", "&E-mail", "E"},
}};

}  // namespace

TrayClick trayClick(bool hasFocus, bool visible) {
    if (hasFocus) {
        return TrayClick::Hide;
    }
    return visible ? TrayClick::BringForward : TrayClick::Show;
}

Tray::Tray(const QIcon& Pic1, const QIcon& Pic2, const ReminderState& state, QObject* parent)
    : QObject(parent), quiet_(Pic1), new_(Pic2), state_(state), balloon_(icon_) {
    icon_.setParent(this);  // found by that
    mnuTray_.setObjectName("mnuTray");
    fillMenu();
    icon_.setIcon(quiet_);
    icon_.setContextMenu(&mnuTray_);
    connect(&mnuTray_, &QMenu::aboutToShow, this, &Tray::menuOpening);
    connect(&mnuTray_, &QMenu::aboutToShow, this, &Tray::mark);
    connect(&mnuTray_, &QMenu::aboutToShow, this, [this] { applyMenuLook(mnuTray_); });
    connect(&icon_, &QSystemTrayIcon::activated, this, &Tray::onActivated);
    connect(&balloon_, &Balloon::clicked, this, &Tray::balloonClicked);
}

Tray::~Tray() = default;

QRect Tray::geometry() const {
    const QRect told = icon_.geometry();
    // Until a panel has taken it in, the icon believes to be in the corner of the screen.
    const bool isBelief = QGuiApplication::platformName() == u"xcb" && told.topLeft().isNull();
    return told.isEmpty() || isBelief ? clickedAt_ : told;
}

// A panel at the edge of a screen: who chooses the icon by the keyboard has the pointer elsewhere.
void Tray::notePointer() {
    constexpr int kPanel = 64;
    constexpr int kHalfIcon = 12;
    const QPoint at = QCursor::pos();
    const QScreen* screen = QGuiApplication::screenAt(at);
    if (screen && !screen->geometry().adjusted(kPanel, kPanel, -kPanel, -kPanel).contains(at)) {
        clickedAt_ = QRect(at - QPoint(kHalfIcon, kHalfIcon), at + QPoint(kHalfIcon, kHalfIcon));
    }
}

void Tray::setNew(bool withDot) {
    if (withDot != withDot_) {
        withDot_ = withDot;
        icon_.setIcon(withDot ? new_ : quiet_);
    }
}

void Tray::setToolTip(const QString& text) {
    if (text == tip_) {
        return;
    }
    tip_ = text;
    QString lines = text;
    lines.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    icon_.setToolTip(lines);
    QString caption = text;
    caption.replace(QLatin1String("\r\n"), QLatin1String(": "));
    caption.replace(u'&', QLatin1String("&&"));
    mnuShowHide_->setText(caption);
}

void Tray::fillMenu() {
    mnuShowHide_ = add("mnuShowHide", tr("Show/Hide"), &Tray::showHide);
    mnuTray_.setDefaultAction(mnuShowHide_);
    mnuTray_.addSeparator();
    mnuMute_ = add("mnuMute", tr("&Mute"), &Tray::mute);
    mnuSilent_ = add("mnuSilent", tr("&Silent"), &Tray::silent);
    mnuMute_->setToolTip(tr("Neither sound nor notification"));
    mnuSilent_->setToolTip(tr("Notifications without sound"));
    mnuTray_.setToolTipsVisible(true);
    fillTypes();
    mnuOnTop_ = add("mnuOnTop", tr("On &Top"), &Tray::onTop);
    for (QAction* action : {mnuMute_, mnuSilent_, mnuOnTop_}) {
        action->setCheckable(true);
    }
    mnuTray_.addSeparator();
    add("mnuRefresh", tr("&Refresh"), &Tray::refresh);
    mnuTray_.addSeparator();
    add("mnuCleanUp", tr("&Clean up database..."), &Tray::cleanUp);
    add("mnuDeleteAll", tr("&Delete all reminders..."), &Tray::deleteAll);
    mnuTray_.addSeparator();
    add("mnuAbout", tr("&About..."), &Tray::about);
    add("mnuExit", tr("E&xit"), &Tray::exit);
}

void Tray::fillTypes() {
    QMenu* menu = mnuTray_.addMenu(tr("&Notification type"));
    menu->setObjectName("mnuType");
    auto* group = new QActionGroup(this);
    for (const Type& type : kTypes) {
        QAction* action = menu->addAction(tr(type.text));
        action->setObjectName(type.name);
        action->setData(QString(type.letter));
        action->setCheckable(true);
        group->addAction(action);
        types_.append(action);
    }
    connect(group, &QActionGroup::triggered, this,
            [this](QAction* action) { emit notifType(action->data().toString()); });
}

QAction* Tray::add(const char* name, const QString& text, void (Tray::*chosen)()) {
    QAction* action = mnuTray_.addAction(text);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, chosen);
    return action;
}

void Tray::mark() {
    mnuMute_->setChecked(state_.bMuted);
    mnuSilent_->setChecked(state_.bSilent);
    mnuOnTop_->setChecked(state_.bOnTop);
    for (QAction* type : types_) {
        type->setChecked(text::equalsNoCase(plainText(type->data().toString()), state_.sNotifType));
    }
}

void Tray::onActivated(QSystemTrayIcon::ActivationReason reason) {
    notePointer();
    // A double click comes as a click and this; it is not two clicks.
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::MiddleClick) {
        emit clicked();
    }
}

}  // namespace vl
