#include "TextPool.h"

#include <functional>

namespace vl {

namespace {

constexpr std::size_t kPlaces = 1024;
constexpr std::size_t kLongest = 512;  // bytes; what is longer is hardly ever there twice

}  // namespace

TextPool::TextPool() : recent_(kPlaces) {}

SharedText TextPool::of(std::string_view text) {
    if (text.empty() || text.size() > kLongest) {
        return text;
    }
    SharedText& known = recent_[std::hash<std::string_view>()(text) % kPlaces];
    if (known != text) {
        known = text;
    }
    return known;
}

}  // namespace vl
