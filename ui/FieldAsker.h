// Asks for the names of the fields that listed events belong to.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QObject>
#include <QTimer>

#include "model/FieldNames.h"
#include "model/calEvent.h"

namespace vl {

/// The names stand in the hosts' own files, so they are asked for when somebody can see them, one
/// at a time, between what else the window has to do.
class FieldAsker final : public QObject {
    Q_OBJECT

public:
    using Events = std::vector<std::shared_ptr<calEvent>>;

    /// `listed` gives the events that are to have names, `isSeen` whether anybody looks.
    FieldAsker(std::function<Events()> listed, std::function<bool()> isSeen, QObject* parent);

    /// Puts the name that is known into the event.
    void Recall(calEvent& event) const { names_.Recall(event); }
    /// Every name is in doubt from now on.
    void Doubt() { names_.Doubt(); }
    /// Asks, from the next turn of the event loop on, for what is not known of the listed events.
    void want() { TimerFields.start(); }

signals:
    /// Listed events have got names.
    void named();

private:
    void TimerFields_Tick();

    std::function<Events()> listed_;
    std::function<bool()> isSeen_;
    QTimer TimerFields{this};  // once, for the next name
    FieldNames names_;
    Events unnamed_;  // one for each name still to be asked for
};

}  // namespace vl
