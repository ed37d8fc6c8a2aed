// The rows that a command is about.
#pragma once

#include <optional>
#include <vector>

#include "notify/Acts.h"

namespace vl {

/// What a command is about: what was chosen when it was given. While a menu is open checks go
/// on and choose other rows, which the user has not meant.
struct RowChoice {
    int tab = 0;
    std::vector<ActRow> rows;
    std::optional<ActRow> current;
    bool dismisses = true;  ///< else the rows can only be reactivated
    bool hides = true;      ///< else they are shown again
};

/// What the buttons offer to do to the rows that are chosen.
struct ActsOffered {
    bool snoozes = true;    ///< the current row; else the selected ones are hidden
    bool hides = true;      ///< else they are shown again
    bool dismisses = true;  ///< the selected rows; else they are reactivated
    bool anySelected = false;
    bool anyCurrent = false;
};

}  // namespace vl
