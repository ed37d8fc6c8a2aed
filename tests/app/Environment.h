// A variable of the environment, set for the length of a test. Never TZ.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "support/Support.h"

namespace vl::test {

class Variable {
public:
    /// `value` null: not set.
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name)) {
            before_ = before;
        }
        set(value);
    }
    ~Variable() { set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value) {
#ifdef _WIN32
        _putenv_s(name_.c_str(), value != nullptr ? value : "");
#else
        value != nullptr ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str());
#endif
    }

    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace vl::test
