#include <random>
#include <string_view>

#include "db/jet/File.h"

namespace vl::jet {

std::string nameBeside(const std::string& path) {
    constexpr int kLetters = 8;
    constexpr std::string_view kOf = "0123456789abcdefghijklmnopqrstuv";
    std::random_device random;
    std::string name = path + '.';
    for (int i = 0; i < kLetters; ++i) {
        name += kOf[random() % kOf.size()];
    }
    return name + ".new";
}

}  // namespace vl::jet
