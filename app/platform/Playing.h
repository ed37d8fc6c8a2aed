// One sound on its way. Made by posixSound.cpp or windowsSound.cpp.
#pragma once

#include <memory>
#include <string>

#include "app/Sound.h"

namespace vl {

/// Begins with its construction (which throws `Error` when not even that can be done) and is
/// stopped, if it still runs, by its destruction.
class SoundPlayer::Playing {
public:
    explicit Playing(const std::string& file);
    ~Playing();
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    bool running() const;
    bool failed() const;
    void wait();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vl
