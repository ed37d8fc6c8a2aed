// The reminder sound.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace vl {

/// The file that a sound name means: empty is "reminder.wav"; a name without a folder is looked up
/// in the current folder, then where the installation keeps its data. Empty when it is not there.
std::string findSound(std::string_view fileName);

/// Plays a wave file beside whatever the program does. On Linux a child process plays it, the
/// first of paplay, pw-play and aplay that is there and succeeds; on Windows the system.
/// No method throws; starting takes some milliseconds, and whether the sound was heard is known
/// only when it has ended.
class SoundPlayer {
public:
    SoundPlayer();
    /// Stops what is playing.
    ~SoundPlayer();
    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    /// Stops what is playing and begins with this file (see `findSound`).
    void play(std::string_view fileName = {});
    void stop();
    bool playing() const;

    /// True when the last sound has ended, or never begun, without anybody having played it. (Not
    /// when it was stopped.) On Windows only a start that failed is known.
    bool failed() const;

    /// Blocks until the sound has ended; for tools and tests.
    void wait();

private:
    class Playing;  // each system's own
    std::unique_ptr<Playing> playing_;
    bool notFound_ = false;
};

}  // namespace vl
