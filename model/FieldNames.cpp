#include "model/FieldNames.h"

#include <set>
#include <string_view>
#include <utility>

#include "app/Files.h"
#include "base/ErrorState.h"

namespace vl {

const FieldNames::Name* FieldNames::find(const calEvent& event) const {
    const auto file = files_.find(event.VLBase.view());
    if (file == files_.end()) {
        return nullptr;
    }
    const auto name = file->second.names.find(event.FieldID);
    return name == file->second.names.end() ? nullptr : &name->second;
}

void FieldNames::Recall(calEvent& event) const {
    if (const Name* name = find(event)) {
        event.FieldName = name->text;
    }
}

void FieldNames::Doubt() {
    for (auto& [path, file] : files_) {
        file.doubted = true;
    }
}

void FieldNames::lookAt(const std::string& path, File& file) {
    DBRemindUtils host;
    host.DBFullName = path;
    const DBRemindUtils::Look now = host.TakeLook();
    if (!now.same(file.look)) {
        for (auto& [id, name] : file.names) {
            name.sure = false;
        }
    }
    file.look = now;
    file.doubted = false;
}

std::vector<std::shared_ptr<calEvent>> FieldNames::Unsure(
    std::span<const std::shared_ptr<calEvent>> events) {
    const ErrScope scope;
    std::vector<std::shared_ptr<calEvent>> unsure;
    std::set<std::pair<std::string_view, std::int32_t>> seen;
    for (const auto& event : events) {
        if (!event || event->VLBase.empty() ||
            !seen.emplace(event->VLBase.view(), event->FieldID).second) {
            continue;
        }
        File& file = files_[event->VLBase.str()];
        if (file.doubted) {
            attempt([&] { lookAt(event->VLBase.str(), file); });
        }
        if (!file.names[event->FieldID].sure && fileExists(event->VLBase)) {
            unsure.push_back(event);
        }
    }
    return unsure;
}

void FieldNames::Ask(calEvent& event) {
    const ErrScope scope;
    Name& name = files_[event.VLBase.str()].names[event.FieldID];
    if (const std::string asked = event.GetFieldName(); !asked.empty()) {
        name = {asked, true};
    }
    event.FieldName = name.text;
}

}  // namespace vl
