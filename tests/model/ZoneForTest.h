// The system's zone, changed while a test runs.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace vl::test {

/// `TZ` is `name` until the end of the block.
class ZoneForTest {
public:
    explicit ZoneForTest(const char* name) {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        set(name);
    }
    ~ZoneForTest() { set(before_ ? before_->c_str() : nullptr); }
    ZoneForTest(const ZoneForTest&) = delete;
    ZoneForTest& operator=(const ZoneForTest&) = delete;

private:
    static void set(const char* name) {
#ifdef _WIN32
        _putenv_s("TZ", name != nullptr ? name : "");
        _tzset();
#else
        name != nullptr ? setenv("TZ", name, 1) : unsetenv("TZ");
        tzset();
#endif
    }

    std::optional<std::string> before_;
};

}  // namespace vl::test
