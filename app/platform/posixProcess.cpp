// Starting programs that live their own life.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Platform.h"
#include "base/ErrorState.h"
#include "base/Text.h"

namespace vl::platform {

namespace {

namespace fs = std::filesystem;

// The program's file, looked up as a shell does. Throws when there is none.
std::string findProgram(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        return name;
    }
    const char* folders = std::getenv("PATH");
    for (const auto folder : text::split(folders != nullptr ? folders : "", ":")) {
        const fs::path file = fs::path(folder) / name;
        std::error_code error;
        if (!folder.empty() && fs::is_regular_file(file, error) &&
            ::access(file.c_str(), X_OK) == 0) {
            return textOf(file);
        }
    }
    throw Error(ErrNo::NotFound, "no program " + name + " in PATH");
}

/// Both ends of a pipe that a started program does not inherit.
struct Pipe {
    std::array<int, 2> ends{-1, -1};
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw Error(ErrNo::Io, std::string("no pipe: ") + std::strerror(errno));
        }
    }
    ~Pipe() {
        closeWriting();
        ::close(ends[0]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void closeWriting() {
        if (ends[1] >= 0) {
            ::close(ends[1]);
            ends[1] = -1;
        }
    }
};

// From here on, in the child of a program that may have threads, only system calls.
[[noreturn]] void becomeProgram(const char* file, char* const* arguments, int report) {
    ::setsid();
    const pid_t program = ::fork();
    if (program != 0) {
        // The program's parent is gone at once, so the system takes it over: no zombie is left.
        ::_exit(program < 0 ? 1 : 0);
    }
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int standard = 0; standard <= 2 && nothing >= 0; ++standard) {
        ::dup2(nothing, standard);
    }
    ::execv(file, arguments);
    const int error = errno;
    (void)!::write(report, &error, sizeof error);
    ::_exit(127);
}

}  // namespace

void startProgram(const std::vector<std::string>& arguments) {
    const std::string file = findProgram(arguments.at(0));
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));  // execv only reads them
    }
    pointers.push_back(nullptr);

    Pipe report;  // stays silent, and is closed by the start itself, when that succeeds
    const pid_t child = ::fork();
    if (child == 0) {
        becomeProgram(file.c_str(), pointers.data(), report.ends[1]);
    }
    report.closeWriting();
    int status = 0;
    while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    int error = child < 0 ? errno : 0;
    while (child > 0 && ::read(report.ends[0], &error, sizeof error) < 0 && errno == EINTR) {
    }
    if (child < 0 || status != 0 || error != 0) {
        throw Error(error == ENOENT ? ErrNo::NotFound : ErrNo::Io,
                    "cannot start " + file + ": " + std::strerror(error != 0 ? error : EAGAIN));
    }
}

void openWithDesktop(const std::string& target) {
    const bool option = target.rfind('-', 0) == 0;
    startProgram({"xdg-open", option ? "./" + target : target});
}

}  // namespace vl::platform
