#include "ui/FieldAsker.h"

#include <utility>

#include "base/ErrorState.h"

namespace vl {

FieldAsker::FieldAsker(std::function<Events()> listed, std::function<bool()> isSeen,
                       QObject* parent)
    : QObject(parent), listed_(std::move(listed)), isSeen_(std::move(isSeen)) {
    TimerFields.setObjectName("TimerFields");
    TimerFields.setSingleShot(true);
    connect(&TimerFields, &QTimer::timeout, this, &FieldAsker::TimerFields_Tick);
}

// One name each time: a file may be far away.
void FieldAsker::TimerFields_Tick() {
    const ErrScope scope;
    if (!isSeen_()) {
        unnamed_.clear();
        return;
    }
    if (unnamed_.empty()) {
        unnamed_ = names_.Unsure(listed_());
    }
    if (unnamed_.empty()) {
        return;
    }
    attempt([&] { names_.Ask(*unnamed_.back()); });
    unnamed_.pop_back();
    if (!unnamed_.empty()) {
        TimerFields.start();
        return;
    }
    for (const auto& event : listed_()) {
        names_.Recall(*event);
    }
    emit named();
}

}  // namespace vl
