// A key that repeats itself while it is held down.
#pragma once

#include <QObject>

namespace vl {

/// Tells a press that repeats itself from one that is meant. Where the desktop sends a release with
/// each of them Qt does not always know: it looks whether the press waits already behind its
/// release, and often it does not. Both carry the same time. Goes by all keys of the program, since
/// those that come to a control may have been handed round by way of a screen reader, and have lost
/// their times.
class HeldKey final : public QObject {
    Q_OBJECT

public:
    HeldKey();

    /// Of the press that came last.
    bool isRepeat() const { return repeat_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void goFirst();

    int key_ = 0;               // that was released last
    quint64 released_ = 0;      // when, on the desktop's clock; 0: it does not say
    bool timedRepeat_ = false;  // of the press that came last and had a time
    bool repeat_ = false;
};

}  // namespace vl
