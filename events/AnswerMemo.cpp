#include "AnswerMemo.h"

#include "events/EventIndex.h"

namespace vl {

std::shared_ptr<GenCollection> AnswerMemo::recall(EventIndex& index, const Window& window,
                                                  std::uint64_t asked) {
    if (id_ == 0 || asked_ != asked || version_ != index.version() || window_.from != window.from ||
        window_.to != window.to) {
        return nullptr;
    }
    for (const Left& left : left_) {
        calEvent& event = *index.events()[left.place];
        event.InstanceStart = left.InstanceStart;
        event.dReminder = left.dReminder;
        event.iRemMinutes = left.iRemMinutes;
        event.iRemMinutesNext = left.iRemMinutesNext;
        index.noteLeft(left.place, true);
    }
    return std::make_shared<GenCollection>(answer_);
}

void AnswerMemo::keep(const EventIndex& index, const Window& window, std::uint64_t asked,
                      const GenCollection& answer) {
    ++id_;
    asked_ = asked;
    version_ = index.version();
    window_ = window;
    answer_ = answer;
    left_.clear();
    for (const std::uint32_t place : index.left()) {
        const calEvent& event = *index.events()[place];
        left_.push_back({place, event.InstanceStart, event.dReminder, event.iRemMinutes,
                         event.iRemMinutesNext});
    }
}

}  // namespace vl
