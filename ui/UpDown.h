// Two arrows that step through a list.
#pragma once

#include <QAbstractSpinBox>

namespace vl {

/// Has no number to edit: each step, by arrow, key or wheel, is only told.
class UpDown final : public QAbstractSpinBox {
    Q_OBJECT

public:
    explicit UpDown(QWidget* parent = nullptr);

    void stepBy(int steps) override { emit stepped(steps); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void stepped(int steps);

protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
};

/// The position that a step leads to, both from 1: past either end lies the other one.
int wrapped(int position, int count);

}  // namespace vl
