#include "app/Sound.h"

#include <filesystem>

#include "base/ErrorState.h"
#include "platform/Platform.h"
#include "platform/Playing.h"

namespace vl {

namespace {

namespace fs = std::filesystem;

constexpr const char* kReminderSound = "reminder.wav";

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

}  // namespace

std::string findSound(std::string_view fileName) {
    const ErrScope scope;
    std::string found;
    attempt([&] {
        const fs::path name = platform::pathOf(fileName.empty() ? kReminderSound : fileName);
        std::error_code error;
        // In full: a player must not take a name that begins with "-" for an option.
        const fs::path here = fs::absolute(name, error);
        if (!error && isFile(here)) {
            found = platform::textOf(here);
        } else if (!name.has_parent_path()) {
            for (const std::string& folder : platform::sharedFolders()) {
                const fs::path file = platform::pathOf(folder) / name;
                if (found.empty() && isFile(file)) {
                    found = platform::textOf(file);
                }
            }
        }
    });
    return found;
}

SoundPlayer::SoundPlayer() = default;
SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::play(std::string_view fileName) {
    const ErrScope scope;
    stop();
    std::string file = findSound(fileName);
    if (file.empty()) {
        attempt(
            [&] { file = platform::systemSound(fileName.empty() ? kReminderSound : fileName); });
    }
    notFound_ = file.empty() || !attempt([&] { playing_ = std::make_unique<Playing>(file); });
    if (file.empty()) {
        trace("no sound file \"" + std::string(fileName) + "\"");
    }
}

void SoundPlayer::stop() {
    playing_.reset();
    notFound_ = false;
}

bool SoundPlayer::playing() const { return playing_ != nullptr && playing_->running(); }

bool SoundPlayer::failed() const {
    return notFound_ || (playing_ != nullptr && playing_->failed());
}

void SoundPlayer::wait() {
    if (playing_ != nullptr) {
        playing_->wait();
    }
}

}  // namespace vl
