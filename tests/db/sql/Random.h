// Chance that can be repeated, for tests.
#pragma once

#include <cstdlib>
#include <random>
#include <string>

namespace vl::sql::test {

/// A failing run is repeated with VL_SEED set to the seed that it printed.
class Random {
public:
    Random() {
        const char* given = std::getenv("VL_SEED");
        seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                 : std::random_device{}();
        engine_.seed(seed_);
    }
    unsigned seed() const { return seed_; }
    std::size_t below(std::size_t n) { return engine_() % n; }
    bool oneIn(std::size_t n) { return below(n) == 0; }
    template <class T, std::size_t N>
    const T& pick(const T (&values)[N]) {
        return values[below(N)];
    }
    template <class List>
    const typename List::value_type& any(const List& values) {
        return values[below(values.size())];
    }

private:
    unsigned seed_ = 0;
    std::mt19937 engine_;
};

/// How many times a test of chance goes round: `usual`, or what VL_ROUNDS says.
inline int rounds(int usual) {
    const char* given = std::getenv("VL_ROUNDS");
    return given != nullptr ? std::atoi(given) : usual;
}

}  // namespace vl::sql::test
