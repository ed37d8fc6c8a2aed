#include "app/DataFolders.h"

#include <algorithm>
#include <cmath>
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
            platform::replaceFile(to, bytes);
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

int clampedEdge(double value, double screenExtent, double windowExtent) {
    const double edge = std::max(std::min(value, screenExtent - windowExtent), 0.0);
    constexpr double kMost = 2147483647.0;
    return std::isnan(edge) ? 0 : static_cast<int>(text::roundHalfEven(std::min(edge, kMost)));
}

WindowPlacement readPlacement(const Settings& settings, Extent screen, Extent window) {
    const auto saved = [&](const char* key, double otherwise) {
        return text::leadingNumber(settings.GetIni("Window", key, otherwise));
    };
    WindowPlacement placement;
    placement.left = clampedEdge(saved("Left", screen.width / 2), screen.width, window.width);
    placement.top = clampedEdge(saved("Top", screen.height / 2), screen.height, window.height);
    const auto extent = [](double value) -> std::optional<int> {
        constexpr double kMost = 1e6;  // more than any screen has
        if (!(value > 0.0)) {
            return std::nullopt;
        }
        return static_cast<int>(text::roundHalfEven(std::min(value, kMost)));
    };
    placement.width = extent(saved("Width", 0.0));
    placement.height = extent(saved("Height", 0.0));
    return placement;
}

}  // namespace vl
