// The line below the lists.
#pragma once

#include <QString>
#include <QWidget>

class QLabel;

namespace vl {

class ElidedLabel;

/// Says one thing on the left, and on the right what is there but not shown, or not saved.
class StatusLine final : public QWidget {
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent = nullptr);

    struct Saying {
        QString line;
        QString tip;           ///< of the line; empty: the line itself
        bool trouble = false;  ///< it is about something that is wrong
        QString notice;
        QString noticeTip;
    };
    void say(const Saying& saying);

protected:
    void changeEvent(QEvent* event) override;

private:
    void colour();

    ElidedLabel* lblStatus = nullptr;
    QLabel* lblNotice = nullptr;
    bool trouble_ = false;
};

}  // namespace vl
