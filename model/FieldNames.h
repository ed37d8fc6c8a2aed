// What the hosts call the fields that events belong to.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "db/DBRemindUtils.h"
#include "model/calEvent.h"

namespace vl {

/// A field's name stands in the host's own file, which may be large, far away or in use: so each is
/// asked for once, and again only when its file has changed. Only `Unsure` and `Ask` touch files;
/// neither waits for a file that others have.
/// No method throws (see `ErrScope`).
class FieldNames {
public:
    /// Puts the name that is known into `FieldName`; what nothing is known of stays as it is.
    void Recall(calEvent& event) const;

    /// From now on every name is in doubt: the file may have changed.
    void Doubt();

    /// Of these events one for each name that is to be asked for. Looks once at each file that is
    /// in doubt.
    std::vector<std::shared_ptr<calEvent>> Unsure(
        std::span<const std::shared_ptr<calEvent>> events);

    /// Asks the host for the event's name and puts it into the event. What could not be found out
    /// is asked for again when it comes up again, and an older name serves meanwhile.
    void Ask(calEvent& event);

private:
    struct Name {
        SharedText text;  ///< one block for all events of the field
        bool sure = false;
    };
    struct File {
        std::map<std::int32_t, Name> names;  // by FieldID
        DBRemindUtils::Look look;
        bool doubted = true;
    };
    using Files = std::map<std::string, File, std::less<>>;

    const Name* find(const calEvent& event) const;
    static void lookAt(const std::string& path, File& file);

    Files files_;  // by VLBase
};

}  // namespace vl
