// The pop-up in the corner of the screen.
#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include <QRect>
#include <QTimer>
#include <QWidget>

#include "ui/ToastMarkup.h"
#include "ui/ToastPlace.h"

class QLabel;
class QScrollArea;
class QToolButton;
class QVBoxLayout;

namespace vl {

struct ToastContent {
    QString title;                 ///< bold, in a band above the body
    QString text;                  ///< a text of its own, shown instead of the links
    std::vector<ToastLink> links;  ///< one a line
    bool bold = false;             ///< the body's font
    int width = 300;
    double opacity = 1.0;
    std::optional<std::chrono::milliseconds> delay;  ///< none: stays until closed
};

/// Lies above other windows and never takes the focus. Grows with its content up to the height of
/// the screen and scrolls beyond. It does not go away while the mouse rests on it.
class Toast final : public QWidget {
    Q_OBJECT

public:
    explicit Toast(const QIcon& picture, QWidget* parent = nullptr);

    /// Shows it next to the tray icon, which is at `icon` (see `toastPlace`). A toast that is open
    /// changes its content where it stands, without being closed in between.
    void present(const ToastContent& content, const QRect& icon);
    /// For who knows the icon's place only now; an empty one changes nothing.
    void moveNextTo(const QRect& icon);

signals:
    void linkClicked(int tag);
    /// The user has closed it, or its time is over.
    void closed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeBand(const QIcon& picture);
    void applyTones();
    void fillTitle();
    void fillBody();
    void addLine(QLabel* label);
    int lineWidth() const;
    QFont bodyFont() const;
    void place(int width, const QRect& icon);
    void startWaiting();

    QWidget* band_ = nullptr;
    QLabel* title_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QWidget* body_ = nullptr;
    QVBoxLayout* lines_ = nullptr;
    QToolButton* close_ = nullptr;
    ToastContent content_;
    QTimer wait_;
};

}  // namespace vl
