// Another process that has a database and does not let go of it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "db/jet/Database.h"
#include "db/jet/Transaction.h"

namespace vl::test {

/// A process that has begun to change the file, until it is killed. It is forked: for systems that
/// can do that.
class HoldingProcess {
public:
    explicit HoldingProcess(const std::string& path) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        process_ = fork();
        if (process_ == 0) {
            auto db = jet::Database::open(path, jet::Access::ReadWrite);
            const jet::Transaction change(db);
            if (write(ready[1], "x", 1) == 1) {
                sigset_t none;
                sigemptyset(&none);
                sigsuspend(&none);  // until it is killed
            }
            _exit(1);
        }
        char byte = 0;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        close(ready[0]);
        close(ready[1]);
    }
    ~HoldingProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    HoldingProcess(const HoldingProcess&) = delete;
    HoldingProcess& operator=(const HoldingProcess&) = delete;

private:
    pid_t process_ = -1;
};

}  // namespace vl::test
