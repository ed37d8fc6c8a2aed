#include "app/Files.h"

#include <cstdlib>
#include <filesystem>

#include "base/ErrorState.h"
#include "platform/Platform.h"

namespace vl {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSeparators = "\\/";
constexpr std::string_view kOurFolder = "Velmora";

}  // namespace

bool fileExists(std::string_view path) {
    const ErrScope scope;
    bool there = false;
    attempt([&] {
        std::error_code error;
        there = !path.empty() && fs::exists(platform::pathOf(path), error);
    });
    return there;
}

std::string fullPath(std::string_view path) {
    const ErrScope scope;
    std::string full(path);
    if (!path.empty()) {
        attempt([&] { full = platform::fullPath(full); });
    }
    return full;
}

std::string fileNameOf(std::string_view path) {
    const std::size_t last = path.find_last_of(kSeparators);
    return std::string(last == std::string_view::npos ? path : path.substr(last + 1));
}

std::string pathWithoutExtension(std::string_view path) {
    return std::string(path.substr(0, path.rfind('.')));
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && kSeparators.find(path.back()) == std::string_view::npos) {
        path += platform::separatorOf(folder);
    }
    return path.append(name);
}

std::string fileAddress(std::string_view path) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/:";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string address = "file://";
    if (path.empty() || path.front() != '/') {
        address += '/';  // in front of a drive's letter
    }
    const bool drive = path.size() > 1 && path[1] == ':';
    for (const char c : path) {
        const char plain = drive && c == '\\' ? '/' : c;
        const auto byte = static_cast<unsigned char>(plain);
        if (kPlain.find(plain) != std::string_view::npos) {
            address += plain;
        } else {
            address += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
        }
    }
    return address;
}

std::string programFolder() {
    const ErrScope scope;
    std::string folder;
    attempt([&] { folder = platform::programFolder(); });
    return folder;
}

std::string dataFolder(bool allUsers) {
    const ErrScope scope;
    std::string folder;
    attempt([&] {
        const std::string root = platform::dataRoot(allUsers);
        folder = root.empty() ? root : joinPath(root, kOurFolder);
    });
    if (!folder.empty()) {
        attempt([&] { fs::create_directories(platform::pathOf(folder)); });
    }
    return folder;
}

bool openDocument(std::string_view pathOrAddress) {
    const ErrScope scope;
    return !pathOrAddress.empty() &&
           attempt([&] { platform::openWithDesktop(std::string(pathOrAddress)); });
}

bool startProgram(const std::vector<std::string>& arguments) {
    const ErrScope scope;
    return !arguments.empty() && attempt([&] { platform::startProgram(arguments); });
}

bool isDevelopmentRun() {
#ifdef NDEBUG
    return false;
#else
    const char* asked = std::getenv("VL_DEBUG");
    return asked != nullptr && std::string_view(asked) == "1";
#endif
}

}  // namespace vl
