#include "KilledAt.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace vl::test {

namespace {

constexpr int kCallStop = SIGTRAP | 0x80;  // as asked for by PTRACE_O_TRACESYSGOOD

// Not every machine has the older ones.
constexpr auto kChanging = std::to_array<long>({
    SYS_write,
    SYS_pwrite64,
    SYS_ftruncate,
    SYS_fsync,
    SYS_fdatasync,
    SYS_linkat,
    SYS_unlinkat,
    SYS_renameat2,
#ifdef SYS_renameat
    SYS_renameat,
#endif
#ifdef SYS_link
    SYS_link,
#endif
#ifdef SYS_unlink
    SYS_unlink,
#endif
#ifdef SYS_rename
    SYS_rename,
#endif
});

[[noreturn]] void runTraced(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // that is looked for by tracing, too
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
}

void check(bool done, const char* what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

// A call is stopped at when it begins and when it returns.
bool isChangeThatBegins(::pid_t process) {
    struct __ptrace_syscall_info call {};
    check(::ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call) > 0, "which call");
    if (call.op != PTRACE_SYSCALL_INFO_ENTRY) {
        return false;
    }
    const auto number = static_cast<long>(call.entry.nr);
    return std::find(kChanging.begin(), kChanging.end(), number) != kChanging.end() ||
           (number == SYS_openat && (call.entry.args[2] & O_CREAT) != 0);
}

}  // namespace

KilledRun killedAt(int n, const std::vector<std::string>& command) {
    const ::pid_t process = ::fork();
    if (process == 0) {
        runTraced(command);
    }
    int status = 0;
    check(::waitpid(process, &status, 0) == process, "wait");
    check(WIFSTOPPED(status), "trace");
    check(::ptrace(PTRACE_SETOPTIONS, process, nullptr,
                   PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) == 0,
          "trace calls");
    for (int changes = 0;;) {
        check(::ptrace(PTRACE_SYSCALL, process, nullptr, nullptr) == 0, "go on");
        check(::waitpid(process, &status, 0) == process, "wait");
        if (WIFEXITED(status)) {
            return {.killed = false, .code = WEXITSTATUS(status)};
        }
        check(WIFSTOPPED(status), "stop");
        if (WSTOPSIG(status) == kCallStop && isChangeThatBegins(process) && ++changes == n) {
            ::kill(process, SIGKILL);
            ::waitpid(process, &status, 0);
            return {.killed = true};
        }
    }
}

}  // namespace vl::test
