// A button with an arrow: the button does the quick thing, the arrow offers the choice.
#pragma once

#include <QMenu>
#include <QToolButton>

namespace vl {

/// The arrow's menu opens by a click on it, and by Down while the button has the focus. Not split,
/// it is a plain button.
class SplitButton final : public QToolButton {
    Q_OBJECT

public:
    explicit SplitButton(QWidget* parent = nullptr);

    void setSplit(bool split);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void menuOpening();
    void quickChosen();
    void chooseChosen();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QMenu menu_{this};
};

/// Adds the two entries of the arrow's menu; they do, and can be chosen, as the button.
void fillDismissMenu(QMenu& menu, SplitButton& button);

}  // namespace vl
