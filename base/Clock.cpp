#include "base/Clock.h"

#include <ctime>

namespace vl {

DateTime SystemClock::now() const {
    const std::time_t seconds = std::time(nullptr);
    const std::tm* parts = std::localtime(&seconds);
    if (parts == nullptr) {
        return DateTime::fromCivil(1970, 1, 1, 0, 0, 0).addSeconds(seconds);
    }
    // A leap second would be second 60, which no date-time can hold.
    const int second = parts->tm_sec > 59 ? 59 : parts->tm_sec;
    return DateTime::fromCivil(parts->tm_year + 1900, parts->tm_mon + 1, parts->tm_mday,
                               parts->tm_hour, parts->tm_min, second);
}

}  // namespace vl
