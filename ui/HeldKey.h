// A key that repeats itself while it is held down.
#pragma once

#include <QObject>

namespace vl {

/// Tells a press that repeats itself from one that is meant. Where the desktop sends a release with
/// each of them Qt does not always know: it looks whether the press waits already behind its
/// release, and on a busy machine it does not. Both carry the same time.
class HeldKey final : public QObject {
    Q_OBJECT

public:
    /// Goes by the keys that come to `watched`, which may be the whole application; it must
    /// outlive this.
    explicit HeldKey(QObject& watched);

    /// Of the press that came last.
    bool isRepeat() const { return repeat_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int key_ = 0;
    quint64 released_ = 0;  // when, on the desktop's clock; 0: it does not say
    bool repeat_ = false;
};

}  // namespace vl
