#include "ui/InputWatch.h"

#include <utility>

#include <QAbstractButton>
#include <QShortcutEvent>
#include <QWheelEvent>
#include <QWidget>

#include "ui/HeldKey.h"

namespace vl {

namespace {

class ShortcutWatch final : public QObject {
public:
    ShortcutWatch(QWidget& control, std::function<void()> told)
        : QObject(&control), told_(std::move(told)) {
        control.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Shortcut) {
            return QObject::eventFilter(watched, event);
        }
        watched->event(event);  // first it does what it does with it
        told_();
        return true;
    }

private:
    std::function<void()> told_;
};

class WheelElsewhere final : public QObject {
public:
    WheelElsewhere(QWidget& control, std::function<void(const WheelTurn&)> turned)
        : QObject(&control), control_(control), turned_(std::move(turned)) {
        control.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel || control_.hasFocus()) {
            return QObject::eventFilter(watched, event);
        }
        turned_(wheelTurn(static_cast<QWheelEvent&>(*event)));
        event->accept();
        return true;
    }

private:
    QWidget& control_;
    std::function<void(const WheelTurn&)> turned_;
};

class ClickAtOnce final : public QObject {
public:
    explicit ClickAtOnce(QAbstractButton& button) : QObject(&button), button_(button) {
        button.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Shortcut ||
            static_cast<QShortcutEvent*>(event)->isAmbiguous()) {
            return QObject::eventFilter(watched, event);
        }
        // Held down it clicks once: what comes next, nobody has seen yet.
        if (held_.isRepeat()) {
            return true;
        }
        if (button_.isCheckable()) {
            button_.setFocus(Qt::ShortcutFocusReason);
        }
        button_.click();
        return true;
    }

private:
    QAbstractButton& button_;
    HeldKey held_;
};

}  // namespace

void watchShortcuts(QWidget& control, std::function<void()> told) {
    new ShortcutWatch(control, std::move(told));  // the control's child
}

void clickAtOnce(QAbstractButton& button) {
    new ClickAtOnce(button);  // the button's child
}

void handOnWheel(QWidget& control, std::function<void(const WheelTurn&)> turned) {
    if (control.focusPolicy() == Qt::WheelFocus) {
        control.setFocusPolicy(Qt::StrongFocus);
    }
    new WheelElsewhere(control, std::move(turned));  // the control's child
}

}  // namespace vl
