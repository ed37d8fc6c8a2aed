// A sound played by a child process. No library of a sound system is linked for it.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <mutex>
#include <thread>

#include "Playing.h"

namespace vl {

namespace {

constexpr std::array<const char*, 3> kPlayers = {"paplay", "pw-play", "aplay"};

// What a child process gets: no terminal, a process group of its own (a stopped wrapper script
// takes its player with it), and no signal blocked or ignored.
class SpawnSettings {
public:
    SpawnSettings() {
        posix_spawn_file_actions_init(&files_);
        for (int standard = 0; standard <= 2; ++standard) {
            posix_spawn_file_actions_addopen(&files_, standard, "/dev/null", O_RDWR, 0);
        }
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawnattr_setpgroup(&attributes_, 0);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
        sigset_t ignored;
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &ignored);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes_);
        posix_spawn_file_actions_destroy(&files_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    // The process, or -1 when it did not start (not installed, above all).
    pid_t start(const char* player, std::string file) const {
        std::string name = player;
        std::array<char*, 3> arguments = {name.data(), file.data(), nullptr};
        pid_t process = -1;
        return posix_spawnp(&process, player, &files_, &attributes_, arguments.data(), environ) == 0
                   ? process
                   : -1;
    }

private:
    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
};

}  // namespace

/// A thread of its own waits for the players one after the other, so that none is left a zombie
/// and the next one's turn comes by itself. It touches nothing but this state.
struct SoundPlayer::Playing::State {
    explicit State(std::string path) : file(std::move(path)) {}

    void run() {
        bool heard = false;
        for (std::size_t i = 0; i < kPlayers.size() && !heard; ++i) {
            std::unique_lock lock(mutex);
            if (stopped) {
                break;
            }
            process = settings.start(kPlayers[i], file);
            heard = process > 0 && waitForProcess(lock);
        }
        const std::lock_guard lock(mutex);
        succeeded = heard;
        ended = true;
    }

    // Called, and left, with the mutex locked; true when the player reported success.
    bool waitForProcess(std::unique_lock<std::mutex>& lock) {
        const pid_t id = process;
        siginfo_t info{};
        lock.unlock();
        // Waits without taking the result: until then the number cannot become another process's,
        // so that `stop` never hits a stranger.
        while (::waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT) < 0 &&
               errno == EINTR) {
        }
        lock.lock();
        int status = -1;
        const bool taken = ::waitpid(id, &status, 0) == id;
        process = -1;
        return taken && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    void stop() {
        const std::lock_guard lock(mutex);
        stopped = true;
        if (process > 0) {
            // Not SIGTERM: a player that hangs on its sound server must not hang us.
            ::kill(-process, SIGKILL);
        }
    }

    const SpawnSettings settings;
    const std::string file;
    std::mutex mutex;
    pid_t process = -1;
    bool stopped = false;
    bool ended = false;
    bool succeeded = false;
    std::thread thread;
};

SoundPlayer::Playing::Playing(const std::string& file) : state_(std::make_unique<State>(file)) {
    state_->thread = std::thread([state = state_.get()] { state->run(); });
}

SoundPlayer::Playing::~Playing() {
    state_->stop();
    wait();
}

bool SoundPlayer::Playing::running() const {
    const std::lock_guard lock(state_->mutex);
    return !state_->ended;
}

bool SoundPlayer::Playing::failed() const {
    const std::lock_guard lock(state_->mutex);
    return state_->ended && !state_->succeeded && !state_->stopped;
}

void SoundPlayer::Playing::wait() {
    if (state_->thread.joinable()) {
        state_->thread.join();
    }
}

}  // namespace vl
