// Why a statement has failed, as far as it matters when it is tried again.
#pragma once

#include "app/Files.h"
#include "db/DBRemindUtils.h"

namespace vl {

/// Whether what made the last statement fail will pass: others hold the file, the disk does not
/// answer, or the file is not there.
inline bool passes(const DBRemindUtils& db) {
    const ErrNo error = db.LastError();
    return error == ErrNo::Locked || error == ErrNo::Io ||
           (error == ErrNo::NotFound && !fileExists(db.DBFullName));
}

}  // namespace vl
