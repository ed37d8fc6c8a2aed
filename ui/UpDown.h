// Two arrows that step through a list.
#pragma once

#include <QAbstractSpinBox>

namespace vl {

/// Shows no number to edit. Each step, by arrow, key or wheel, changes the value, however far, and
/// is told; who hears of it sets the value that holds.
class UpDown final : public QAbstractSpinBox {
    Q_OBJECT
    Q_PROPERTY(int value READ value WRITE setValue)

public:
    explicit UpDown(QWidget* parent = nullptr);

    /// The position in the list, from 1; screen readers say it.
    int value() const { return value_; }
    void setValue(int value) { value_ = value; }

    void stepBy(int steps) override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void stepped(int steps);

protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }

private:
    int value_ = 0;
};

/// The position that a step leads to, both from 1: past either end lies the other one.
int wrapped(int position, int count);

}  // namespace vl
