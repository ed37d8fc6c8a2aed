// The event's item in the host's own database.
#include <chrono>
#include <filesystem>
#include <fstream>

#include "app/Files.h"
#include "db/DBRemindUtils.h"
#include "model/calEvent.h"

namespace vl {

namespace {

// The host marks the names of its tables of items and fields with a macron in front.
constexpr const char* kItems = "[\u00AFItems]";
constexpr const char* kFields = "[\u00AFFields]";

// A quote in it must not end it: what would follow could name every row.
std::string literalOf(std::string_view value) {
    std::string text = "\"";
    for (const char c : value) {
        text += c == '"' ? "\"\"" : std::string(1, c);
    }
    return text + "\"";
}

bool passes(ErrNo error) { return error == ErrNo::Locked || error == ErrNo::Io; }

// Of another generation, or encrypted: the item is in there all the same.
bool isForeignDatabase(const std::string& path) {
    constexpr std::size_t kNameAt = 4;
    std::ifstream file(std::filesystem::path(std::u8string(path.begin(), path.end())),
                       std::ios::binary);
    std::string start(kNameAt + 15, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    const std::string name = start.substr(kNameAt);
    return name == "Standard Jet DB" || name == "Standard ACE DB";
}

// Nothing is left to delete where the file is no database, or none of the host's.
bool holdsNoItem(ErrNo error, const std::string& path) {
    return error == ErrNo::NotFound || (error == ErrNo::Format && !isForeignDatabase(path));
}

// Of the rows that the statement gives, none when it fails.
std::vector<std::int32_t> itemsOf(DBRemindUtils& host, const std::string& where) {
    std::vector<std::int32_t> items;
    const auto rows = host.OpenRS("SELECT * FROM Event" + where);
    for (; rows->isOpen() && !rows->EOF_(); rows->MoveNext()) {
        attempt([&] { items.push_back(rows->value("ItemID").toInt32()); });
    }
    return items;
}

}  // namespace

calEvent::Deletion calEvent::DeleteItem() const {
    const ErrScope scope;
    if (GUID.empty() || !fileExists(VLBase)) {
        return Deletion::Gone;
    }
    DBRemindUtils host;
    host.DBFullName = VLBase;
    const std::string where = " WHERE GUID=" + literalOf(GUID);
    const std::vector<std::int32_t> items = itemsOf(host, where);
    if (host.LastError() != ErrNo::None) {
        return passes(host.LastError())                ? Deletion::Waits
               : holdsNoItem(host.LastError(), VLBase) ? Deletion::Gone
                                                       : Deletion::Failed;
    }
    // The item first: as long as the event's row is there, it can be found again.
    for (const std::int32_t item : items) {
        host.Execute(std::string("DELETE * FROM ") + kItems +
                     " WHERE ItemID=" + std::to_string(item));
        if (passes(host.LastError())) {
            return Deletion::Waits;
        }
        if (host.LastError() != ErrNo::None && host.LastError() != ErrNo::NotFound) {
            return Deletion::Failed;
        }
    }
    host.Execute("DELETE * FROM Event" + where);
    return host.LastError() == ErrNo::None ? Deletion::Gone
           : passes(host.LastError())      ? Deletion::Waits
                                           : Deletion::Failed;
}

std::string calEvent::GetFieldName() {
    const ErrScope scope;
    FieldName.clear();
    DBRemindUtils host;
    host.DBFullName = VLBase;
    host.Patience = std::chrono::milliseconds(0);  // a name is not worth waiting for
    const auto found = host.OpenRS(std::string("SELECT Name FROM ") + kFields +
                                   " WHERE FieldID=" + std::to_string(FieldID));
    attempt([&] {
        if (!found->EOF_()) {
            FieldName = found->value("Name").toText();
        }
    });
    return FieldName;
}

}  // namespace vl
