#include "app/DataFolders.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "app/Files.h"
#include "base/ErrorState.h"
#include "base/Text.h"
#include "platform/Platform.h"

namespace vl {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kHelpPage = "index.html";
constexpr std::string_view kManifestEnd = ".exe.Manifest";
#ifdef _WIN32
constexpr std::string_view kDevelopmentFolder = "..\\VLPv128\\AppData";
#else
constexpr std::string_view kDevelopmentFolder = "../VLPv128/AppData";
#endif

bool endsWithNoCase(std::string_view s, std::string_view end) {
    return s.size() >= end.size() && text::equalsNoCase(s.substr(s.size() - end.size()), end);
}

}  // namespace

bool isPortable(std::string_view programFolder) {
    const ErrScope scope;
    bool found = false;
    attempt([&] {
        for (const auto& entry : fs::directory_iterator(platform::pathOf(programFolder))) {
            const std::string name = platform::textOf(entry.path().filename());
            found = found || (endsWithNoCase(name, kManifestEnd) && !entry.is_directory());
        }
    });
    return found;
}

std::string findAppDataFolder(std::string_view programFolder, bool developmentRun) {
    if (developmentRun) {
        return std::string(kDevelopmentFolder);
    }
    return isPortable(programFolder) ? joinPath(programFolder, "AppData") : dataFolder(true);
}

bool copyIfMissing(const std::string& from, const std::string& to) {
    const ErrScope scope;
    if (!fileExists(to)) {
        attempt([&] {
            std::ifstream in(platform::pathOf(from), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>()};
            if (!in.is_open() || in.bad() || bytes.empty()) {
                throw Error(ErrNo::Io, "cannot read " + from);
            }
            platform::createFile(to, bytes);
        });
    }
    return fileExists(to);
}

bool provideTemplate(const std::string& AppDataFolder,
                     const std::vector<std::string>& sharedFolders) {
    const std::string target = joinPath(AppDataFolder, kDatabaseName);
    for (const std::string& folder : sharedFolders) {
        const std::string source = joinPath(folder, kDatabaseName);
        if (fileExists(target)) {
            break;
        }
        if (fileExists(source)) {
            copyIfMissing(source, target);
        }
    }
    return fileExists(target);
}

std::vector<std::string> installedDataFolders() {
    const ErrScope scope;
    std::vector<std::string> folders;
    attempt([&] { folders = platform::sharedFolders(); });
    return folders;
}

std::string provideDatabase(std::string_view DBFolder, std::string_view AppDataFolder) {
    if (DBFolder.empty()) {
        return {};
    }
    std::string DBFullName = joinPath(DBFolder, kDatabaseName);
    copyIfMissing(joinPath(AppDataFolder, kDatabaseName), DBFullName);
    return DBFullName;
}

std::string findHelpBase(const std::vector<std::string>& sharedFolders) {
    for (const std::string& folder : sharedFolders) {
        const std::string page = joinPath(joinPath(folder, "help"), kHelpPage);
        if (fileExists(page)) {
            return fileAddress(page) + "#";
        }
    }
    return {};
}

}  // namespace vl
