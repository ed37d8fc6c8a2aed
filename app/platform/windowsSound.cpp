// A sound played by the system itself.
#include <windows.h>

#include <mmsystem.h>

#include "Platform.h"
#include "Playing.h"
#include "Wide.h"
#include "base/ErrorState.h"

namespace vl {

/// The system tells nothing about a sound once it has begun.
struct SoundPlayer::Playing::State {};

SoundPlayer::Playing::Playing(const std::string& file) {
    // A name alone is one of the system's: an event's sound, or a file in the system's folders.
    const bool isFull = platform::pathOf(file).is_absolute();
    const DWORD how = isFull ? SND_ASYNC | SND_FILENAME | SND_NODEFAULT : SND_ASYNC;
    if (!PlaySoundW(platform::wide(file).c_str(), nullptr, how)) {
        throw Error(ErrNo::Io, "cannot play " + file);
    }
}

SoundPlayer::Playing::~Playing() { PlaySoundW(nullptr, nullptr, 0); }

bool SoundPlayer::Playing::running() const { return false; }
bool SoundPlayer::Playing::failed() const { return false; }
void SoundPlayer::Playing::wait() {}

}  // namespace vl
