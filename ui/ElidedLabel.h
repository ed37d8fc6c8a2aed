// A line of text that tells when it does not fit.
#pragma once

#include <QLabel>

namespace vl {

/// Plain text on one line; what does not fit is cut at a letter and followed by "...". `text()`,
/// and so what is read aloud, is all of it. It never widens its window, and without a text it is as
/// high as with one.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace vl
