// A program that is killed in the middle of what it does to files.
#pragma once

#include <string>
#include <vector>

namespace vl::test {

/// How a run of `killedAt` has ended.
struct KilledRun {
    bool killed = false;  ///< else it came to its end before
    int code = 0;         ///< its exit code then
};

/// Runs `command`, a program and its arguments without what they print, and kills it before its
/// `n`th call, from 1 on, that makes, writes, flushes, names or removes a file. Linux only.
KilledRun killedAt(int n, const std::vector<std::string>& command);

}  // namespace vl::test
