// The last answers to the views' questions, for who asks again while nothing has changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "events/EventIndex.h"
#include "events/GenCollection.h"

namespace vl {

/// A question's answer and what it has left in the events, as long as these are as they were and
/// hold what they held when it was asked.
class AnswerMemo {
public:
    /// `asked` is what the events held then: 0 for nothing, else the `id` of the memo of the
    /// question before. Null when this is not what is remembered; else all is as after the
    /// question.
    std::shared_ptr<GenCollection> recall(EventIndex& index, const Window& window,
                                          std::uint64_t asked);

    /// Keeps the answer as it stands in the events now.
    void keep(const EventIndex& index, const Window& window, std::uint64_t asked,
              const GenCollection& answer);

    /// Of what it keeps: 0 for nothing yet, and of one memo never the same twice.
    std::uint64_t id() const noexcept { return id_; }

private:
    struct Left {
        std::size_t place;  // in the index
        DateTime InstanceStart;
        DateTime dReminder;
        std::int32_t iRemMinutes;
        std::int32_t iRemMinutesNext;
    };

    std::uint64_t id_ = 0;  // 0: keeps nothing yet
    std::uint64_t asked_ = 0;
    std::uint64_t version_ = 0;  // of the index
    Window window_;
    GenCollection answer_;
    std::vector<Left> left_;
};

}  // namespace vl
